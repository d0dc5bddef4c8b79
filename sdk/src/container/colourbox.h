#pragma once

#include "jp2structure.h"

#include <cstdint>
#include <vector>

namespace xrv {

/// Enumerated colour spaces, EnumCS (ISO/IEC 15444-1 table I.10).
constexpr std::uint32_t kSRgbSpace = 16, kGreySpace = 17, kSYccSpace = 18;

/// A colour specification box (ISO/IEC 15444-1 I.5.3.3, extended by ISO/IEC 15444-2 M.11.7).
struct ColourBox
{
    ColourSpecification specification; ///< Kind::Unknown where its method or space is not understood
    int precedence = 0;                ///< PREC
    int approximation = 0;             ///< APPROX: 1 exact to 4 poor, 0 not graded
};

/// Never fails: what is damaged or unknown is of Kind::Unknown.
ColourBox parseColourBox(const Bytes &content);

/// The best box that is understood, by precedence, then exactness, then order. Without one the first box, and without
/// any box nothing.
std::optional<ColourSpecification> chooseColour(const std::vector<ColourBox> &boxes);

} // namespace xrv
