#pragma once

#include "tilecoding.h"

namespace xrv {

/// Adds the one component of \a other behind the \a components of \a tile: of the same place, levels and precincts,
/// coded in its own way, which marker segments of the component tell. It has one layer; in those that \a tile has
/// besides there is nothing of it.
void addComponent(const EncodedTile &other, std::size_t components, int layers, EncodedTile *tile);

} // namespace xrv
