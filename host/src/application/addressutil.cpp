#include <QDGui/addressutil.h>

#include <QByteArray>
#include <QRegularExpression>

#include <algorithm>

namespace Korvane::Util::Address {

bool isAddress(const QString &source)
{
    // Two letters at least, so that a drive letter is not taken for a scheme.
    static const QRegularExpression kPattern(QStringLiteral("\\A\\s*[A-Za-z][A-Za-z0-9+.-]+://"));
    return kPattern.match(source).hasMatch() &&
           !source.trimmed().startsWith(QLatin1String("file:"), Qt::CaseInsensitive);
}

QString asStream(const QString &source)
{
    static const QRegularExpression kWeb(QStringLiteral("\\A(\\s*)http(s?)://"),
                                         QRegularExpression::CaseInsensitiveOption);
    QString result = source;
    return result.replace(kWeb, QStringLiteral("\\1xrvp\\2://"));
}

QString withoutCredentials(const QString &source)
{
    if (!isAddress(source))
        return source;
    // Up to the last "@" before the path: a password may hold one too.
    static const QRegularExpression kCredentials(QStringLiteral("\\A(\\s*[A-Za-z][A-Za-z0-9+.-]+://)[^/?#]*@"));
    QString result = source;
    return result.replace(kCredentials, QStringLiteral("\\1"));
}

QString shown(const QString &source)
{
    const QString plain = withoutCredentials(source);
    const int question = isAddress(plain) ? plain.indexOf(QLatin1Char('?')) : -1;
    return question < 0 ? plain : plain.left(question) + QLatin1String("?...");
}

QString narrowed(const QString &source)
{
    const auto isWide = [](QChar character) { return character.unicode() > 0xFF; };
    const auto isAscii = [](QChar character) { return character.unicode() < 0x80; };
    if (std::any_of(source.cbegin(), source.cend(), isWide) || std::all_of(source.cbegin(), source.cend(), isAscii))
        return source;
    const QString text = QString::fromUtf8(source.toLatin1());
    return text.contains(QChar::ReplacementCharacter) ? source : text;
}

} // namespace Korvane::Util::Address
