#include "cacheindex.h"

#include "checksum.h"

#include <algorithm>
#include <iterator>

namespace xrv {

namespace {

// A record: type and length of its content (32 bits each), the content, a checksum of all that (64 bits), all numbers
// little-endian. The seed of the checksum is the address's key and the record's position: a record that is whole but
// stands in another file, or elsewhere in this one, does not count.
constexpr std::uint32_t kVersionRecord = 0x31565258;   // "XRV1"
constexpr std::uint32_t kSegmentRecord = 0x47455358;   // "XSEG"
constexpr std::uint32_t kKnowledgeRecord = 0x574F4E4B; // "KNOW"
constexpr std::size_t kHeadSize = 8, kSumSize = 8;
constexpr std::size_t kMaxContent = std::size_t(32) << 20;
constexpr std::size_t kSegmentContent = 32;

void putNumber(Bytes *bytes, std::uint64_t value, int size)
{
    for (int i = 0; i < size; ++i)
        bytes->push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

void putText(Bytes *bytes, const std::string &text)
{
    putNumber(bytes, text.size(), 4);
    bytes->insert(bytes->end(), text.begin(), text.end());
}

/// Numbers and texts one after the other, as long as there are bytes.
class Reader
{
public:
    explicit Reader(const Bytes &content)
        : bytes(content)
    {
    }
    std::uint64_t number(int size)
    {
        std::uint64_t value = 0;
        if (!has(static_cast<std::size_t>(size)))
            return 0;
        for (int i = 0; i < size; ++i)
            value |= std::uint64_t(bytes[position + static_cast<std::size_t>(i)]) << (8 * i);
        position += static_cast<std::size_t>(size);
        return value;
    }
    std::string text()
    {
        const auto length = static_cast<std::size_t>(number(4));
        if (!has(length))
            return {};
        const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(position);
        position += length;
        return std::string(begin, begin + static_cast<std::ptrdiff_t>(length));
    }
    Bytes rest() const { return Bytes(bytes.begin() + static_cast<std::ptrdiff_t>(position), bytes.end()); }
    bool isWhole() const { return whole; }

private:
    bool has(std::size_t size)
    {
        whole = whole && size <= bytes.size() - position;
        return whole;
    }
    const Bytes &bytes;
    std::size_t position = 0;
    bool whole = true;
};

} // namespace

CacheIndex::CacheIndex(std::unique_ptr<DiskFile> openedFile, std::uint64_t key)
    : indexFile(std::move(openedFile))
    , key(key)
{
}

bool CacheIndex::readRecord(std::uint64_t position, Record *record, std::uint64_t *next) const
{
    Bytes head(kHeadSize);
    if (indexFile->readAt(position, head.data(), head.size()) != head.size())
        return false;
    Reader reader(head);
    record->type = static_cast<std::uint32_t>(reader.number(4));
    // Before memory is asked for: the checksum that would show a wrong length stands behind the content.
    const auto length = static_cast<std::size_t>(reader.number(4));
    if (length > kMaxContent || length > indexFile->size())
        return false;
    Bytes all(kHeadSize + length + kSumSize);
    if (indexFile->readAt(position, all.data(), all.size()) != all.size())
        return false;
    const std::uint64_t sum = checksum64(all.data(), kHeadSize + length, key + position);
    const Bytes written(all.end() - kSumSize, all.end());
    if (Reader(written).number(8) != sum)
        return false;
    record->content.assign(all.begin() + kHeadSize, all.end() - kSumSize);
    *next = position + all.size();
    return true;
}

/// Other processes append to the same file, so every look begins here and costs what was added since the last one. A
/// record that is not whole ends the walk: somebody may be writing it, or was killed doing so. Only who holds the lock
/// can tell these apart, and cuts it off.
void CacheIndex::refresh(bool repairs)
{
    Record record;
    std::uint64_t next = 0;
    const std::uint64_t size = indexFile->size();
    if (size < end) { // cut by somebody who found it damaged further up
        end = 0;
        bySegmentOffset.clear();
        byteCount = 0;
        knowledgePlaces.clear();
        isBegun = false;
    }
    while (end < size && readRecord(end, &record, &next)) {
        take(record, end);
        end = next;
    }
    if (repairs && end < size)
        indexFile->truncate(end);
}

void CacheIndex::take(const Record &record, std::uint64_t position)
{
    if (record.type == kVersionRecord)
        return takeVersion(record.content);
    if (!isBegun)
        return;
    if (record.type == kSegmentRecord)
        takeSegment(record.content);
    Reader reader(record.content);
    if (record.type == kKnowledgeRecord)
        knowledgePlaces[reader.text()] = position;
}

void CacheIndex::takeVersion(const Bytes &content)
{
    Reader reader(content);
    FileVersion version;
    version.length = reader.number(8);
    version.entityTag = reader.text();
    version.lastModified = reader.text();
    version.hasStrongDate = !version.lastModified.empty(); // no other is kept without a strong tag
    if (!reader.isWhole() || isBegun)
        return;
    knownVersion = version;
    isBegun = true;
}

/// The numbers are those of somebody who had the checksum right; all the same none may point outside the stream.
void CacheIndex::takeSegment(const Bytes &content)
{
    Reader reader(content);
    for (std::size_t i = 0; i < content.size() / kSegmentContent; ++i) {
        const std::uint64_t offset = reader.number(8);
        Segment segment;
        segment.length = reader.number(8);
        segment.place = reader.number(8);
        segment.checksum = reader.number(8);
        if (segment.length > 0 && segment.length <= knownVersion.length &&
            offset <= knownVersion.length - segment.length)
            insert(offset, segment);
    }
}

std::map<std::uint64_t, CacheIndex::Segment>::const_iterator CacheIndex::firstEndingAfter(std::uint64_t offset) const
{
    auto it = bySegmentOffset.upper_bound(offset);
    if (it != bySegmentOffset.begin() && std::prev(it)->first + std::prev(it)->second.length > offset)
        --it;
    return it;
}

std::vector<std::pair<std::uint64_t, CacheIndex::Segment>> CacheIndex::segmentsWithin(const ByteRange &range) const
{
    auto last = firstEndingAfter(range.offset);
    const auto first = last;
    while (last != bySegmentOffset.end() && last->first < range.end())
        ++last;
    return {first, last};
}

ByteRangeSet CacheIndex::lacking(const std::vector<ByteRange> &ranges) const
{
    ByteRangeSet lacking(ranges);
    const std::vector<ByteRange> wanted = lacking.ranges();
    for (const ByteRange &range : wanted)
        for (const auto &[offset, segment] : segmentsWithin(range))
            lacking.remove(ByteRange{offset, segment.length});
    return lacking;
}

/// What is newer holds: it was written because the older was found to be damaged.
void CacheIndex::insert(std::uint64_t offset, const Segment &segment)
{
    for (const auto &[otherOffset, other] : segmentsWithin({offset, segment.length}))
        forget(otherOffset);
    bySegmentOffset.emplace(offset, segment);
    byteCount += segment.length;
}

/// In memory only: the record stays, and the bytes that are fetched again get a newer one.
void CacheIndex::forget(std::uint64_t offset)
{
    const auto found = bySegmentOffset.find(offset);
    if (found == bySegmentOffset.end())
        return;
    byteCount -= found->second.length;
    bySegmentOffset.erase(found);
}

bool CacheIndex::write(const Record &record)
{
    Bytes all;
    putNumber(&all, record.type, 4);
    putNumber(&all, record.content.size(), 4);
    all.insert(all.end(), record.content.begin(), record.content.end());
    putNumber(&all, checksum64(all.data(), all.size(), key + end), 8);
    if (!indexFile->writeAt(end, all.data(), all.size())) {
        indexFile->truncate(end); // no half record is left behind
        return false;
    }
    take(record, end);
    end += all.size();
    return true;
}

bool CacheIndex::begin(const FileVersion &version)
{
    Record record;
    record.type = kVersionRecord;
    putNumber(&record.content, version.length, 8);
    putText(&record.content, version.entityTag);
    putText(&record.content, version.lastModified);
    return write(record);
}

bool CacheIndex::append(const std::map<std::uint64_t, Segment> &segments)
{
    Record record;
    record.type = kSegmentRecord;
    for (const auto &[offset, segment] : segments)
        for (const std::uint64_t number : {offset, segment.length, segment.place, segment.checksum})
            putNumber(&record.content, number, 8);
    return write(record);
}

bool CacheIndex::remember(const std::string &name, const Bytes &knowledge)
{
    Record record;
    record.type = kKnowledgeRecord;
    putText(&record.content, name);
    record.content.insert(record.content.end(), knowledge.begin(), knowledge.end());
    return record.content.size() <= kMaxContent && write(record);
}

bool CacheIndex::recall(const std::string &name, Bytes *knowledge)
{
    const auto found = knowledgePlaces.find(name);
    Record record;
    std::uint64_t next = 0;
    if (found == knowledgePlaces.end() || !readRecord(found->second, &record, &next) || record.type != kKnowledgeRecord)
        return false;
    Reader reader(record.content);
    if (reader.text() != name || !reader.isWhole())
        return false;
    *knowledge = reader.rest();
    return true;
}

} // namespace xrv
