#include "sourcestream.h"

#include <algorithm>
#include <cstring>

namespace PLK {

CIOStream::~CIOStream() = default;

} // namespace PLK

namespace xrv {

SourceStream::SourceStream(std::shared_ptr<ByteSource> streamSource)
    : source(std::move(streamSource))
{
}

bool SourceStream::IsRemote() const
{
    return source->isRemote();
}

std::uint64_t SourceStream::GetSize() const
{
    return source->size();
}

bool SourceStream::Seek(std::uint64_t offset)
{
    if (offset > source->size())
        return false;
    position = offset;
    return true;
}

bool SourceStream::Read(void *buffer, std::uint64_t length)
{
    constexpr std::uint64_t kMaxPiece = std::uint64_t(4) << 20; // what is held besides the caller's buffer
    if (length > source->size() - position)
        return false;
    auto *target = static_cast<std::uint8_t *>(buffer);
    for (std::uint64_t done = 0; done < length;) {
        Bytes piece;
        if (source->read(ByteRange{position + done, std::min(kMaxPiece, length - done)}, &piece))
            return false;
        std::memcpy(target + done, piece.data(), piece.size());
        done += piece.size();
    }
    position += length;
    return true;
}

} // namespace xrv
