#pragma once

#include "io/bytesource.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace xrv {

/// Bits and sign of a component as the container gives them (ihdr BPC, bpcc: ISO/IEC 15444-1 I.5.3.1, I.5.3.2).
struct BitDepth
{
    std::uint8_t bits = 0; ///< 1 to 38
    bool isSigned = false;
};

/// Colour specification box (I.5.3.3) that is used for display: the best one that this library understands. The kind is
/// a family; which member of it (sRGB or e-sRGB, full or limited range, ...) the enumerated space tells.
struct ColourSpecification
{
    enum class Kind { Unknown, SRgb, Greyscale, SYcc, CieLab, Icc, Cmyk };
    Kind kind = Kind::Unknown;
    std::uint32_t enumeratedSpace = 0; ///< EnumCS as printed, 0 for ICC and parameterized colour
    Bytes iccProfile;                  ///< for Kind::Icc
    Bytes enumParameters;              ///< EP field of CIELab, may be empty
};

/// Palette box (I.5.3.4).
struct Palette
{
    std::uint32_t entries = 0;        ///< 1 to 1024
    std::vector<BitDepth> columns;    ///< one per generated channel
    std::vector<std::int64_t> values; ///< entries x columns, row by row
};

/// One channel of the component mapping box (I.5.3.5).
struct ChannelMapping
{
    std::uint16_t component = 0;
    bool usesPalette = false;
    std::uint8_t paletteColumn = 0;
};

/// One entry of the channel definition box (I.5.3.6).
struct ChannelDefinition
{
    std::uint16_t channel = 0;
    std::uint16_t type = 0;        ///< 0 colour, 1 opacity, 2 premultiplied opacity, 65535 unspecified
    std::uint16_t association = 0; ///< 0 whole image, 1.. colour number, 65535 none
};

/// A box whose contents stay in the file.
struct BoxPlace
{
    std::uint32_t type = 0; ///< four characters, first one in the highest byte
    ByteRange content;      ///< in the file
};

/// A UUID box (I.7.2) with its contents (without the UUID), which are kept up to a limit.
struct UuidBox
{
    std::array<std::uint8_t, 16> uuid{};
    Bytes content;
};

/// A GML association: label and XML text of one box inside a "gml.data" association (OGC 05-047r3 and 08-085r8).
struct LabelledXml
{
    std::string label;
    std::string xml;
};

/// What the boxes of a JP2 or JPX file tell. A bare codestream has only the codestream's place.
struct Jp2Structure
{
    bool isBareCodestream = false;
    ByteRange codestream;                          ///< in the file; an open-ended box reaches to the file's end
    std::uint32_t imageWidth = 0, imageHeight = 0; ///< ihdr, 0 without
    std::vector<BitDepth> depths;                  ///< per component, empty without ihdr
    std::optional<ColourSpecification> colour;
    std::optional<Palette> palette;
    std::vector<ChannelMapping> mapping;
    std::vector<ChannelDefinition> definitions;
    std::vector<BoxPlace> xmlBoxes; ///< in file order, those in superboxes included
    std::vector<UuidBox> uuidBoxes; ///< in file order
    std::vector<LabelledXml> gml;   ///< in file order, empty without a "gml.data" association
    bool hasGmlBox = false;
    std::vector<BoxPlace> otherBoxes; ///< of the outermost level and of unknown types, complete ones, in file order
};

/// Reads the boxes of \a source. Recognises the format by content; anything else is PLK_ERR_UNKNOWN_FORMAT. Damage in
/// boxes that decoding can do without is put into \a warnings (sentences, may be null) and is no error. Without a
/// codestream: PLK_ERR_TRUNCATED, PLK_ERR_MALFORMED or, for what this library does not read (films, compound documents,
/// scattered codestreams), PLK_ERR_UNSUPPORTED. Errors of the source are passed on. Reads box headers and the contents
/// that it needs, never the codestream. Any thread.
PLK::CError readJp2Structure(ByteSource &source, Jp2Structure *structure, std::vector<std::string> *warnings);

} // namespace xrv
