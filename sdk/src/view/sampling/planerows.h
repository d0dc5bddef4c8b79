#pragma once

#include "bytemap.h"
#include "columntaps.h"

#include "base/plane.h"

#include <cstdint>

namespace xrv {

/// Reading of single rows of planes. \a row is in level coordinates and is replaced by the nearest row that the plane
/// has; the taps must be bound to the plane's columns; the plane must not be empty.

/// Cells of all columns of the plane, of the kind that its type is.
void readRow(const Plane &plane, std::int64_t row, std::int32_t *cells);
/// One cell per tap. Pointwise taps only.
void pickRow(const Plane &plane, std::int64_t row, const ColumnTaps &taps, std::int32_t *cells);
/// The same through \a map, to 8 bits.
void pickBytes(const Plane &plane, std::int64_t row, const ColumnTaps &taps, const ByteMap &map, std::uint8_t *bytes);
/// Interpolated along the row.
void blendRow(const Plane &plane, std::int64_t row, const ColumnTaps &taps, double *cells);
/// The same from numbers, one per column of the plane that the taps are bound to.
void blendRow(const double *row, const ColumnTaps &taps, double *cells);

} // namespace xrv
