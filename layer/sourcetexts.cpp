#include "sourcetexts.h"

#include <QDGui/addressutil.h>

#include <QFileInfo>
#include <QUrl>

#include <algorithm>

namespace Korvane {

namespace {

constexpr int kMaxNameLength = 60;

QString shortened(const QString &text)
{
    if (text.size() <= kMaxNameLength)
        return text;
    return text.left(kMaxNameLength / 2) + QChar(0x2026) + text.right(kMaxNameLength / 2 - 1);
}

} // namespace

QString widenedName(const std::string &name)
{
    return QString::fromLatin1(name.data(), static_cast<int>(name.size()));
}

QString localFileName(const QString &source)
{
    const bool widened = std::all_of(source.begin(), source.end(), [](QChar c) { return c.unicode() < 256; });
    if (!widened || QFileInfo::exists(source))
        return source;
    const QString narrowed = QString::fromUtf8(source.toLatin1());
    return QFileInfo::exists(narrowed) ? narrowed : source;
}

QString sourceDescription(const QString &source)
{
    const QString name = QFileInfo(source).fileName();
    const int bar = name.indexOf(QLatin1Char('|'));
    return bar > 0 ? name.left(bar) : name;
}

bool isStreamAddress(const QString &source)
{
    return source.startsWith(QLatin1String("xrvp"), Qt::CaseInsensitive);
}

QString streamFileName(const QString &source)
{
    const QUrl url(Util::Address::narrowed(source));
    const QString name = url.fileName(QUrl::FullyDecoded).simplified();
    return shortened(name.isEmpty() ? url.path(QUrl::FullyDecoded).simplified() : name);
}

QString streamHost(const QString &source)
{
    return shortened(QUrl(Util::Address::narrowed(source)).host());
}

QString gigaPixelText(quint32 width, quint32 height)
{
    const quint64 megaPixels = quint64(width) * height / 1000 / 1000;
    const double gigaPixels = double(megaPixels) / 1000.0;
    if (gigaPixels < 1.0)
        return QStringLiteral("< 1 GP");
    return QString::number(gigaPixels, 'f', 2) + QLatin1String(" GP");
}

} // namespace Korvane
