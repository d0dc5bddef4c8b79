#pragma once

#include "packetindex.h"

#include "io/bytesource.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace xrv {

/// Marker codes (ISO/IEC 15444-1 table A.2; CAP and CPF of ISO/IEC 15444-15).
namespace Marker {
constexpr std::uint16_t kSOC = 0xFF4F, kCAP = 0xFF50, kSIZ = 0xFF51, kCOD = 0xFF52, kCOC = 0xFF53, kTLM = 0xFF55,
                        kPLM = 0xFF57, kPLT = 0xFF58, kCPF = 0xFF59, kQCD = 0xFF5C, kQCC = 0xFF5D, kRGN = 0xFF5E,
                        kPOC = 0xFF5F, kPPM = 0xFF60, kPPT = 0xFF61, kCRG = 0xFF63, kCOM = 0xFF64, kSOT = 0xFF90,
                        kSOP = 0xFF91, kEPH = 0xFF92, kSOD = 0xFF93, kEOC = 0xFFD9;
/// Those of ISO/IEC 15444-2 without which the cells would be others.
constexpr std::uint16_t kDFS = 0xFF72, kADS = 0xFF73, kMCT = 0xFF74, kMCC = 0xFF75, kNLT = 0xFF76, kMCO = 0xFF77,
                        kCBD = 0xFF78, kATK = 0xFF79;
} // namespace Marker

/// A marker segment as it stands in the codestream.
struct MarkerSegment
{
    std::uint16_t marker = 0;
    Bytes payload; ///< what follows the length field
};

/// Bits of the code-block style (table A.19).
namespace CodeBlockStyle {
constexpr std::uint8_t kBypass = 1, kReset = 2, kTerminateAll = 4, kVerticallyCausal = 8, kPredictableTermination = 16,
                       kSegmentationSymbols = 32;
/// ISO/IEC 15444-15 annex A: high-throughput code-blocks, alone or mixed with others.
constexpr std::uint8_t kHighThroughput = 64, kMixed = 128;
/// Any of these may divide a code-block's data into several codeword segments.
constexpr std::uint8_t kManySegments = kBypass | kTerminateAll | kHighThroughput;
} // namespace CodeBlockStyle

/// Coding style of one component of a tile (A.6.1, A.6.2).
struct ComponentStyle
{
    int decompositionLevels = 0;                  ///< 0 to 32
    int codeBlockWidthExponent = 6;               ///< xcb
    int codeBlockHeightExponent = 6;              ///< ycb
    std::uint8_t codeBlockStyle = 0;              ///< table A.19
    bool isReversible = false;                    ///< 5-3 filter
    bool hasPrecincts = false;                    ///< precinct sizes are given; otherwise all are 2^15
    std::array<std::uint8_t, 33> precinctSizes{}; ///< PPy << 4 | PPx per resolution, lowest first
    int precinctWidthExponent(int resolution) const { return hasPrecincts ? precinctSizes[resolution] & 15 : 15; }
    int precinctHeightExponent(int resolution) const { return hasPrecincts ? precinctSizes[resolution] >> 4 : 15; }
};

/// One progression order change (A.6.6).
struct ProgressionChange
{
    std::uint8_t resolutionStart = 0, resolutionEnd = 0;
    std::uint16_t componentStart = 0, componentEnd = 0;
    std::uint16_t layerEnd = 0;
    std::uint8_t order = 0;
};

/// Coding style of a tile: what COD, COC, POC, QCD, QCC and RGN make of it.
struct TileStyle
{
    std::uint8_t scod = 0;
    std::uint8_t progression = 0; ///< 0 LRCP, 1 RLCP, 2 RPCL, 3 PCRL, 4 CPRL
    std::uint16_t layers = 1;
    bool multipleComponentTransform = false;
    std::vector<ComponentStyle> components;
    std::vector<ProgressionChange> progressionChanges;
    bool usesSop() const { return scod & 2; }
    bool usesEph() const { return scod & 4; }
    int minDecompositionLevels() const;
    int maxDecompositionLevels() const;
    /// Takes over what \a segment says; \a inTile tells whether it stands in a tile-part header.
    /// \a cocSet remembers for which components a COC of the same header has spoken, since COD yields to it.
    PLK::CError apply(const MarkerSegment &segment, std::vector<bool> *cocSet);
};

class PackedHeaders;

/// The main header of a codestream (A.2 to A.6).
struct MainHeader
{
    struct Component
    {
        std::uint8_t bits = 8;
        bool isSigned = false;
        std::uint8_t stepX = 1, stepY = 1; ///< XRsiz, YRsiz
    };
    std::uint16_t capabilities = 0;               ///< Rsiz
    std::uint32_t x0 = 0, y0 = 0, x1 = 0, y1 = 0; ///< XOsiz, YOsiz, Xsiz, Ysiz
    std::uint32_t tileX0 = 0, tileY0 = 0;         ///< XTOsiz, YTOsiz
    std::uint32_t tileWidth = 0, tileHeight = 0;  ///< XTsiz, YTsiz
    std::uint32_t tilesAcross = 0, tilesDown = 0;
    std::vector<Component> components;
    TileStyle style;
    std::vector<std::string> comments; ///< Latin text comments, turned into UTF-8
    /// What a codestream of the same coding repeats: CAP, CPF, COD, COC, QCD, QCC, RGN, POC in file order.
    std::vector<MarkerSegment> segments;
    std::vector<MarkerSegment> tlm;                     ///< in file order
    std::shared_ptr<const PackedHeaders> packedHeaders; ///< PPM; null without
    std::uint64_t length = 0;                           ///< bytes from SOC to the first SOT
    std::shared_ptr<const PacketIndex> packetIndex;     ///< where the container tells it; null without

    std::uint32_t tileCount() const { return tilesAcross * tilesDown; }
};

/// Reads the main header of the codestream at \a codestream in \a source.
/// PLK_ERR_MALFORMED, PLK_ERR_TRUNCATED or PLK_ERR_UNSUPPORTED with a sentence that names what is wrong.
PLK::CError readMainHeader(ByteSource &source, ByteRange codestream, MainHeader *header);

/// Takes apart the marker segments from \a position of \a bytes until a marker of \a endMarkers; \a position is then
/// that marker's place. False when the bytes end before (\a incomplete set) or contradict themselves.
bool readSegments(const Bytes &bytes, std::size_t *position, std::initializer_list<std::uint16_t> endMarkers,
                  std::vector<MarkerSegment> *segments, bool *incomplete);

} // namespace xrv
