#pragma once

#include "precinctstore.h"

#include "decode/codeblock/codeblockdecoder.h"

namespace xrv {

/// Gathers the bytes of a code-block and has them decoded. Any thread.
class CodeBlockReader
{
public:
    CodeBlockReader(std::shared_ptr<ByteSource> source, const MainHeader &header)
        : source(std::move(source))
        , header(header)
    {
    }

    /// Where the bytes of a code-block lie in the file, as far as it reaches.
    std::vector<ByteRange> rangesOf(const CodeBlockState &state) const;
    /// Coefficients of the code-block at \a place in \a precinct, which has its index. \a isSound is false when they
    /// could not be decoded. PLK_ERR_CANCELLED and the errors of the source.
    PLK::CError read(const WantedPrecinct &precinct, const CodeBlockPlace &place, const CancelFlag &cancel,
                     TileCache::PlanePtr *plane, bool *isSound) const;

private:
    int magnitudeBits(const TileIndex &index, const CodeBlockPlace &place) const;
    PLK::CError readSegments(const WantedPrecinct &precinct, const CodeBlockState &state, const CancelFlag &cancel,
                             CodeBlock *codeBlock) const;
    /// \a bitPlanes: that the coefficients may have.
    template <typename Cell>
    static Plane decoded(const CodeBlock &codeBlock, const CodeBlockPlace &place, int bitPlanes, int shift,
                         bool *isSound);

    std::shared_ptr<ByteSource> source;
    const MainHeader &header;
};

} // namespace xrv
