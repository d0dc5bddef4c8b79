#pragma once

#include "openjpegdecoder.h"
#include "rasterreader.h"

namespace xrv {

/// A plane of \a rect with all cells 0.
Plane makePlane(int component, const IntRect &rect, SampleType type);

/// Puts decoded cells, which cover \a decodedRect, into a plane of that rectangle.
Plane planeFromCells(int component, const IntRect &decodedRect, SampleType type, const DecodedComponent &decoded);

/// Averages blocks of 2^levels cells: the result has every cell u of which u * 2^levels lies in \a plane.
Plane averaged(const Plane &plane, int levels);

/// Copies the cells that both have from \a source to \a target. The types must be equal.
void copyCells(const Plane &source, Plane *target);

} // namespace xrv
