#pragma once

#include "cells/cellkind.h"
#include "container/jp2structure.h"
#include "container/warninglist.h"
#include "decode/rasterreader.h"

#include <cstdint>
#include <vector>

namespace xrv {

/// A channel of the image (ISO/IEC 15444-1 I.5.3.5): a component, as it is or through a column of the palette.
struct Channel
{
    int component = 0;
    int paletteColumn = -1; ///< -1: no palette
    std::uint8_t bits = 8;  ///< 1 to 31; to 32 with a sign or of a kind of its own
    bool isSigned = false;
    CellKind kind = CellKind::Whole;
};

/// The channels of a file. Where palette and mapping contradict each other or the components, the components are the
/// channels.
std::vector<Channel> makeChannels(const RasterInfo &raster, const Jp2Structure &structure, WarningList &warnings);

/// The channels by their use, as the channel definitions tell (I.5.3.6).
struct ChannelUse
{
    std::vector<int> colours; ///< in the order of the colours that they are associated with
    std::vector<int> others;  ///< neither colour nor opacity, in file order
    int opacity = -1;         ///< -1: none. Of several that of the whole image
    bool isPremultiplied = false;
    bool isDefined = false; ///< the file has definitions that can be used; else all channels are colours, in file order
};

ChannelUse findChannelUse(const std::vector<ChannelDefinition> &definitions, int channelCount, WarningList &warnings);

} // namespace xrv
