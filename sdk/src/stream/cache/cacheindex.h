#pragma once

#include "diskfile.h"

#include "stream/values/byterangeset.h"
#include "stream/values/fileversion.h"

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace xrv {

/// The "*.cache" file of a cached stream: what is known of the bytes in the "*.data" file beside it. Records are only
/// ever appended, each with a checksum, and read up to the first that is not whole. One thread at a time.
class CacheIndex
{
public:
    /// Bytes of the stream and where in the data file they lie.
    struct Segment
    {
        std::uint64_t length = 0, place = 0, checksum = 0;
    };

    /// \a key stands for the address; records of another one do not count.
    CacheIndex(std::unique_ptr<DiskFile> openedFile, std::uint64_t key);

    DiskFile *file() const { return indexFile.get(); }
    /// Reads what was appended since. With the lock held, \a repairs cuts off what is not whole.
    void refresh(bool repairs);
    /// The file says which version its bytes are of. Without, begin() must come first.
    bool hasVersion() const { return isBegun; }
    const FileVersion &version() const { return knownVersion; }
    std::uint64_t heldBytes() const { return byteCount; }
    /// Those that share bytes with \a range, by their offsets.
    std::vector<std::pair<std::uint64_t, Segment>> segmentsWithin(const ByteRange &range) const;
    /// What is not held of \a ranges.
    ByteRangeSet lacking(const std::vector<ByteRange> &ranges) const;
    /// The segment at \a offset is not what it should be.
    void forget(std::uint64_t offset);

    // With the lock held; false when the disk does not take it.
    bool begin(const FileVersion &version);
    bool append(const std::map<std::uint64_t, Segment> &segments);
    bool remember(const std::string &name, const Bytes &knowledge);
    /// False where nothing is known.
    bool recall(const std::string &name, Bytes *knowledge);

private:
    struct Record
    {
        std::uint32_t type = 0;
        Bytes content;
    };
    std::map<std::uint64_t, Segment>::const_iterator firstEndingAfter(std::uint64_t offset) const;
    bool readRecord(std::uint64_t position, Record *record, std::uint64_t *next) const;
    bool write(const Record &record);
    void take(const Record &record, std::uint64_t position);
    void takeVersion(const Bytes &content);
    void takeSegment(const Bytes &content);
    void insert(std::uint64_t offset, const Segment &segment);

    const std::unique_ptr<DiskFile> indexFile;
    const std::uint64_t key;
    std::uint64_t end = 0; ///< of what was read
    bool isBegun = false;
    FileVersion knownVersion;
    std::uint64_t byteCount = 0;
    std::map<std::uint64_t, Segment> bySegmentOffset;
    std::map<std::string, std::uint64_t> knowledgePlaces;
};

} // namespace xrv
