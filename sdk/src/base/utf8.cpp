#include "utf8.h"

#include <cstdint>
#include <type_traits>

#if defined(_WIN32)
#include <windows.h>
#endif

namespace xrv {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool isSurrogate(char32_t code)
{
    return code >= 0xD800 && code <= 0xDFFF;
}

bool isContinuation(unsigned char byte)
{
    return (byte & 0xC0) == 0x80;
}

void appendUtf8(std::string *out, char32_t code)
{
    if (code > 0x10FFFF || isSurrogate(code))
        code = kReplacement;
    if (code < 0x80) {
        out->push_back(static_cast<char>(code));
        return;
    }
    const int tail = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
    const unsigned lead = tail == 1 ? 0xC0u : tail == 2 ? 0xE0u : 0xF0u;
    out->push_back(static_cast<char>(lead | code >> (6 * tail)));
    for (int i = tail - 1; i >= 0; --i)
        out->push_back(static_cast<char>(0x80u | (code >> (6 * i) & 0x3Fu)));
}

/// Takes the character at \a position, which it moves on; false when the bytes are no character, then by one byte.
bool takeUtf8(const std::string &text, std::size_t *position, char32_t *code)
{
    const auto byteAt = [&text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byteAt((*position)++);
    *code = lead;
    if (lead < 0x80)
        return true;
    const std::size_t tail = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
    if (lead < 0xC2 || lead > 0xF4 || text.size() - *position < tail)
        return false;
    char32_t value = lead & (0x3Fu >> tail);
    for (std::size_t i = 0; i < tail; ++i) {
        if (!isContinuation(byteAt(*position + i)))
            return false;
        value = value << 6 | (byteAt(*position + i) & 0x3Fu);
    }
    constexpr char32_t kSmallest[] = {0x80, 0x800, 0x10000};
    if (value < kSmallest[tail - 1] || value > 0x10FFFF || isSurrogate(value))
        return false;
    *position += tail;
    *code = value;
    return true;
}

/// The unit pairs of UTF-16; on platforms with four-byte wchar_t a pair is accepted as well.
char32_t takeWide(const wchar_t *text, std::size_t length, std::size_t *position)
{
    using Unit = std::make_unsigned_t<wchar_t>;
    const auto unit = static_cast<char32_t>(static_cast<Unit>(text[(*position)++]));
    if (unit < 0xD800 || unit > 0xDBFF || *position == length)
        return unit;
    const auto low = static_cast<char32_t>(static_cast<Unit>(text[*position]));
    if (low < 0xDC00 || low > 0xDFFF)
        return unit;
    ++*position;
    return 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
}

void appendWide(std::wstring *out, char32_t code)
{
    if (sizeof(wchar_t) > 2 || code < 0x10000) {
        out->push_back(static_cast<wchar_t>(code));
        return;
    }
    out->push_back(static_cast<wchar_t>(0xD800 + ((code - 0x10000) >> 10)));
    out->push_back(static_cast<wchar_t>(0xDC00 + (code & 0x3FF)));
}

} // namespace

std::string utf8FromWide(const wchar_t *text, std::size_t length)
{
    std::string out;
    out.reserve(length);
    for (std::size_t position = 0; position < length;)
        appendUtf8(&out, takeWide(text, length, &position));
    return out;
}

std::wstring wideFromUtf8(const std::string &text)
{
    std::wstring out;
    out.reserve(text.size());
    for (std::size_t position = 0; position < text.size();) {
        char32_t code = 0;
        appendWide(&out, takeUtf8(text, &position, &code) ? code : kReplacement);
    }
    return out;
}

std::string utf8FromLocal8Bit(const std::string &text)
{
#if defined(_WIN32)
    const int bytes = static_cast<int>(text.size());
    std::wstring wide(text.size(), L'\0'); // never more units than bytes
    const int units = MultiByteToWideChar(CP_ACP, 0, text.data(), bytes, wide.data(), bytes);
    wide.resize(static_cast<std::size_t>(units));
    return utf8FromWide(wide);
#else
    return text;
#endif
}

bool isValidUtf8(const std::string &text)
{
    for (std::size_t position = 0; position < text.size();) {
        char32_t code = 0;
        if (!takeUtf8(text, &position, &code))
            return false;
    }
    return true;
}

std::string asciiLower(std::string text)
{
    for (char &c : text)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return text;
}

} // namespace xrv
