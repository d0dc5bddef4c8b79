#include "colourbox.h"

#include "boxtype.h"

#include "base/bytecursor.h"

#include <tuple>

namespace xrv {

namespace {

using Kind = ColourSpecification::Kind;

// ISO/IEC 15444-1 table I.9, ISO/IEC 15444-2 table M.25.
Kind kindOfEnumerated(std::uint32_t space)
{
    switch (space) {
    case kSRgbSpace:
    case 20: // e-sRGB
        return Kind::SRgb;
    case 0:  // bi-level, 0 is white
    case 15: // bi-level, 0 is black
    case kGreySpace:
        return Kind::Greyscale;
    case 1: // YCbCr(1), limited range
    case 3: // YCbCr(2), full range
    case 4: // YCbCr(3), limited range
    case kSYccSpace:
    case 24: // e-sYCC
        return Kind::SYcc;
    case 14:
        return Kind::CieLab;
    case 11: // CMY
    case 12: // CMYK
        return Kind::Cmyk;
    default:
        return Kind::Unknown;
    }
}

// Header of a profile: ICC.1:2010 7.2. Only whether it can be a source of pixels is asked here.
bool isUsableProfile(const Bytes &profile)
{
    if (profile.size() < 128)
        return false;
    ByteCursor cursor(profile.data(), profile.size());
    cursor.skip(16);
    const std::uint32_t space = cursor.u32();
    cursor.skip(16);
    const std::uint32_t signature = cursor.u32();
    return signature == boxType("acsp") &&
           (space == boxType("RGB ") || space == boxType("GRAY") || space == boxType("CMYK"));
}

// Parameterized colour (H.273 code points): only those that name sRGB or sYCC.
Kind kindOfParameterized(ByteCursor &cursor)
{
    const int primaries = cursor.u16();
    const int transfer = cursor.u16();
    const int matrix = cursor.u16();
    const bool isFullRange = cursor.u8() & 0x80;
    if (!cursor.ok() || !isFullRange || primaries != 1 || (transfer != 1 && transfer != 6 && transfer != 13))
        return Kind::Unknown;
    if (matrix == 0)
        return Kind::SRgb;
    return matrix == 5 || matrix == 6 ? Kind::SYcc : Kind::Unknown;
}

Bytes rest(const ByteCursor &cursor)
{
    return Bytes(cursor.here(), cursor.here() + cursor.remaining());
}

} // namespace

ColourBox parseColourBox(const Bytes &content)
{
    ColourBox box;
    ByteCursor cursor(content.data(), content.size());
    const int method = cursor.u8();
    box.precedence = static_cast<std::int8_t>(cursor.u8());
    box.approximation = cursor.u8();
    ColourSpecification &specification = box.specification;
    if (method == 1) {
        specification.enumeratedSpace = cursor.u32();
        if (!cursor.ok())
            return box;
        specification.kind = kindOfEnumerated(specification.enumeratedSpace);
        if (specification.kind == Kind::CieLab)
            specification.enumParameters = rest(cursor);
    } else if ((method == 2 || method == 3) && cursor.ok()) {
        specification.iccProfile = rest(cursor);
        if (isUsableProfile(specification.iccProfile))
            specification.kind = Kind::Icc;
    } else if (method == 5) {
        specification.kind = kindOfParameterized(cursor);
    }
    return box;
}

std::optional<ColourSpecification> chooseColour(const std::vector<ColourBox> &boxes)
{
    const auto rank = [](const ColourBox &box) {
        // Plain JP2 files do not grade their one box (APPROX 0), so that counts as exact.
        return std::make_tuple(box.specification.kind != Kind::Unknown, box.precedence,
                               box.approximation == 0 ? -1 : -box.approximation);
    };
    const ColourBox *best = nullptr;
    for (const ColourBox &box : boxes) {
        if (!best || rank(box) > rank(*best))
            best = &box;
    }
    if (!best)
        return std::nullopt;
    return best->specification;
}

} // namespace xrv
