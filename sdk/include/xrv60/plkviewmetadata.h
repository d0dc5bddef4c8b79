#pragma once

#include "plkexport.h"

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace PLK::ViewMetadata {

/// What the main header of a JPEG 2000 codestream tells. Empty values (0, false, no entries) while nothing is open.
/// Marker segments: ISO/IEC 15444-1 annex A.
class PLK_EXPORT ViewMetadataJp2
{
public:
    ViewMetadataJp2();
    ~ViewMetadataJp2();
    ViewMetadataJp2(const ViewMetadataJp2 &) = delete;
    ViewMetadataJp2 &operator=(const ViewMetadataJp2 &) = delete;

    /// Rsiz (A.5.1, table A.10): 0 no restriction (also every other value), 1 profile 0, 2 profile 1.
    int ComplianceProfileType() const;
    /// Text of all comment marker segments (UTF-8), joined by line feeds.
    std::string Comments() const;
    /// Tiles across and down.
    std::pair<std::uint32_t, std::uint32_t> NumberOfTiles() const;
    /// Nominal width and height of a tile in cells.
    std::pair<std::uint32_t, std::uint32_t> TileSize() const;
    /// Width and height of the precincts of every resolution level, lowest resolution first.
    std::vector<std::pair<std::uint32_t, std::uint32_t>> PrecinctSize() const;
    /// Width and height of the code-blocks.
    std::pair<std::uint32_t, std::uint32_t> CodeBlock() const;
    /// The code-blocks are high-throughput ones (ISO/IEC 15444-15).
    bool IsHighThroughput() const;
    /// Bits of every component.
    std::vector<std::uint8_t> BitDepth() const;
    /// Number of resolution levels (decomposition levels plus one).
    int Levels() const;
    /// Number of quality layers of the file.
    int Layers() const;
    /// 0 LRCP, 1 RLCP, 2 RPCL, 3 PCRL, 4 CPRL.
    int PrecinctProgressionOrder() const;
    /// 0 irreversible 9-7, 1 reversible 5-3.
    int TransformationType() const;
    bool SOPExists() const;
    bool EPHExists() const;
    bool GMLJP2BoxExists() const;

    struct Values;
    /// For the library: replaces what is told. Null empties.
    void Assign(std::shared_ptr<const Values> newValues);

private:
    std::shared_ptr<const Values> values;
};

/// What an XRV file tells besides its file information.
class PLK_EXPORT ViewMetadataXRV
{
public:
    /// Width and height in cells of the blocks, which are the tiles of the codestream; (0, 0) for a file that is not
    /// XRV.
    std::pair<std::uint32_t, std::uint32_t> Blocksize() const { return blockSize; }
    void Assign(std::pair<std::uint32_t, std::uint32_t> newBlockSize) { blockSize = newBlockSize; }

private:
    std::pair<std::uint32_t, std::uint32_t> blockSize{0, 0};
};

} // namespace PLK::ViewMetadata
