#pragma once

#include "bytesource.h"

#include <string>

namespace xrv {

/// Bytes in memory as a source; each one is a version of its own, whatever its name.
class MemorySource : public ByteSource
{
public:
    explicit MemorySource(Bytes content, std::string givenName = "memory");

    const std::string &name() const override { return sourceName; }
    std::uint64_t size() const override { return bytes.size(); }
    bool isRemote() const override { return false; }
    std::string identity() const override { return sourceName + '|' + std::to_string(number); }
    using ByteSource::read;
    PLK::CError read(const std::vector<ByteRange> &ranges, const CancelFlag &cancel, std::vector<Bytes> *out) override;

private:
    const Bytes bytes;
    const std::string sourceName;
    const std::uint64_t number; ///< no two have the same
};

} // namespace xrv
