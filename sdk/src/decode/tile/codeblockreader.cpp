#include "codeblockreader.h"

#include "decode/codeblock/htcodeblockdecoder.h"
#include "decode/transform/planeops.h"
#include "decode/transform/quantization.h"
#include "decode/transform/regionofinterest.h"

#include <algorithm>

using PLK::CError;

namespace xrv {

namespace {

template <typename Stored, typename Cell>
Plane stored(const CodeBlockPlace &place, SampleType type, const std::vector<Cell> &coefficients)
{
    Plane plane = makePlane(place.name.component, place.rect, type);
    auto *out = reinterpret_cast<Stored *>(plane.bytes.data());
    for (std::size_t i = 0; i < coefficients.size(); ++i)
        out[i] = static_cast<Stored>(coefficients[i]);
    return plane;
}

/// Coefficients in the smallest type that holds them.
template <typename Cell>
Plane toPlane(const CodeBlockPlace &place, const std::vector<Cell> &coefficients, int bitPlanes)
{
    if (bitPlanes <= kMaxBitPlanes<std::int16_t>)
        return stored<std::int16_t>(place, SampleType::Int16, coefficients);
    if (bitPlanes <= kMaxBitPlanes<std::int32_t>)
        return stored<std::int32_t>(place, SampleType::Int32, coefficients);
    return stored<std::int64_t>(place, SampleType::Int64, coefficients);
}

/// Size and coding of a code-block, without its bytes. In a style for both codings the one that it has is left.
CodeBlock emptyCodeBlock(const CodeBlockPlace &place, const ComponentStyle &style, BlockCoding coding)
{
    CodeBlock codeBlock;
    codeBlock.width = static_cast<int>(place.rect.width());
    codeBlock.height = static_cast<int>(place.rect.height());
    codeBlock.orientation = place.orientation;
    codeBlock.style = style.codeBlockStyle;
    if (coding == BlockCoding::Arithmetic)
        codeBlock.style &= std::uint8_t(~CodeBlockStyle::kHighThroughput);
    return codeBlock;
}

template <typename Cell> bool decode(const CodeBlock &codeBlock, Cell *coefficients)
{
    thread_local CodeBlockDecoder decoder;
    thread_local HtCodeBlockDecoder htDecoder;
    return codeBlock.style & CodeBlockStyle::kHighThroughput ? htDecoder.decode(codeBlock, coefficients)
                                                             : decoder.decode(codeBlock, coefficients);
}

} // namespace

int CodeBlockReader::magnitudeBits(const TileIndex &index, const CodeBlockPlace &place) const
{
    const int c = place.name.component;
    return bandQuantization(index.quantization()[c].parameters, index.style().components[c].isReversible,
                            header.components[c].bits, place.name.resolution, place.orientation)
        .magnitudeBits;
}

std::vector<ByteRange> CodeBlockReader::rangesOf(const CodeBlockState &state) const
{
    const std::uint64_t fileSize = source->size();
    std::vector<ByteRange> ranges;
    for (const CodeBlockPiece &piece : state.pieces) {
        const std::uint64_t offset = std::min(piece.offset, fileSize);
        ranges.push_back({offset, std::min<std::uint64_t>(piece.length, fileSize - offset)});
    }
    return ranges;
}

/// The code-block's bytes and segments, up to the first piece of which the file does not hold all: passes without
/// their bytes would decode to noise.
CError CodeBlockReader::readSegments(const WantedPrecinct &precinct, const CodeBlockState &state,
                                     const CancelFlag &cancel, CodeBlock *codeBlock) const
{
    const std::vector<ByteRange> ranges = rangesOf(state);
    const bool isAtHand = std::all_of(ranges.begin(), ranges.end(), [&](const ByteRange &range) {
        return range.length == 0 || precinct.bytes.find(range.offset, range.length);
    });
    BytesAtHand own;
    if (!isAtHand)
        if (CError error = own.read(*source, ranges, cancel))
            return error;
    const BytesAtHand &bytes = isAtHand ? precinct.bytes : own;
    std::size_t whole = 0;
    while (whole < ranges.size() && ranges[whole].length >= state.pieces[whole].length)
        ++whole;
    CodewordSegment segment;
    for (std::size_t i = 0; i < whole; ++i) {
        const ByteRange &range = ranges[i];
        if (const std::uint8_t *from = range.length > 0 ? bytes.find(range.offset, range.length) : nullptr)
            codeBlock->data.insert(codeBlock->data.end(), from, from + range.length);
        segment.length += static_cast<std::size_t>(range.length);
        segment.passes += state.pieces[i].passes;
        if (!state.pieces[i].endsSegment && i + 1 < whole)
            continue;
        codeBlock->segments.push_back(segment);
        segment = {segment.offset + segment.length, 0, 0};
    }
    return {};
}

template <typename Cell>
Plane CodeBlockReader::decoded(const CodeBlock &codeBlock, const CodeBlockPlace &place, int bitPlanes, int shift,
                               bool *isSound)
{
    thread_local std::vector<Cell> coefficients;
    coefficients.resize(std::size_t(codeBlock.width) * codeBlock.height);
    *isSound = decode(codeBlock, coefficients.data());
    if (shift > 0)
        undoRegionOfInterest(shift, &coefficients);
    return toPlane(place, coefficients, bitPlanes);
}

CError CodeBlockReader::read(const WantedPrecinct &precinct, const CodeBlockPlace &place, const CancelFlag &cancel,
                             TileCache::PlanePtr *plane, bool *isSound) const
{
    const TileIndex &index = *precinct.request->tile.index;
    const CodeBlockState &state = precinct.index->codeBlock(place.name);
    CodeBlock codeBlock = emptyCodeBlock(place, index.style().components[place.name.component], state.coding);
    const int shift = regionOfInterestShift(index.quantization()[place.name.component].regionOfInterest);
    const int magnitude = magnitudeBits(index, place) + shift;
    codeBlock.bitPlanes = magnitude - state.zeroBitPlanes;
    if (!state.pieces.empty() && codeBlock.bitPlanes > 0)
        if (CError error = readSegments(precinct, state, cancel, &codeBlock))
            return error;
    if (!state.pieces.empty() && codeBlock.bitPlanes > kMaxBitPlanes<std::int64_t>)
        return {PLK_ERR_UNSUPPORTED, "A region of interest that is shifted by " + std::to_string(shift) +
                                         " bits (SPrgn of an RGN marker segment) is not supported together with " +
                                         std::to_string(magnitude - shift) + " magnitude bits."};
    // The zero bit-planes of a high-throughput block end where its last bit-plane is, not where its first one is.
    const bool isHighThroughput = codeBlock.style & CodeBlockStyle::kHighThroughput;
    const int bitPlanes = isHighThroughput ? magnitude : codeBlock.bitPlanes;
    *plane = std::make_shared<const Plane>(bitPlanes <= kMaxBitPlanes<std::int32_t>
                                               ? decoded<std::int32_t>(codeBlock, place, bitPlanes, shift, isSound)
                                               : decoded<std::int64_t>(codeBlock, place, bitPlanes, shift, isSound));
    return {};
}

} // namespace xrv
