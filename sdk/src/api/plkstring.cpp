#include <xrv60/plkstring.h>

#include "base/utf8.h"

#include <cwchar>

namespace PLK {

CString::CString(const char *utf8)
    : text(utf8 ? utf8 : "")
{
}

CString::CString(const wchar_t *wide)
    : text(wide ? xrv::utf8FromWide(wide, std::wcslen(wide)) : std::string())
{
}

std::wstring CString::Wide() const
{
    return xrv::wideFromUtf8(text);
}

} // namespace PLK
