#include "fragmenttable.h"

#include "base/bytecursor.h"

#include <limits>

namespace xrv {

namespace {

// A list of 65535 fragments of 14 bytes.
constexpr std::uint64_t kMaxList = 1u << 20;

PLK::CError parseFragments(const Bytes &list, ByteRange *codestream)
{
    ByteCursor cursor(list.data(), list.size());
    const int count = cursor.u16();
    ByteRange whole;
    for (int i = 0; i < count; ++i) {
        const std::uint64_t offset = cursor.u64();
        const std::uint64_t length = cursor.u32();
        const int file = cursor.u16();
        if (!cursor.ok() || offset > std::numeric_limits<std::uint64_t>::max() - length)
            return {PLK_ERR_MALFORMED, "The fragment table of the codestream is damaged."};
        if (file != 0)
            return {PLK_ERR_UNSUPPORTED, "The codestream lies in another file, which is not supported."};
        if (i > 0 && offset != whole.end())
            return {PLK_ERR_UNSUPPORTED, "The codestream lies in scattered pieces, which is not supported."};
        if (i == 0)
            whole.offset = offset;
        whole.length += length;
    }
    if (whole.length == 0)
        return {PLK_ERR_MALFORMED, "The fragment table of the codestream is damaged."};
    *codestream = whole;
    return {};
}

} // namespace

PLK::CError readFragmentTable(BoxReader &reader, const Box &table, ByteRange *codestream)
{
    BoxReader::Position position = BoxReader::startOf(table.content);
    Box box;
    while (reader.next(&position, &box)) {
        Bytes list;
        if (box.type == boxType("flst") && reader.content(box, kMaxList, &list))
            return parseFragments(list, codestream);
    }
    if (reader.failed())
        return reader.error();
    return {PLK_ERR_MALFORMED, "The fragment table of the codestream is damaged."};
}

} // namespace xrv
