#pragma once

#include <QRgb>

#include <array>

namespace Korvane {

/// What each of the 256 values of a colour channel becomes.
using ToneTable = std::array<quint8, 256>;

/// \a contrast is the slope around the middle grey, \a brightness moves by a full range per 1.0; both are neutral at 1.
ToneTable makeToneTable(double contrast, double brightness);

/// Writes \a count ARGB32 pixels with red, green and blue replaced; alpha stays. \a to may be \a from.
void applyToneTable(const ToneTable &table, const QRgb *from, QRgb *to, int count);

/// The whole part of \a value, kept within 0 to 255; 0 for a NaN.
quint8 truncatedToByte(double value);

} // namespace Korvane
