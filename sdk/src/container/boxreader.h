#pragma once

#include "boxtype.h"
#include "warninglist.h"

#include "io/bytesource.h"

#include <cstdint>

namespace xrv {

/// A box of a file (ISO/IEC 15444-1 I.4). Its content is inside the range in which it was found, whatever its length
/// says.
struct Box
{
    std::uint32_t type = 0;
    std::uint64_t start = 0;   ///< of its header in the file
    ByteRange content;         ///< in the file
    std::uint64_t missing = 0; ///< bytes that its length claims beyond the range
    std::uint64_t end() const { return content.end(); }
};

/// Walks the boxes of byte ranges and reads only their headers, plus the contents that are asked for. Bounded: it gives
/// out no more than kMaxBoxes boxes, and keeps no more than kMaxKept bytes of contents that the caller keeps.
class BoxReader
{
public:
    static constexpr int kMaxBoxes = 65536;
    static constexpr std::uint64_t kMaxKept = 64u << 20;

    /// A place in a range of boxes.
    struct Position
    {
        std::uint64_t next = 0;
        std::uint64_t end = 0;
        bool lostTrack = false; ///< what stood at next was no box
    };

    /// Both are borrowed.
    BoxReader(ByteSource &source, WarningList &warnings)
        : source(source)
        , warnings(warnings)
    {
    }

    static Position startOf(ByteRange range) { return {range.offset, range.end(), false}; }
    /// The next box of a range; false at its end, where there is no box, at the limit or after failed().
    bool next(Position *position, Box *box);

    /// Contents of a box that is looked at and dropped. False, with a warning, where it is cut or larger than \a limit,
    /// and after failed().
    bool content(const Box &box, std::uint64_t limit, Bytes *bytes);
    /// Contents of a box that stays in memory: all of these together have one limit.
    bool keptContent(const Box &box, std::uint64_t limit, Bytes *bytes);
    /// Any bytes of the file; clipped to its end.
    bool bytesAt(ByteRange range, Bytes *bytes);

    /// There are more than kMaxBoxes boxes.
    bool isAtLimit() const { return boxesLeft == 0; }

    /// Reading the source failed; nothing more is read then.
    bool failed() const { return bool(readError); }
    const PLK::CError &error() const { return readError; }

private:
    struct Header
    {
        std::uint64_t headerLength = 8;
        std::uint64_t boxLength = 0; ///< 0: to the end of the range
        std::uint32_t type = 0;
    };
    bool headerAt(const Position &position, Header *header);
    bool windowAt(std::uint64_t offset, std::uint64_t end, const std::uint8_t **bytes, std::size_t *count);
    bool stop(Position *position, const std::string &why);

    ByteSource &source;
    WarningList &warnings;
    PLK::CError readError;
    Bytes window; ///< bytes around the last header
    std::uint64_t windowOffset = 0;
    int boxesLeft = kMaxBoxes;
    std::uint64_t keptLeft = kMaxKept;
};

} // namespace xrv
