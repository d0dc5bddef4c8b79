#include "sources.h"

#include <QDGui/addressutil.h>
#include <QDGui/layer.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMimeData>
#include <QRegularExpression>
#include <QUrl>

namespace Viewer::Sources {

namespace {

/// A context for texts.
struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(Viewer::Sources)
};

QStringList fromText(const QString &text)
{
    QStringList found;
    for (const QString &line : text.split(QRegularExpression(QStringLiteral("[\r\n]+")), Qt::SkipEmptyParts)) {
        const QString source = normalized(line);
        if (!line.trimmed().isEmpty() && (isAddress(source) || QFileInfo::exists(source)))
            found.append(source);
    }
    return found;
}

} // namespace

bool isAddress(const QString &source)
{
    return Korvane::Util::Address::isAddress(source);
}

QString normalized(const QString &source)
{
    if (isAddress(source))
        return Korvane::Util::Address::asStream(source.trimmed());
    // Blanks may be part of a file name; only a file: address cannot begin or end with one.
    if (source.trimmed().startsWith(QLatin1String("file:"), Qt::CaseInsensitive)) {
        const QString local = QUrl(source.trimmed()).toLocalFile();
        if (!local.isEmpty())
            return QDir::cleanPath(QFileInfo(local).absoluteFilePath());
    }
    return source.isEmpty() ? source : QDir::cleanPath(QFileInfo(source).absoluteFilePath());
}

QString withoutCredentials(const QString &source)
{
    return Korvane::Util::Address::withoutCredentials(source);
}

QString shown(const QString &source)
{
    return Korvane::Util::Address::shown(source);
}

QString shortName(const QString &source)
{
    QString path = isAddress(source) ? QUrl(source).path() : QDir::fromNativeSeparators(source);
    while (path.endsWith(QLatin1Char('/')))
        path.chop(1);
    const QString name = path.mid(path.lastIndexOf(QLatin1Char('/')) + 1);
    return name.isEmpty() ? shown(source) : name;
}

QStringList fromMimeData(const QMimeData &data)
{
    QStringList found;
    for (const QUrl &url : data.urls()) {
        const QString source = url.isLocalFile() ? url.toLocalFile() : url.toString(QUrl::FullyEncoded);
        if (!source.isEmpty())
            found.append(normalized(source));
    }
    if (found.isEmpty() && data.hasText())
        found = fromText(data.text());
    found.removeDuplicates();
    return found;
}

QString ofLayer(const Korvane::Map::Layer &layer)
{
    QString source = layer.getDataSource();
    if (!isAddress(source) && QFileInfo::exists(source))
        return source;
    const QString decoded = Korvane::Util::Address::narrowed(source);
    return isAddress(source) || QFileInfo::exists(decoded) ? decoded : source;
}

QString nameOfLayer(const Korvane::Map::Layer &layer)
{
    QString name = layer.getDescription();
    const QString source = ofLayer(layer);
    const int question = isAddress(source) ? source.indexOf(QLatin1Char('?')) : -1;
    if (question < 0 || name.isEmpty())
        return name;
    // Layers call themselves by the end of their address, a token included.
    const QString query = source.mid(question);
    return name.endsWith(query) || query.endsWith(name) ? shortName(source) : name;
}

QString checkReadable(const QString &source)
{
    if (isAddress(source))
        return QString();
    const QFileInfo info(source);
    const QString name = source.isEmpty() ? QStringLiteral("\"\"") : QDir::toNativeSeparators(source);
    if (!info.exists())
        return info.isSymLink() ? Texts::tr("%1 is a link to a file that does not exist.").arg(name)
                                : Texts::tr("%1 does not exist.").arg(name);
    if (info.isDir())
        return Texts::tr("%1 is a folder, not an image.").arg(name);
    if (!info.isFile())
        return Texts::tr("%1 is not an ordinary file.").arg(name);
    QFile file(source);
    if (!file.open(QIODevice::ReadOnly))
        return Texts::tr("%1 cannot be read: %2.").arg(name, file.errorString());
    return file.size() > 0 ? QString() : Texts::tr("%1 is empty.").arg(name);
}

} // namespace Viewer::Sources
