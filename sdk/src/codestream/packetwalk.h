#pragma once

#include "packetorder.h"
#include "tileindex.h"

namespace xrv {

/// Finds the packets of a tile without packet lengths, by reading one packet header after the other. \a places is
/// indexed by packet number; packets that are not there have length 0. \a isComplete is false when the data end early
/// or contradict themselves; what came before stands. Fails only when \a source fails or the walk is cancelled.
PLK::CError walkPackets(ByteSource &source, const MainHeader &header, const TileStyle &style, const IntRect &tile,
                        const PacketNumbering &numbering, const std::vector<ByteRange> &data,
                        std::vector<TileIndex::PacketPlace> *places, bool *isComplete);

} // namespace xrv
