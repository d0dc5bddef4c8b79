#pragma once

#include "tagtree.h"
#include "tileindex.h"

#include "base/cancelflag.h"

#include <array>
#include <cstdint>
#include <vector>

namespace xrv {

/// Code-blocks of one subband within one precinct (ISO/IEC 15444-1 B.7).
struct BandGrid
{
    int orientation = 0;                       ///< 0 LL, 1 HL, 2 LH, 3 HH
    IntRect bandRect;                          ///< the precinct's part of the subband, cells of the subband
    int widthExponent = 6, heightExponent = 6; ///< of the code-blocks here
    std::int64_t firstX = 0, firstY = 0;       ///< indices of the first code-block, counted from the canvas origin
    std::uint32_t across = 0, down = 0;
    std::uint32_t count() const { return across * down; }
    /// Cells of code-block \a number, counted row by row.
    IntRect codeBlockRect(std::uint32_t number) const;
};

/// Subband rectangle of a tile-component (B-15). \a level: decompositions from full resolution, 1 and up (for LL the
/// last).
IntRect bandRect(const IntRect &tileComponentRect, int orientation, int level);

/// The subbands of a precinct: LL alone for the lowest resolution, HL, LH and HH for others.
std::vector<BandGrid> bandGrids(const IntRect &tileComponentRect, const ComponentStyle &style, const PrecinctGrid &grid,
                                int resolution, std::int64_t precinct);

/// A piece of a code-block's data: some passes in one packet that belong to one codeword segment.
struct CodeBlockPiece
{
    std::uint64_t offset = 0; ///< from the start of the packet while a packet is parsed, in the file afterwards
    std::uint32_t length = 0;
    std::uint16_t layer = 0;
    std::uint8_t passes = 0;
    bool endsSegment = false; ///< the codeword segment is terminated after it
};

/// How a code-block is coded, as far as packet headers have told.
enum class BlockCoding : std::uint8_t {
    Unknown,       ///< only passes without bytes so far, which may turn out to be placeholders
    Arithmetic,    ///< ISO/IEC 15444-1 annexes C and D
    HighThroughput ///< ISO/IEC 15444-15
};

/// What packet headers have told of a code-block so far.
struct CodeBlockState
{
    std::vector<CodeBlockPiece> pieces;
    std::uint8_t zeroBitPlanes = 0; ///< with those that placeholder passes stand for
    std::uint8_t lengthBits = 3;    ///< Lblock
    std::uint8_t passes = 0;        ///< without placeholder passes, once the coding is known
    BlockCoding coding = BlockCoding::Unknown;
};

/// The code-blocks of a subband in a precinct: only those that packet headers have told of take memory.
class BandState
{
public:
    BandState(std::uint32_t across, std::uint32_t down)
        : inclusion(across, down)
        , zeroBitPlanes(across, down)
    {
    }

    std::uint32_t across() const { return inclusion.width(); }
    std::uint32_t down() const { return inclusion.height(); }
    /// One that no packet has told of has no pieces.
    const CodeBlockState &codeBlock(std::uint32_t number) const;
    std::size_t memoryUse() const;

    TagTree inclusion;                    ///< leaves have labels: 1 + the number in included
    TagTree zeroBitPlanes;                ///< of no use once all packets are parsed
    std::vector<CodeBlockState> included; ///< in the order in which packets told of them
};

/// A precinct whose packets are parsed one after the other, lowest layer first.
class Precinct
{
public:
    Precinct(const IntRect &tileComponentRect, const ComponentStyle &style, const PrecinctGrid &grid, int resolution,
             std::int64_t precinct, bool usesEph);

    enum class Outcome { Ok, NeedsMore, Damaged };
    /// Parses the header of the packet of \a layer at the start of \a data (an SOP marker segment may come before it).
    /// The bytes of its code-blocks are taken to follow it; see placeLast().
    /// \a headerLength and \a bodyLength are set on success. With NeedsMore the header reaches beyond \a data; the
    /// state is spoiled then, as with Damaged, and a caller that can give more has to start from a copy. Once \a cancel
    /// is raised the outcome says nothing.
    Outcome parse(const std::uint8_t *data, std::size_t size, int layer, const CancelFlag &cancel,
                  std::size_t *headerLength, std::uint64_t *bodyLength);
    /// Adds \a offset to the pieces that the last parse() made.
    void placeLast(std::uint64_t offset);

    /// Bytes that surely hold the header of one packet in sound files of ordinary coding styles.
    std::uint64_t ampleHeader() const;
    const std::vector<BandState> &bands() const { return bandStates; }
    std::vector<BandState> takeBands() { return std::move(bandStates); }
    std::size_t memoryUse() const;

private:
    bool parseBand(PacketBits &bits, BandState &band, int layer, const CancelFlag &cancel, std::uint64_t *bodyLength);
    bool parseCodeBlock(PacketBits &bits, BandState &band, std::uint32_t x, std::uint32_t y, int layer,
                        std::uint64_t *bodyLength);
    bool parseLengths(PacketBits &bits, CodeBlockState &codeBlock, int passes, int layer, std::uint64_t *bodyLength);
    void addLastPieces(BandState &band, std::size_t codeBlock, std::size_t firstPiece);

    /// A piece of the packet parsed last: the numbers of the subband, of the code-block there and of the piece in it.
    struct LastPiece
    {
        std::uint32_t band, codeBlock, piece;
    };
    CodeBlockPiece &piece(const LastPiece &last)
    {
        return bandStates[last.band].included[last.codeBlock].pieces[last.piece];
    }

    std::vector<BandState> bandStates;
    std::vector<LastPiece> lastPieces;
    std::size_t pieceCount = 0;
    std::uint8_t codeBlockStyle;
    bool usesEph;
};

} // namespace xrv
