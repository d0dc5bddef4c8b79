#pragma once

#include "plkexport.h"

#include <string>

namespace PLK {

/// A text that can be made from and turned into narrow (UTF-8) and wide form. Null pointers make an empty text.
class PLK_EXPORT CString
{
public:
    CString() = default;
    CString(const char *utf8);
    /// UTF-16 where wchar_t has two bytes, UTF-32 elsewhere. Units that are no character become U+FFFD.
    CString(const wchar_t *wide);

    const char *Utf8() const { return text.c_str(); }
    std::wstring Wide() const;
    bool IsEmpty() const { return text.empty(); }

private:
    std::string text;
};

} // namespace PLK
