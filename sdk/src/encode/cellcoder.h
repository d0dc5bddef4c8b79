#pragma once

#include "cells/cellmapping.h"

#include <cstddef>
#include <vector>

namespace xrv {

/// Turns the cells of a tile into codes.
class CellCoder
{
public:
    /// One for each band, none mapped or some.
    explicit CellCoder(std::vector<CellMapping> mappings);

    const std::vector<CellMapping> &mappings() const { return bandMappings; }
    bool isMapped() const;
    /// Bits of each component that is needed: of every band \a bits, or what its mapping leaves, then the low bits.
    std::vector<int> componentBits(const std::vector<int> &bits) const;
    /// \a planes: one for each component, with cells in those of the bands, rows of \a width cells packed. \a opacity
    /// may be null.
    void encode(const std::vector<std::int32_t *> &planes, std::size_t width, std::size_t count,
                const std::int32_t *opacity) const;

private:
    std::vector<CellMapping> bandMappings;
};

} // namespace xrv
