#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

namespace Korvane::Gui {

/// An "xrvp://" or "xrvps://" address, taken apart: scheme://[user[:password]@]host[:port][/path][?query]. A "#"
/// belongs to the path.
class ServerAddress
{
public:
    ServerAddress() = default;
    /// \a text as a person enters it; blanks around it are ignored.
    explicit ServerAddress(const QString &text);
    /// The address of \a path (with a leading slash) on the server that \a url (http or https) names.
    static ServerAddress onServer(const QUrl &url, const QString &path);

    /// Whether the text begins with one of the two schemes.
    bool hasScheme() const { return !scheme.isEmpty(); }
    bool isSecure() const { return scheme.size() == 5; }
    bool hasHost() const { return !hostAndPort.isEmpty(); }
    /// Why the server's name or port cannot be, as part of a sentence; empty when they can.
    QString serverError() const;
    /// A server, or a folder on one; not an image.
    bool isFolder() const { return path.isEmpty() || path.endsWith(QLatin1Char('/')); }

    bool hasCredentials() const { return !credentials.isEmpty(); }
    /// "user" or "user:password", as entered.
    QString getCredentials() const { return credentials; }
    void setCredentials(const QString &text) { credentials = text; }

    /// The whole address as a text, with its credentials.
    QString toString() const;
    /// The same without credentials.
    QString printable() const;
    /// Where the folder, or the folder that the image lies in, is listed: http for xrvp, https for xrvps; without
    /// credentials and query.
    QUrl folderUrl() const;

private:
    QString scheme;      ///< lower case
    QString credentials; ///< empty when there are none
    QString hostAndPort;
    QString path;  ///< with a leading slash, or empty
    QString query; ///< with its question mark, or empty
};

/// \a path percent-encoded as it goes over the wire; what is encoded already stays.
QByteArray encodedPath(const QString &path);

/// Scheme, name and port of \a url (http or https): equal for all addresses of one server.
QString serverOf(const QUrl &url);

} // namespace Korvane::Gui
