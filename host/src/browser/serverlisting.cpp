#include "serverlisting.h"

#include "htmllisting.h"

#include <QCollator>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <QSet>

#include <algorithm>

namespace Korvane::Gui {

namespace {

QDateTime dateOf(const QJsonObject &object)
{
    // nginx: "Thu, 05 Sep 2024 10:11:12 GMT"; Caddy: "2024-09-05T10:11:12Z".
    const QString text = object.value(QStringLiteral("mtime")).toString();
    const QDateTime date = QLocale::c().toDateTime(text.mid(5, 20), QStringLiteral("dd MMM yyyy HH:mm:ss"));
    return date.isValid() ? QDateTime(date.date(), date.time(), Qt::UTC)
                          : dateIn(object.value(QStringLiteral("mod_time")).toString());
}

std::optional<ServerListing::Entry> entryOf(const QJsonObject &object, const ListingLinks &links)
{
    const QString name = object.value(QStringLiteral("name")).toString();
    // Names stand in it as they are, percent signs included; only Caddy marks folders with a slash.
    QByteArray link = QUrl::toPercentEncoding(name.endsWith(QLatin1Char('/')) ? name.chopped(1) : name);
    const bool isFolder = object.value(QStringLiteral("type")).toString() == QLatin1String("directory") ||
                          object.value(QStringLiteral("is_dir")).toBool();
    if (isFolder)
        link += '/';
    std::optional<ServerListing::Entry> entry = links.entryOf("./" + link);
    if (!entry)
        return entry;
    const double size = object.value(QStringLiteral("size")).toDouble(-1);
    if (!isFolder && size >= 0 && size < 9e15)
        entry->size = static_cast<qint64>(size);
    entry->modified = dateOf(object);
    return entry;
}

ServerListing parseJson(const QJsonArray &array, const QUrl &folder)
{
    ServerListing listing;
    listing.isListing = true;
    const ListingLinks links(folder);
    for (const QJsonValue &value : array) {
        const std::optional<ServerListing::Entry> entry = entryOf(value.toObject(), links);
        if (!entry || !(entry->isFolder || isImageName(entry->name)))
            continue;
        listing.isCutOff = listing.entries.size() == ServerListing::kMaxEntries;
        if (listing.isCutOff)
            break;
        listing.entries.append(*entry);
    }
    return listing;
}

/// A list that is too long is read as far as its last whole entry. A name may hold what looks like an entry's end.
ServerListing parseJson(const QByteArray &body, const QUrl &folder)
{
    constexpr int kTries = 8;
    QJsonDocument document = QJsonDocument::fromJson(body);
    int end = body.size();
    for (int i = 0; i < kTries && !document.isArray() && end > 0; ++i) {
        end = body.lastIndexOf('}', end - 1);
        document = QJsonDocument::fromJson(body.left(end + 1) + ']');
    }
    ServerListing listing = document.isArray() ? parseJson(document.array(), folder) : ServerListing();
    listing.isCutOff = listing.isCutOff || (listing.isListing && end < body.size());
    return listing;
}

ServerListing parseAny(const QByteArray &body, const QUrl &folder)
{
    const QByteArray start = body.left(64).trimmed();
    if (start.startsWith('['))
        return parseJson(body, folder);
    // Anything else may be a page; a picture or an archive has no links in it.
    return start.contains('\0') ? ServerListing() : HtmlListing(body, folder).read();
}

/// Pages may link an entry's icon and its name.
void removeRepeated(QVector<ServerListing::Entry> *entries)
{
    QSet<QByteArray> seen;
    const auto isRepeated = [&seen](const ServerListing::Entry &entry) {
        const int before = seen.size();
        seen.insert(entry.pathPart);
        return seen.size() == before;
    };
    // From the end: date and size stand behind the last link.
    const auto kept = std::remove_if(entries->rbegin(), entries->rend(), isRepeated);
    entries->erase(entries->begin(), kept.base());
}

void sortByName(QVector<ServerListing::Entry> *entries)
{
    // The locale of no language knows no order by number.
    const QLocale locale;
    QCollator collator(locale.language() == QLocale::C ? QLocale(QLocale::English) : locale);
    collator.setNumericMode(true);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    using Keyed = std::pair<QCollatorSortKey, int>;
    std::vector<Keyed> keys;
    keys.reserve(static_cast<size_t>(entries->size()));
    for (int i = 0; i < entries->size(); ++i)
        keys.emplace_back(collator.sortKey(entries->at(i).name), i);
    std::sort(keys.begin(), keys.end(), [entries](const Keyed &one, const Keyed &other) {
        if (entries->at(one.second).isFolder != entries->at(other.second).isFolder)
            return entries->at(one.second).isFolder;
        const int order = one.first.compare(other.first);
        return order != 0 ? order < 0 : entries->at(one.second).pathPart < entries->at(other.second).pathPart;
    });
    QVector<ServerListing::Entry> sorted;
    sorted.reserve(entries->size());
    for (const Keyed &key : keys)
        sorted.append(entries->at(key.second));
    entries->swap(sorted);
}

} // namespace

ServerListing parseServerListing(const QByteArray &body, const QUrl &folder)
{
    ServerListing listing = parseAny(body, folder);
    removeRepeated(&listing.entries);
    sortByName(&listing.entries);
    listing.isListing = listing.isListing || !listing.entries.isEmpty();
    return listing;
}

bool isImageName(const QString &name)
{
    static const char *const kEndings[] = {".jp2", ".j2k", ".j2c", ".jpc", ".jpx", ".jpf", ".jph", ".jhc", ".xrv"};
    return std::any_of(std::begin(kEndings), std::end(kEndings), [&name](const char *ending) {
        return name.endsWith(QLatin1String(ending), Qt::CaseInsensitive);
    });
}

} // namespace Korvane::Gui
