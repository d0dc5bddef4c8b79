#pragma once

#include "channels.h"
#include "colourconversion.h"

#include "container/jp2structure.h"
#include "container/warninglist.h"
#include "decode/rasterreader.h"

#include <memory>
#include <optional>
#include <vector>

namespace xrv {

/// What the colour channels of a file mean, and how they become sRGB.
struct ColourModel
{
    enum class Meaning { None, Grey, Rgb };
    Meaning meaning = Meaning::None;
    std::size_t inputs = 0;                       ///< colour channels that it takes, the first ones
    std::unique_ptr<ColourConversion> conversion; ///< null: the channels are shown as they are
};

/// The model that \a specification and the \a colours (channels in the order of their association) tell. What cannot be
/// used is put into \a warnings, and the colours are guessed as for a bare codestream: a single channel is grey, three
/// of 8 bits are red, green and blue, or luma and chroma if the second and third are subsampled. \a isDefined: the file
/// itself says that these are its colours.
ColourModel chooseColourModel(const std::optional<ColourSpecification> &specification,
                              const std::vector<Channel> &colours, bool isDefined, const RasterInfo &raster,
                              WarningList &warnings);

} // namespace xrv
