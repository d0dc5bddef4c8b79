#pragma once

#include <cstddef>
#include <string>

namespace xrv {

/// Wide text (UTF-16 where wchar_t has two bytes, UTF-32 elsewhere) as UTF-8. Units that are no character become
/// U+FFFD.
std::string utf8FromWide(const wchar_t *text, std::size_t length);
inline std::string utf8FromWide(const std::wstring &text)
{
    return utf8FromWide(text.data(), text.size());
}

/// UTF-8 as wide text. Bytes that are not UTF-8 become U+FFFD, one for each byte.
std::wstring wideFromUtf8(const std::string &text);

/// A text in the encoding of the system's narrow interfaces as UTF-8; the two are the same outside Windows.
std::string utf8FromLocal8Bit(const std::string &text);

/// No surrogates, no overlong forms, nothing above U+10FFFF (RFC 3629 section 3).
bool isValidUtf8(const std::string &text);

/// ASCII letters to lower case, everything else as it is: the locale has no say in file formats and addresses.
std::string asciiLower(std::string text);

} // namespace xrv
