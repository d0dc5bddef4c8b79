#include "boxreader.h"

#include "base/bytecursor.h"

#include <algorithm>

namespace xrv {

namespace {

// Long enough for the headers of a JP2 header box with its children, short enough to cost nothing between large boxes.
constexpr std::uint64_t kWindow = 4096;
constexpr std::uint64_t kLongHeader = 16;

bool isPrintable(std::uint32_t character)
{
    return character >= 0x20 && character < 0x7f;
}

std::string atByte(std::uint64_t offset)
{
    return "at byte " + std::to_string(offset);
}

} // namespace

bool isPlausibleBoxType(std::uint32_t type)
{
    return isPrintable(type >> 24) && isPrintable(type >> 16 & 0xff) && isPrintable(type >> 8 & 0xff) &&
           isPrintable(type & 0xff);
}

std::string boxTypeName(std::uint32_t type)
{
    std::string name;
    for (int shift = 24; shift >= 0; shift -= 8)
        name += isPrintable(type >> shift & 0xff) ? static_cast<char>(type >> shift & 0xff) : '?';
    return name;
}

bool BoxReader::bytesAt(ByteRange range, Bytes *bytes)
{
    bytes->clear();
    if (failed())
        return false;
    const std::uint64_t size = source.size();
    if (range.offset >= size)
        return true;
    range.length = std::min(range.length, size - range.offset);
    // The small boxes of a header lie beside each other: one request over a network brings them all.
    if (range.offset >= windowOffset && range.end() <= windowOffset + window.size()) {
        const auto first = window.begin() + static_cast<std::ptrdiff_t>(range.offset - windowOffset);
        const Bytes inWindow(first, first + static_cast<std::ptrdiff_t>(range.length));
        *bytes = inWindow;
        return true;
    }
    readError = source.read(range, bytes);
    return !failed();
}

// Gives at least one byte at offset, more where the range has them; false where it has none.
bool BoxReader::windowAt(std::uint64_t offset, std::uint64_t end, const std::uint8_t **bytes, std::size_t *count)
{
    const std::uint64_t wanted = std::min(kLongHeader, end - offset);
    if (offset < windowOffset || offset + wanted > windowOffset + window.size()) {
        if (!bytesAt({offset, kWindow}, &window))
            return false;
        windowOffset = offset;
    }
    const std::uint64_t inWindow = windowOffset + window.size() - offset;
    *bytes = window.data() + (offset - windowOffset);
    *count = static_cast<std::size_t>(std::min(inWindow, end - offset));
    return *count > 0;
}

bool BoxReader::headerAt(const Position &position, Header *header)
{
    const std::uint8_t *bytes = nullptr;
    std::size_t count = 0;
    if (!windowAt(position.next, position.end, &bytes, &count))
        return false;
    ByteCursor cursor(bytes, count);
    header->boxLength = cursor.u32();
    header->type = cursor.u32();
    if (header->boxLength == 1) {
        header->boxLength = cursor.u64();
        header->headerLength = kLongHeader;
    }
    const bool isLengthGood =
        header->boxLength >= header->headerLength || (header->boxLength == 0 && header->headerLength != kLongHeader);
    // A codestream of unknown length: some writers never come back to fill the length in.
    if (!isLengthGood && header->type == boxType("jp2c")) {
        warnings.add("The codestream's box " + atByte(position.next) +
                     " has a wrong length; it is taken to reach to the end.");
        header->boxLength = 0;
        return cursor.ok();
    }
    return cursor.ok() && isLengthGood && isPlausibleBoxType(header->type);
}

bool BoxReader::stop(Position *position, const std::string &why)
{
    position->lostTrack = true;
    if (!failed())
        warnings.add(why);
    return false;
}

bool BoxReader::next(Position *position, Box *box)
{
    if (failed() || position->lostTrack || position->next >= position->end)
        return false;
    if (boxesLeft == 0)
        return stop(position, "The file has more than " + std::to_string(kMaxBoxes) + " boxes; the rest is ignored.");
    Header header;
    if (!headerAt(*position, &header))
        return stop(position, "There is no valid box " + atByte(position->next) + ".");
    --boxesLeft;

    const std::uint64_t available = position->end - position->next;
    const std::uint64_t claimed = header.boxLength == 0 ? available : header.boxLength;
    const std::uint64_t length = std::min(claimed, available);
    box->type = header.type;
    box->start = position->next;
    box->content = {position->next + header.headerLength, length - header.headerLength};
    box->missing = claimed - length;
    position->next += length;
    if (box->missing > 0)
        warnings.add("Box '" + boxTypeName(box->type) + "' " + atByte(box->start) + " claims " +
                     std::to_string(box->missing) + " bytes more than there are.");
    return true;
}

bool BoxReader::content(const Box &box, std::uint64_t limit, Bytes *bytes)
{
    bytes->clear();
    if (failed() || box.missing > 0)
        return false;
    if (box.content.length > limit) {
        warnings.add("Box '" + boxTypeName(box.type) + "' " + atByte(box.start) + " is too large and is ignored.");
        return false;
    }
    return bytesAt(box.content, bytes);
}

bool BoxReader::keptContent(const Box &box, std::uint64_t limit, Bytes *bytes)
{
    if (!content(box, std::min(limit, keptLeft), bytes))
        return false;
    keptLeft -= bytes->size();
    return true;
}

} // namespace xrv
