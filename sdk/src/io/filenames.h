#pragma once

#include <string>

namespace xrv {

/// The UTF-8 name that a caller means by a wide one. Callers keep names by widening this library's UTF-8 names byte by
/// byte and come back with the result; so a name whose characters are all below 256 and, taken as bytes, are UTF-8 with
/// at least one character beyond ASCII is taken that way if there is no file under the plain reading but one under the
/// other. Addresses, which cannot be looked up, are taken that way at once. Null is an empty name.
std::string resolveName(const wchar_t *name);

/// The path in a local name: text after the first "|" is no part of it, unless a file of the whole name exists.
std::string localPath(const std::string &name);

/// A name of the form "scheme://...", compared without case. \a scheme in lower case.
bool hasScheme(const std::string &name, const char *scheme);

/// Served by the stream client: "xrvp://" and "xrvps://".
bool isStreamAddress(const std::string &name);

} // namespace xrv
