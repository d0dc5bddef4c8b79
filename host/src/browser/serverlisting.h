#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QUrl>
#include <QVector>

namespace Korvane::Gui {

/// What a web server says is in a folder.
struct ServerListing
{
    struct Entry
    {
        QString name;        ///< for people: decoded, without a slash at its end
        QByteArray pathPart; ///< percent-encoded, without a slash at its end
        bool isFolder = false;
        qint64 size = -1;   ///< bytes, rounded where the server rounds; -1 when it does not tell
        QDateTime modified; ///< as the server tells it, in whatever zone it keeps; may be invalid
    };

    QVector<Entry> entries; ///< folders first, then images, each by name; other files are left out
    bool isListing = false; ///< The answer is a list of a folder, be it an empty one.
    bool isCutOff = false;  ///< There are more entries than are kept.

    static constexpr int kMaxEntries = 20000;
};

/// Reads the body of an answer to a request of the folder \a folder (after redirects): the JSON arrays that nginx
/// ("autoindex_format json") and Caddy write, else an HTML page with links (nginx, Apache, Caddy, lighttpd, Python's
/// http.server and the like). Of its links only those count that name something directly in the folder, on the same
/// server. Never fails: what cannot be understood has no entries. Any thread.
ServerListing parseServerListing(const QByteArray &body, const QUrl &folder);

/// Whether \a name ends like an image that can be streamed.
bool isImageName(const QString &name);

} // namespace Korvane::Gui
