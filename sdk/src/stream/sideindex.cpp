#include "sideindex.h"

#include "base/bytecursor.h"
#include "base/bytewriter.h"
#include "stream/cache/checksum.h"

namespace xrv {

namespace {

// Magic number, the image's length and the checksum of its first bytes (64 bits each), then for each piece of knowledge
// the lengths of its name and its content (32 bits each), these two, and at the end a checksum of all that.
constexpr std::uint32_t kMagic = 0x58525649; // "XRVI"
constexpr std::uint32_t kVersion = 1;
constexpr std::size_t kSumSize = 8;

void putU64(ByteWriter *out, std::uint64_t value)
{
    out->u32(static_cast<std::uint32_t>(value >> 32));
    out->u32(static_cast<std::uint32_t>(value));
}

} // namespace

const Bytes *SideIndex::find(const std::string &name) const
{
    const auto found = known.find(name);
    return found == known.end() ? nullptr : &found->second;
}

Bytes SideIndex::write(std::uint64_t imageLength, const Bytes &imageStart) const
{
    Bytes file;
    ByteWriter out(&file);
    out.u32(kMagic);
    out.u32(kVersion);
    putU64(&out, imageLength);
    putU64(&out, checksum64(imageStart.data(), imageStart.size(), 0));
    for (const auto &[name, knowledge] : known) {
        out.u32(static_cast<std::uint32_t>(name.size()));
        out.u32(static_cast<std::uint32_t>(knowledge.size()));
        out.append(Bytes(name.begin(), name.end()));
        out.append(knowledge);
    }
    putU64(&out, checksum64(file.data(), file.size(), 0));
    return file;
}

bool SideIndex::read(const Bytes &file, std::uint64_t imageLength, const Bytes &imageStart)
{
    known.clear();
    if (file.size() < kSumSize)
        return false;
    const std::size_t end = file.size() - kSumSize;
    if (ByteCursor(file.data() + end, kSumSize).u64() != checksum64(file.data(), end, 0))
        return false;
    ByteCursor in(file.data(), end);
    const bool isOfImage = in.u32() == kMagic && in.u32() == kVersion && in.u64() == imageLength &&
                           in.u64() == checksum64(imageStart.data(), imageStart.size(), 0);
    while (isOfImage && in.ok() && !in.atEnd()) {
        const std::size_t nameLength = in.u32(), length = in.u32();
        if (!in.ok() || nameLength > in.remaining() || length > in.remaining() - nameLength)
            return false;
        const std::string name(in.here(), in.here() + nameLength);
        in.skip(nameLength);
        known[name] = Bytes(in.here(), in.here() + length);
        in.skip(length);
    }
    return isOfImage && in.ok();
}

} // namespace xrv
