#pragma once

#include <QString>

#include <string>

namespace Korvane {

/// The SDK's UTF-8 \a name with every byte widened to one character, which is how the layer keeps names and opens them
/// again.
QString widenedName(const std::string &name);

/// The name of the local file that \a source means: \a source itself, or, where no such file exists, what it says when
/// its characters are taken for the bytes of a widened UTF-8 name and a file of that name exists.
QString localFileName(const QString &source);

/// Last path component, cut before a "|" that is not its first character.
QString sourceDescription(const QString &source);

/// Whether the SDK reads \a source from a server.
bool isStreamAddress(const QString &source);

/// What a person calls the file of a stream, its name without escapes, and its server. Shortened in the middle where
/// they are long; never with user name and password.
QString streamFileName(const QString &source);
QString streamHost(const QString &source);

/// Size of an image of \a width by \a height cells in gigapixels: "< 1 GP", or as "2.35 GP".
QString gigaPixelText(quint32 width, quint32 height);

} // namespace Korvane
