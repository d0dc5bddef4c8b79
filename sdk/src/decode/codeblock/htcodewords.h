#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace xrv {

/// What a variable-length codeword says of a quad, two by two cells of a high-throughput code-block (ISO/IEC 15444-15
/// clause 7 and annex C). In the patterns bit 0 is the upper left cell, bit 1 the lower left one, bit 2 the upper right
/// one and bit 3 the lower right one.
struct HtCodeword
{
    std::uint8_t length = 0;         ///< bits
    std::uint8_t significance = 0;   ///< pattern of the cells that are not 0
    std::uint8_t knownExponents = 0; ///< pattern of the cells whose top bit is not among their magnitude bits...
    std::uint8_t topBits = 0;        ///< ... and what it is
    bool hasExponentOffset = false;  ///< the exponent is larger than predicted; how much is coded apart
};

/// The codewords of one kind of row.
class HtCodewords
{
public:
    static const HtCodewords &firstRow();
    static const HtCodewords &otherRows();

    /// \a context: 0 to 7. \a bits: the bits to come, the next one lowest.
    const HtCodeword &find(unsigned context, std::uint32_t bits) const
    {
        return table[context << kMaxLength | (bits & ((1u << kMaxLength) - 1))];
    }

    static constexpr unsigned kMaxLength = 7;               ///< bits
    using Table = std::array<HtCodeword, 8u << kMaxLength>; ///< by context and the bits to come

private:
    explicit HtCodewords(const Table &table)
        : table(table)
    {
    }

    const Table table;
};

} // namespace xrv
