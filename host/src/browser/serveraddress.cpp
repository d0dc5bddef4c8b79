#include "serveraddress.h"

#include <algorithm>

namespace Korvane::Gui {

namespace {

const QLatin1String kPlain("xrvp");
const QLatin1String kSecure("xrvps");
const QLatin1String kSchemeEnd("://");

/// Besides letters and digits, as the clients of such servers send them (RFC 3986 3.3).
constexpr char kPathMarks[] = "!$&'()*+,;=:@/";

bool isHexDigit(QChar character)
{
    const ushort code = character.toLower().unicode();
    return (code >= '0' && code <= '9') || (code >= 'a' && code <= 'f');
}

int endOfServer(const QString &text, int start)
{
    const auto endsServer = [](QChar c) {
        return c == QLatin1Char('/') || c == QLatin1Char('?') || c == QLatin1Char('#');
    };
    const auto end = std::find_if(text.cbegin() + start, text.cend(), endsServer);
    return static_cast<int>(end - text.cbegin());
}

QUrl withAuthority(const QString &scheme, const QString &hostAndPort)
{
    QUrl url;
    url.setScheme(scheme);
    url.setAuthority(hostAndPort);
    return url;
}

} // namespace

ServerAddress::ServerAddress(const QString &entered)
{
    const QString text = entered.trimmed();
    const int schemeEnd = text.indexOf(kSchemeEnd);
    const QString found = text.left(qMax(0, schemeEnd)).toLower();
    if (found != kPlain && found != kSecure)
        return;
    scheme = found;
    const int start = schemeEnd + kSchemeEnd.size();
    const int end = endOfServer(text, start);
    const QString authority = text.mid(start, end - start);
    const int at = authority.lastIndexOf(QLatin1Char('@')); // a password may hold one too
    credentials = authority.left(qMax(0, at));
    hostAndPort = authority.mid(at + 1);
    const int question = text.indexOf(QLatin1Char('?'), end);
    path = question < 0 ? text.mid(end) : text.mid(end, question - end);
    query = question < 0 ? QString() : text.mid(question);
    if (path.startsWith(QLatin1Char('#')))
        path.prepend(QLatin1Char('/'));
}

ServerAddress ServerAddress::onServer(const QUrl &url, const QString &path)
{
    ServerAddress address;
    address.scheme = url.scheme() == QLatin1String("https") ? kSecure : kPlain;
    address.hostAndPort = url.authority(QUrl::FullyEncoded).section(QLatin1Char('@'), -1);
    address.path = path;
    return address;
}

QString ServerAddress::serverError() const
{
    const QUrl url = withAuthority(QStringLiteral("http"), hostAndPort);
    if (!url.isValid())
        return url.errorString();
    return QString();
}

QString ServerAddress::toString() const
{
    const QString user = credentials.isEmpty() ? QString() : credentials + QLatin1Char('@');
    return scheme + kSchemeEnd + user + hostAndPort + path + query;
}

QString ServerAddress::printable() const
{
    ServerAddress plain = *this;
    plain.credentials.clear();
    return plain.toString();
}

QUrl ServerAddress::folderUrl() const
{
    QUrl url = withAuthority(isSecure() ? QStringLiteral("https") : QStringLiteral("http"), hostAndPort);
    const QString folder = path.left(path.lastIndexOf(QLatin1Char('/')) + 1);
    url.setPath(folder.isEmpty() ? QStringLiteral("/") : QString::fromLatin1(encodedPath(folder)), QUrl::StrictMode);
    return url;
}

QByteArray encodedPath(const QString &path)
{
    QByteArray result;
    for (int i = 0; i < path.size(); ++i) {
        const bool isEncoded =
            path[i] == QLatin1Char('%') && i + 2 < path.size() && isHexDigit(path[i + 1]) && isHexDigit(path[i + 2]);
        if (isEncoded) {
            result += '%';
            continue;
        }
        // A pair of surrogates is one character.
        const int length = path[i].isHighSurrogate() && i + 1 < path.size() ? 2 : 1;
        result += QUrl::toPercentEncoding(path.mid(i, length), kPathMarks);
        i += length - 1;
    }
    return result;
}

QString serverOf(const QUrl &url)
{
    const int usualPort = url.scheme() == QLatin1String("https") ? 443 : 80;
    return QStringLiteral("%1://%2:%3").arg(url.scheme(), url.host()).arg(url.port(usualPort));
}

} // namespace Korvane::Gui
