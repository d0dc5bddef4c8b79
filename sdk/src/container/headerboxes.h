#pragma once

#include "boxreader.h"
#include "colourbox.h"
#include "jp2structure.h"

#include <optional>
#include <vector>

namespace xrv {

/// ISO/IEC 15444-1 table I.7.
constexpr int kMaxBits = 38;
/// The depth of a code with one less than the bits and the sign in the highest bit; may be more than kMaxBits.
BitDepth depthOf(std::uint8_t code);

/// Image header box (ISO/IEC 15444-1 I.5.3.1).
struct ImageHeader
{
    std::uint32_t width = 0, height = 0;
    std::uint16_t components = 0;
    std::uint8_t depthCode = 0;   ///< BPC, 255 where the depths differ
    std::uint8_t compression = 7; ///< C
};

/// What the boxes of one header tell: of the JP2 header box, of a codestream header or of a compositing layer header
/// (ISO/IEC 15444-2 M.11.5 to M.11.7).
struct HeaderBoxes
{
    std::optional<ImageHeader> imageHeader;
    std::vector<BitDepth> depths; ///< bpcc
    std::vector<ColourBox> colours;
    std::optional<Palette> palette;
    std::vector<ChannelMapping> mapping;
    std::vector<ChannelDefinition> definitions;
    std::vector<std::uint16_t> codestreams;  ///< creg of a compositing layer: numbers of the codestreams that it uses
    std::optional<std::uint8_t> opacityType; ///< opct of a compositing layer
};

/// Reads the boxes of headers. Of boxes that may be there only once the first one counts; a damaged one is left out.
/// Either way there is a warning.
class HeaderBoxReader
{
public:
    /// Both are borrowed.
    HeaderBoxReader(BoxReader &reader, WarningList &warnings)
        : reader(reader)
        , warnings(warnings)
    {
    }

    /// False where \a box is none that belongs into a header.
    bool read(const Box &box, HeaderBoxes *header);

private:
    void readColour(const Box &box, HeaderBoxes *header);
    bool parse(std::uint32_t type, const Bytes &content, HeaderBoxes *header);
    void damaged(std::uint32_t type);

    BoxReader &reader;
    WarningList &warnings;
};

} // namespace xrv
