#pragma once

#include "cacheindex.h"

#include <functional>
#include <memory>
#include <mutex>
#include <string>

namespace xrv {

/// The bytes of one version of a stream on disk, shared with other sources and other processes. Whatever happens to the
/// files, only bytes whose checksum is right are given out; what the disk does not take is not kept. Any thread.
class CachedStream
{
public:
    /// Asked for the right to grow by so many bytes; makes room.
    using RoomKeeper = std::function<bool(std::uint64_t bytes)>;
    /// Takes \a length bytes from \a offset of the stream.
    using Sink = std::function<void(std::uint64_t offset, const std::uint8_t *data, std::uint64_t length)>;

    /// The pair \a basePath + ".cache" and ".data", of an address that \a key stands for. With \a version made where
    /// there is none, and made anew where it is of another one; with null only opened. Null when that is not to be.
    static std::shared_ptr<CachedStream> open(const std::string &basePath, std::uint64_t key,
                                              const FileVersion *version, RoomKeeper roomKeeper);

    FileVersion version() const;
    std::uint64_t heldBytes() const;
    /// What is not here of \a ranges.
    ByteRangeSet lacking(const std::vector<ByteRange> &ranges) const;
    /// Hands over what is here of \a ranges, with what lies around it. \a sink must not call back.
    void load(const std::vector<ByteRange> &ranges, const Sink &sink);
    void put(std::uint64_t offset, const std::uint8_t *data, std::uint64_t length);
    void remember(const std::string &name, const Bytes &knowledge);
    bool recall(const std::string &name, Bytes *knowledge) const;

private:
    CachedStream(std::string basePath, std::uint64_t key, RoomKeeper roomKeeper);
    bool openFiles(bool create);
    bool beginVersion(const FileVersion &version);
    bool reopenWhereRemoved();
    void removeFiles();
    bool readSegment(std::uint64_t offset, const CacheIndex::Segment &segment, Bytes *bytes) const;
    void write(std::uint64_t offset, const std::uint8_t *data, const std::vector<ByteRange> &missing);
    bool mayGrow(std::uint64_t bytes);

    const std::string basePath;
    const std::uint64_t key;
    const RoomKeeper roomKeeper;
    mutable std::mutex mutex; ///< guards the members below
    FileVersion wholeVersion;
    std::unique_ptr<CacheIndex> index;
    std::unique_ptr<DiskFile> data;
    std::uint64_t allowance = 0; ///< bytes that may be written before room is asked for again
    bool isFull = false;
};

} // namespace xrv
