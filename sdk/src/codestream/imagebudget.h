#pragma once

#include "mainheader.h"

namespace xrv {

/// What an image may cost, by the bytes that its file really has. A header of a hundred bytes can claim any number of
/// tiles, packets and code-blocks, each of which takes memory and time; those of a sound file are worth bytes. Whatever
/// is made from a header asks here first, so that small files stay cheap and large ones may take what they need.
///
/// Errors are sentences that name the number that is too large.
class ImageBudget
{
public:
    /// \a bytes: of the codestream, or of the part of it that the question is about.
    explicit ImageBudget(std::uint64_t bytes)
        : bytes(bytes)
    {
    }

    /// Before anything is made from \a header: what is known of each tile, and what the first picture of all of the
    /// image takes.
    PLK::CError admit(const MainHeader &header) const;
    /// What packet headers have told takes \a memory bytes.
    PLK::CError admitPacketHeaders(std::uint64_t memory) const;

private:
    PLK::CError admitTiles(const MainHeader &header) const;
    PLK::CError admitFirstPicture(const MainHeader &header) const;
    PLK::CError tooMany(std::uint64_t count, const std::string &what) const;

    const std::uint64_t bytes;
};

} // namespace xrv
