#include "cachedstream.h"

#include "checksum.h"

#include <algorithm>
#include <filesystem>
#include <iterator>

namespace xrv {

namespace {

constexpr std::uint64_t kMaxSegment = 65536;  // read and checked as a whole
constexpr std::uint64_t kAllowance = 1 << 20; // room is asked for in such steps: that means to look through the folder
constexpr std::uint64_t kRecordSize = 64;     // of the index, for a segment

} // namespace

CachedStream::CachedStream(std::string basePath, std::uint64_t key, RoomKeeper roomKeeper)
    : basePath(std::move(basePath))
    , key(key)
    , roomKeeper(std::move(roomKeeper))
{
}

std::shared_ptr<CachedStream> CachedStream::open(const std::string &basePath, std::uint64_t key,
                                                 const FileVersion *version, RoomKeeper roomKeeper)
{
    std::shared_ptr<CachedStream> stream(new CachedStream(basePath, key, std::move(roomKeeper)));
    bool isOpen = stream->openFiles(version != nullptr);
    if (!isOpen && version) { // what is in the way, a link for one, is none of ours
        stream->removeFiles();
        isOpen = stream->openFiles(true);
    }
    if (!isOpen)
        return nullptr;
    if (version && !stream->beginVersion(*version))
        return nullptr;
    if (!stream->index->hasVersion())
        return nullptr;
    stream->wholeVersion = stream->index->version();
    return stream;
}

bool CachedStream::openFiles(bool create)
{
    std::unique_ptr<DiskFile> indexFile = DiskFile::open(basePath + ".cache", create);
    std::unique_ptr<DiskFile> dataFile = DiskFile::open(basePath + ".data", create);
    if (!indexFile || !dataFile)
        return false;
    data = std::move(dataFile);
    index = std::make_unique<CacheIndex>(std::move(indexFile), key);
    index->refresh(false);
    return true;
}

bool CachedStream::beginVersion(const FileVersion &version)
{
    if (index->hasVersion() && index->version().text() != version.text()) { // another stream's file under this name
        removeFiles();
        if (!openFiles(true))
            return false;
    }
    if (index->hasVersion())
        return index->version().text() == version.text();
    const DiskFileLock lock(index->file());
    if (!lock.isHeld())
        return false;
    index->refresh(true);
    if (index->hasVersion()) // somebody else has just begun it
        return index->version().text() == version.text();
    return data->truncate(0) && index->begin(version);
}

void CachedStream::removeFiles()
{
    std::error_code ignored;
    for (const char *ending : {".cache", ".data"})
        std::filesystem::remove(std::filesystem::u8path(basePath + ending), ignored);
}

FileVersion CachedStream::version() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return wholeVersion;
}

std::uint64_t CachedStream::heldBytes() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return index->heldBytes();
}

ByteRangeSet CachedStream::lacking(const std::vector<ByteRange> &ranges) const
{
    const std::lock_guard<std::mutex> lock(mutex);
    index->refresh(false);
    return index->lacking(ranges);
}

bool CachedStream::readSegment(std::uint64_t offset, const CacheIndex::Segment &segment, Bytes *bytes) const
{
    if (segment.length > kMaxSegment)
        return false;
    bytes->resize(static_cast<std::size_t>(segment.length));
    return data->readAt(segment.place, bytes->data(), bytes->size()) == bytes->size() &&
           checksum64(bytes->data(), bytes->size(), key + offset) == segment.checksum;
}

void CachedStream::load(const std::vector<ByteRange> &ranges, const Sink &sink)
{
    const std::lock_guard<std::mutex> lock(mutex);
    index->refresh(false);
    Bytes bytes;
    for (const ByteRange &range : ranges) {
        for (const auto &[offset, segment] : index->segmentsWithin(range)) {
            if (readSegment(offset, segment, &bytes))
                sink(offset, bytes.data(), bytes.size());
            else
                index->forget(offset); // to be fetched again
        }
    }
}

/// The user empties the folder, or another process made room. A file without a name can still be written to, where the
/// system is of the POSIX kind, but all of that would be lost.
bool CachedStream::reopenWhereRemoved()
{
    if (index->file()->isLinked() && data->isLinked())
        return true;
    return openFiles(true) && beginVersion(wholeVersion);
}

bool CachedStream::mayGrow(std::uint64_t bytes)
{
    if (allowance < bytes) {
        const std::uint64_t asked = std::max(bytes, kAllowance);
        if (!roomKeeper(asked))
            return false;
        allowance = asked;
    }
    allowance -= bytes;
    return true;
}

void CachedStream::put(std::uint64_t offset, const std::uint8_t *bytes, std::uint64_t length)
{
    const std::lock_guard<std::mutex> guard(mutex);
    if (isFull || !reopenWhereRemoved())
        return;
    const DiskFileLock lock(index->file());
    if (!lock.isHeld() || !index->file()->isLinked()) // removed while the lock was waited for
        return;
    index->refresh(true);
    const ByteRangeSet missing = index->lacking({ByteRange{offset, length}});
    if (missing.isEmpty())
        return;
    if (mayGrow(missing.byteCount() + kRecordSize * missing.ranges().size()))
        write(offset, bytes, missing.ranges());
    else
        isFull = true;
}

/// With the lock held. First the bytes, then what points to them: whoever is killed in between leaves bytes that nobody
/// looks at, never a record of bytes that are not there. New bytes go behind the last ones, so that no reader in
/// another process sees any change under its hands.
void CachedStream::write(std::uint64_t offset, const std::uint8_t *bytes, const std::vector<ByteRange> &missing)
{
    std::map<std::uint64_t, CacheIndex::Segment> written;
    const std::uint64_t begin = data->size();
    std::uint64_t place = begin;
    for (const ByteRange &range : missing) {
        for (std::uint64_t at = range.offset; at < range.end(); at += kMaxSegment) {
            const std::uint64_t count = std::min(kMaxSegment, range.end() - at);
            const std::uint8_t *const source = bytes + (at - offset);
            if (!data->writeAt(place, source, static_cast<std::size_t>(count))) {
                data->truncate(begin);
                isFull = true;
                return;
            }
            written[at] = {count, place, checksum64(source, static_cast<std::size_t>(count), key + at)};
            place += count;
        }
    }
    isFull = !index->append(written);
}

void CachedStream::remember(const std::string &name, const Bytes &knowledge)
{
    const std::lock_guard<std::mutex> guard(mutex);
    if (isFull || !reopenWhereRemoved())
        return;
    const DiskFileLock lock(index->file());
    if (!lock.isHeld() || !mayGrow(knowledge.size() + kRecordSize))
        return;
    index->refresh(true);
    Bytes known;
    if (!index->recall(name, &known) || known != knowledge)
        isFull = !index->remember(name, knowledge);
}

bool CachedStream::recall(const std::string &name, Bytes *knowledge) const
{
    const std::lock_guard<std::mutex> lock(mutex);
    index->refresh(false);
    return index->recall(name, knowledge);
}

} // namespace xrv
