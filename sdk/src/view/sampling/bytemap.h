#pragma once

#include "cells/cellkind.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace xrv {

/// Maps the cells of a band to 8 bits. Immutable; shared by the views of a file. Bands of up to 16 bits go through a
/// table, deeper ones are calculated. Of Floats infinities become 0 or 255 and what is no number 0.
class ByteMap
{
public:
    /// By the depth alone: more than 8 bits are shifted down, less are scaled up to 0..255 with \a scaleUp and stay as
    /// they are without. Signed cells count from the middle. Floats have no depth: those from 0 to 255 are rounded.
    static std::shared_ptr<const ByteMap> byDepth(int bits, bool isSigned, bool scaleUp,
                                                  CellKind kind = CellKind::Whole);
    /// \a minimum becomes 0, \a maximum 255; with maximum not above minimum cells above minimum become 255, others 0.
    static std::shared_ptr<const ByteMap> byRange(int bits, bool isSigned, double minimum, double maximum,
                                                  CellKind kind = CellKind::Whole);

    /// Unsigned cells of 8 bits that stay what they are.
    bool isIdentity() const { return identity; }
    /// Cells outside the range of the band's depth are clamped to it.
    std::uint8_t at(std::int64_t cell) const
    {
        const std::int64_t clamped = cell < lowest ? lowest : cell > highest ? highest : cell;
        return table.empty() ? calculate(clamped) : table[static_cast<std::size_t>(clamped) & (table.size() - 1)];
    }
    std::uint8_t atFloat(float cell) const { return stretch(static_cast<double>(cell)); }
    /// Of \a count cells as rows have them.
    void convertRow(const std::int32_t *cells, std::size_t count, std::uint8_t *bytes) const;
    /// Results by the bit pattern of cells stored in \a bytes bytes each; null where there is no table for that.
    const std::uint8_t *tableForStored(std::size_t bytes, bool isSigned) const;

private:
    ByteMap(int bits, bool isSigned, CellKind kind);
    void makeTable();
    std::uint8_t calculate(std::int64_t cell) const;
    std::uint8_t stretch(double value) const;

    int bits;
    bool isSigned;
    CellKind kind;
    std::int64_t lowest, highest;
    bool byTransform = false;
    bool scaleUp = true;
    bool identity = false;
    double minimum = 0.0, maximum = 255.0;
    std::vector<std::uint8_t> table; ///< 256 or 65536 entries by bit pattern, none above 16 bits
};

} // namespace xrv
