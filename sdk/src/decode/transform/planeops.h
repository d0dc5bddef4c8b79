#pragma once

#include "base/plane.h"

namespace xrv {

/// A plane of \a rect with all cells 0.
Plane makePlane(int component, const IntRect &rect, SampleType type);

/// Averages squares of 2^levels by 2^levels cells: the result has every cell u of which u * 2^levels lies in \a plane.
Plane averaged(const Plane &plane, int levels);

/// Copies the cells that both have from \a source to \a target. The types must be equal.
void copyCells(const Plane &source, Plane *target);

} // namespace xrv
