#pragma once

#include "base/bytes.h"
#include "cells/cellmapping.h"
#include "statistics/statisticsrecord.h"

#include <xrv60/plktypes.h>

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace xrv {

/// Version of the files that this library writes: the second one of those whose cells are mapped to codes, which
/// readers of version 1 would show. It reads every minor version of both.
constexpr std::uint8_t kXrvPlainVersion = 1, kXrvMappedVersion = 2;
constexpr std::uint8_t kXrvMinorVersion = 0;

/// File information of an XRV file (docs/xrv-format.md, box 'finf').
struct XrvFileInfo
{
    PLKCellType cellType = PLKCT_UINT8;
    PLKColorSpace colourSpace = PLK_COLORSPACE_NONE;
    PLKCellSizeUnits units = PLK_UNITS_INVALID;
    bool isLossless = false;
    bool hasPlace = false;                       ///< transform is a place in the world
    std::uint16_t bands = 0;                     ///< number of bands
    std::uint16_t targetRate = 0;                ///< n of n:1, 1 for lossless, 0 unknown
    float actualRate = 0.0f;                     ///< bytes of all cells against bytes of the file, 0 where unknown
    std::uint32_t tileWidth = 0, tileHeight = 0; ///< cells; callers know the tiles as blocks
    std::array<double, 6> transform{0.0, 1.0, 0.0, 0.0, 0.0, -1.0}; ///< see GeoReference::transform
    std::int32_t epsg = 0;                                          ///< 0: none
    std::string datum = "RAW", projection = "RAW";                  ///< UTF-8
    std::string compressionDate;                                    ///< ISO 8601, UTC
};

/// One band (box 'band').
struct XrvBand
{
    std::uint8_t bits = 8;
    bool isSigned = false;
    std::string description{}; ///< UTF-8
    CellKind kind = CellKind::Whole;
};

/// The authoring texts in their order in the file (box 'auth').
enum class XrvText {
    Classification,
    AcquisitionDate,
    AcquisitionSensorName,
    CompressionSoftware,
    Author,
    Copyright,
    Company,
    Email,
    Address,
    Telephone,
};
constexpr std::size_t kXrvTexts = 10;
/// UTF-8; an empty text is there, no text is not.
using XrvTexts = std::array<std::optional<std::string>, kXrvTexts>;

// Contents of the boxes. Every parse function checks all lengths and counts before it uses them, and gives nothing
// where they contradict themselves; what follows the known fields is left to later minor versions.

/// A box as the table of contents (box 'toc ') has it.
struct XrvBoxPlace
{
    std::uint32_t type = 0;
    ByteRange range; ///< in the file, its header included
};
constexpr std::size_t kXrvBoxPlaceBytes = 20; ///< of each in the table

Bytes makeContents(const std::vector<XrvBoxPlace> &places);
/// As many as there are; they are not known to be true.
std::vector<XrvBoxPlace> parseContents(const Bytes &content);

Bytes makeFileInfo(const XrvFileInfo &info);
std::optional<XrvFileInfo> parseFileInfo(const Bytes &content);

Bytes makeBands(const std::vector<XrvBand> &bands);
std::optional<std::vector<XrvBand>> parseBands(const Bytes &content);

/// One for each band.
Bytes makeCellMappings(const std::vector<CellMapping> &mappings);
std::optional<std::vector<CellMapping>> parseCellMappings(const Bytes &content);

Bytes makeTexts(const XrvTexts &texts);
std::optional<XrvTexts> parseTexts(const Bytes &content);

Bytes makeStatistics(const PLKFileStatistics &statistics);
/// \a bands: the number that the file has. Null where the content is damaged or for another number of bands.
StatisticsPtr parseStatistics(const Bytes &content, std::size_t bands);

Bytes makeRpc(const PLKRPCData &rpc);
std::optional<PLKRPCData> parseRpc(const Bytes &content);

} // namespace xrv
