#pragma once

#include "codestream/tileindex.h"
#include "decode/cache/tilecache.h"
#include "decode/transform/tilebands.h"

#include <memory>
#include <unordered_map>
#include <vector>

namespace xrv {

/// A tile, its index and which of its layers are wanted.
struct TileToDecode
{
    std::uint32_t tile = 0;
    std::shared_ptr<const TileIndex> index;
    int layers = 0; ///< 1 and up
};

/// Code-blocks of one tile to be decoded.
struct CodeBlockRequest
{
    TileToDecode tile;
    std::vector<CodeBlockPlace> codeBlocks;
    bool isKept = true; ///< in the tile cache, once decoded
};

/// Coefficients of code-blocks as planes in subband coordinates, doubled as CodeBlockDecoder gives them, by component
/// and CodeBlockName::number().
class CodeBlockSet
{
public:
    void insert(int component, std::uint64_t number, TileCache::PlanePtr plane)
    {
        planes[component][number] = std::move(plane);
    }
    bool isEmpty() const { return planes.empty(); }
    /// Null when it is not there, or has no coefficients but 0.
    const Plane *find(int component, std::uint64_t number) const
    {
        const auto ofComponent = planes.find(component);
        if (ofComponent == planes.end())
            return nullptr;
        const auto found = ofComponent->second.find(number);
        return found == ofComponent->second.end() ? nullptr : found->second.get();
    }

private:
    std::unordered_map<int, std::unordered_map<std::uint64_t, TileCache::PlanePtr>> planes;
};

} // namespace xrv
