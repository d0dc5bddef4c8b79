#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace xrv {

/// One codeword segment of a code-block (ISO/IEC 15444-1 D.4).
struct CodewordSegment
{
    std::size_t offset = 0; ///< in the code-block's data
    std::size_t length = 0;
    int passes = 0;
};

/// A code-block as it stands in the codestream.
struct CodeBlock
{
    int width = 0, height = 0; ///< cells; at most 4096 of them, neither above 1024
    int orientation = 0;       ///< subband: 0 LL, 1 HL, 2 LH, 3 HH
    std::uint8_t style = 0;    ///< table A.19
    int bitPlanes = 0;         ///< magnitude bits coded, zero bit-planes taken off
    std::vector<std::uint8_t> data;
    std::vector<CodewordSegment> segments;
};

/// Bit-planes that doubled coefficients of a type have room for: 30 in 32 bits, 62 in 64.
template <typename Cell> constexpr int kMaxBitPlanes = int(8 * sizeof(Cell)) - 2;

/// Decodes the bit-planes of code-blocks (annexes C and D). Holds scratch memory; one per thread.
class CodeBlockDecoder
{
public:
    /// Gives width x height quantized coefficients, rows packed, doubled: the lowest bit is the half by which the value
    /// of an unfinished coefficient lies in the middle of its interval (E.1.1.2 with r = 1/2). What the segments do not
    /// hold stays 0. False for code-blocks of more than kMaxBitPlanes. \a Cell: std::int32_t or std::int64_t.
    template <typename Cell> bool decode(const CodeBlock &block, Cell *coefficients);

private:
    template <typename Cell> struct Passes;
    std::vector<std::uint32_t> flags;
    std::vector<std::uint8_t> segmentBytes;
};

} // namespace xrv
