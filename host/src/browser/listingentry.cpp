#include "listingentry.h"

#include <QLocale>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>

namespace Korvane::Gui {

namespace {

/// File systems allow 255 bytes; encoded, each takes up to three characters.
constexpr int kMaxPathPartLength = 1024;

/// Control characters, and those that turn the direction of the text around them, which can hide a name's real ending.
bool isTreacherous(QChar character)
{
    const ushort code = character.unicode();
    return character.category() == QChar::Other_Control || (code >= 0x202A && code <= 0x202E) ||
           (code >= 0x2066 && code <= 0x2069) || code == '/' || code == '\\';
}

bool isSafeName(const QString &name)
{
    return !name.isEmpty() && name != QLatin1String(".") && name != QLatin1String("..") &&
           std::none_of(name.cbegin(), name.cend(), isTreacherous);
}

bool isSameServer(const QUrl &one, const QUrl &other)
{
    const int port = one.scheme() == QLatin1String("https") ? 443 : 80;
    return one.scheme() == other.scheme() && one.host() == other.host() && one.port(port) == other.port(port);
}

/// Folder parts of \a url, encoded, so that an encoded slash does not count as one.
QByteArray encodedPathOf(const QUrl &url)
{
    return url.path(QUrl::FullyEncoded).toLatin1();
}

QDateTime dateFrom(const QRegularExpressionMatch &match, const QString &format)
{
    // Not in the person's language: servers write English month names.
    const QDateTime date = QLocale::c().toDateTime(match.captured(1) + QLatin1Char(' ') + match.captured(2), format);
    return QDateTime(date.date(), date.time(), Qt::UTC);
}

} // namespace

ListingLinks::ListingLinks(const QUrl &folderUrl)
    : folder(folderUrl.adjusted(QUrl::RemoveUserInfo | QUrl::RemoveQuery | QUrl::RemoveFragment | QUrl::RemoveFilename))
    , folderPath(encodedPathOf(folder))
{
    if (folderPath.isEmpty())
        folderPath = "/";
}

std::optional<ServerListing::Entry> ListingLinks::entryOf(const QByteArray &link) const
{
    if (link.isEmpty() || link.size() > folderPath.size() + kMaxPathPartLength || link.contains('\\'))
        return std::nullopt;
    const QUrl url = folder.resolved(QUrl::fromEncoded(link, QUrl::TolerantMode));
    // Links with a query sort the list.
    if (!url.isValid() || !isSameServer(url, folder) || url.hasQuery() || url.hasFragment() ||
        !url.userInfo().isEmpty())
        return std::nullopt;
    QByteArray part = encodedPathOf(url);
    if (!part.startsWith(folderPath))
        return std::nullopt;
    part.remove(0, folderPath.size());
    ServerListing::Entry entry;
    entry.isFolder = part.endsWith('/');
    if (entry.isFolder)
        part.chop(1);
    entry.name = QString::fromUtf8(QByteArray::fromPercentEncoding(part));
    entry.pathPart = part;
    if (part.contains('/') || part.size() > kMaxPathPartLength || !isSafeName(entry.name))
        return std::nullopt;
    return entry;
}

QDateTime dateIn(const QString &text)
{
    static const QRegularExpression kNumbers(QStringLiteral("(\\d{4}-\\d\\d-\\d\\d)[ T]{1,4}(\\d\\d:\\d\\d)"));
    static const QRegularExpression kDayFirst(QStringLiteral("(\\d\\d-[A-Za-z]{3}-\\d{4}) {1,4}(\\d\\d:\\d\\d)"));
    static const QRegularExpression kYearFirst(QStringLiteral("(\\d{4}-[A-Za-z]{3}-\\d\\d) {1,4}(\\d\\d:\\d\\d)"));
    QRegularExpressionMatch match = kNumbers.match(text);
    if (match.hasMatch())
        return dateFrom(match, QStringLiteral("yyyy-MM-dd HH:mm"));
    match = kDayFirst.match(text);
    if (match.hasMatch())
        return dateFrom(match, QStringLiteral("dd-MMM-yyyy HH:mm"));
    match = kYearFirst.match(text);
    return match.hasMatch() ? dateFrom(match, QStringLiteral("yyyy-MMM-dd HH:mm")) : QDateTime();
}

qint64 sizeIn(const QString &text)
{
    // What is left of a date and its time joins digits with "-" and ":", which no size has around it.
    static const QRegularExpression kSize(
        QStringLiteral("(?<![\\w.:+-])(\\d{1,18}(?:\\.\\d{1,6})?) ?([KMGTkmgt]?)(?:i?[Bb]|[Bb]ytes)?(?![\\w.:+-])"));
    const QRegularExpressionMatch match = kSize.match(text);
    if (!match.hasMatch())
        return -1;
    const int steps = match.captured(2).isEmpty() ? 0 : 1 + QStringLiteral("KMGT").indexOf(match.captured(2).toUpper());
    const double bytes = match.captured(1).toDouble() * std::pow(1024.0, steps);
    return bytes < 9e18 ? static_cast<qint64>(std::llround(bytes)) : -1;
}

} // namespace Korvane::Gui
