#pragma once

#include <QDGui/qdguiglobal.h>

#include <QString>

namespace Korvane::Util::Address {

/// Whether \a source begins with a scheme and "://", as a stream address does; anything else names a local file. A
/// "file:" address is none in this sense.
QDGUI_EXPORT bool isAddress(const QString &source);

/// \a source as the address of a stream where it is a web address, as a person copies it from a browser: "xrvp" for
/// "http", "xrvps" for "https". Anything else is returned as it is.
QDGUI_EXPORT QString asStream(const QString &source);

/// \a source without the user name and password that an address may hold before the server's name (RFC 3986 3.2.1);
/// what is no address is returned as it is. For whatever is stored or handed on to be opened again.
QDGUI_EXPORT QString withoutCredentials(const QString &source);

/// The same without what follows "?" in an address, which may be a token. For whatever is shown or logged.
QDGUI_EXPORT QString shown(const QString &source);

/// Layers may keep a source as the bytes of its UTF-8 text, widened one by one. The text itself where \a source can be
/// nothing else, otherwise \a source.
QDGUI_EXPORT QString narrowed(const QString &source);

} // namespace Korvane::Util::Address
