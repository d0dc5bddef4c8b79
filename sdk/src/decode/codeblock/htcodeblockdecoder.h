#pragma once

#include "codeblockdecoder.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace xrv {

/// Decodes high-throughput code-blocks (ISO/IEC 15444-15 clause 7). Holds scratch memory; one per thread.
///
/// A set of passes is a cleanup pass, which codes all magnitude bits down to one bit-plane, and up to two passes that
/// refine by one bit-plane more. Where there are several sets, the last one whose cleanup pass has bytes has it all.
class HtCodeBlockDecoder
{
public:
    /// As CodeBlockDecoder::decode(), with bitPlanes counting the planes from the top to that of the first cleanup
    /// pass, 1 to kMaxBitPlanes. False for damaged code-blocks too; all coefficients are 0 then.
    template <typename Cell> bool decode(const CodeBlock &block, Cell *coefficients);

private:
    /// Two by two cells; see HtCodeword.
    struct Quad
    {
        std::uint8_t significance = 0, knownExponents = 0, topBits = 0;
        std::uint8_t exponentOffset = 0;
    };
    struct Set;

    static Set lastSet(const CodeBlock &block);
    template <typename Cell> bool decodeCleanup(const std::uint8_t *data, std::size_t length, Cell *cells);
    unsigned context(const Quad *quad, bool isInFirstRow) const;
    static void readOffsets(class BackwardBits &bits, class MelEvents *events, bool hasFirst, bool hasSecond,
                            Quad *quad);
    void readQuads(const std::uint8_t *data, std::size_t length, std::size_t suffixLength);
    template <typename Cell> bool readMagnitudes(const std::uint8_t *data, std::size_t length, Cell *cells);
    template <typename Cell>
    bool readQuad(const Quad &quad, int x, int y, unsigned exponent, class ForwardBits &bits, Cell *cells);
    template <typename Cell> void markSignificance(const Cell *cells);
    template <typename Cell> void refineMagnitudes(class BackwardBits bits, Cell *cells);
    template <typename Cell> void propagateSignificance(class ForwardBits bits, bool isCausal, Cell *cells);
    bool hasSignificantNeighbour(std::size_t mark, bool isLastRowOfStripe) const;

    int width = 0, height = 0;
    int bitPlane = 0; ///< that the cleanup pass ends with, counted from 1 at the lowest
    int quadsAcross = 0;
    std::size_t quadPitch = 0;
    std::vector<Quad> quads;                             ///< with a row of none above, a column of none on both sides
    std::vector<std::uint8_t> exponents, exponentsAbove; ///< of the lower cells of a row of quads
    std::vector<std::uint8_t> significance;              ///< of cells, with a border of zeros
};

} // namespace xrv
