#pragma once

#include "io/bytesource.h"

#include <xrv60/plkstream.h>

#include <memory>

namespace xrv {

/// The bytes of a source as a stream with a position.
class SourceStream : public PLK::CIOStream
{
public:
    explicit SourceStream(std::shared_ptr<ByteSource> streamSource);

    bool IsRemote() const override;
    std::uint64_t GetSize() const override;
    bool Seek(std::uint64_t offset) override;
    bool Read(void *buffer, std::uint64_t length) override;

private:
    const std::shared_ptr<ByteSource> source;
    std::uint64_t position = 0;
};

} // namespace xrv
