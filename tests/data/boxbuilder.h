#pragma once

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <vector>

/// Builds JP2 and JPX files byte by byte, for tests. Every function gives a whole box unless it says otherwise.
namespace boxbuilder {

using Bytes = std::vector<std::uint8_t>;

/// \a value in \a count bytes, big-endian.
inline Bytes number(std::uint64_t value, int count)
{
    Bytes bytes;
    for (int i = count - 1; i >= 0; --i)
        bytes.push_back(i < 8 ? static_cast<std::uint8_t>(value >> (8 * i)) : std::uint8_t(0));
    return bytes;
}

inline Bytes text(const std::string &characters)
{
    return Bytes(characters.begin(), characters.end());
}

inline void append(Bytes &to, const Bytes &more)
{
    to.insert(to.end(), more.begin(), more.end());
}

inline Bytes join(const std::vector<Bytes> &parts)
{
    Bytes all;
    for (const Bytes &part : parts)
        append(all, part);
    return all;
}

/// A box whose length field holds \a length whatever its content is.
inline Bytes boxWithLength(const std::string &type, std::uint32_t length, const Bytes &content)
{
    return join({number(length, 4), text(type), content});
}

inline Bytes box(const std::string &type, const Bytes &content)
{
    return boxWithLength(type, static_cast<std::uint32_t>(8 + content.size()), content);
}

/// With the 64-bit length field, even where 32 bits would do; \a length counts the whole box.
inline Bytes longBoxWithLength(const std::string &type, std::uint64_t length, const Bytes &content)
{
    return join({number(1, 4), text(type), number(length, 8), content});
}

inline Bytes longBox(const std::string &type, const Bytes &content)
{
    return longBoxWithLength(type, 16 + content.size(), content);
}

/// Reaches to the end of the file.
inline Bytes openBox(const std::string &type, const Bytes &content)
{
    return boxWithLength(type, 0, content);
}

inline Bytes superBox(const std::string &type, const std::vector<Bytes> &children)
{
    return box(type, join(children));
}

inline Bytes signature()
{
    return box("jP  ", {0x0d, 0x0a, 0x87, 0x0a});
}

inline Bytes fileType(const std::string &brand = "jp2 ", const std::vector<std::string> &compatible = {"jp2 "})
{
    Bytes content = join({text(brand), number(0, 4)});
    for (const std::string &entry : compatible)
        append(content, text(entry));
    return box("ftyp", content);
}

/// The BPC code of a depth: one less than the bits, sign in the highest bit.
inline std::uint8_t depthCode(int bits, bool isSigned = false)
{
    return static_cast<std::uint8_t>((bits - 1) | (isSigned ? 0x80 : 0));
}

/// \a bpc 255: the depths are in a bpcc box.
inline Bytes ihdr(std::uint32_t width, std::uint32_t height, int components, std::uint8_t bpc = 7)
{
    return box(
        "ihdr",
        join({number(height, 4), number(width, 4), number(static_cast<std::uint64_t>(components), 2), {bpc, 7, 0, 0}}));
}

inline Bytes bpcc(const Bytes &codes)
{
    return box("bpcc", codes);
}

inline Bytes colrEnumerated(std::uint32_t space, int precedence = 0, int approximation = 0,
                            const Bytes &parameters = {})
{
    return box("colr", join({{1, static_cast<std::uint8_t>(precedence), static_cast<std::uint8_t>(approximation)},
                             number(space, 4),
                             parameters}));
}

/// \a method 2: restricted, 3: any profile, 4: vendor's own.
inline Bytes colrIcc(const Bytes &profile, int method = 2, int precedence = 0, int approximation = 0)
{
    return box("colr", join({{static_cast<std::uint8_t>(method), static_cast<std::uint8_t>(precedence),
                              static_cast<std::uint8_t>(approximation)},
                             profile}));
}

/// Entries row by row; each value takes the bytes that its column's depth code needs.
inline Bytes pclr(const Bytes &columnCodes, const std::vector<std::vector<std::int64_t>> &entries)
{
    Bytes content = join({number(entries.size(), 2), number(columnCodes.size(), 1), columnCodes});
    for (const auto &entry : entries)
        for (std::size_t column = 0; column < entry.size(); ++column)
            append(content, number(static_cast<std::uint64_t>(entry[column]), ((columnCodes[column] & 0x7f) + 8) / 8));
    return box("pclr", content);
}

struct Mapping
{
    int component;
    int type; ///< 0 direct, 1 through the palette
    int column;
};

inline Bytes cmap(const std::vector<Mapping> &mappings)
{
    Bytes content;
    for (const Mapping &m : mappings)
        append(content,
               join({number(static_cast<std::uint64_t>(m.component), 2), number(static_cast<std::uint64_t>(m.type), 1),
                     number(static_cast<std::uint64_t>(m.column), 1)}));
    return box("cmap", content);
}

struct Definition
{
    int channel;
    int type;        ///< 0 colour, 1 opacity, 2 premultiplied opacity, 65535 unspecified
    int association; ///< 0 whole image, 1.. colour, 65535 none
};

inline Bytes cdef(const std::vector<Definition> &definitions)
{
    Bytes content = number(definitions.size(), 2);
    for (const Definition &d : definitions)
        for (const int value : {d.channel, d.type, d.association})
            append(content, number(static_cast<std::uint64_t>(value), 2));
    return box("cdef", content);
}

inline Bytes jp2h(const std::vector<Bytes> &children)
{
    return superBox("jp2h", children);
}

/// \a uuid has 16 bytes.
inline Bytes uuid(const Bytes &uuid, const Bytes &content)
{
    return box("uuid", join({uuid, content}));
}

inline Bytes xml(const std::string &content)
{
    return box("xml ", text(content));
}

inline Bytes label(const std::string &content)
{
    return box("lbl ", text(content));
}

inline Bytes asoc(const std::vector<Bytes> &children)
{
    return superBox("asoc", children);
}

/// The GML association of GML in JPEG 2000 with one instance document.
inline Bytes gml(const std::string &rootInstance)
{
    return asoc({label("gml.data"), asoc({label("gml.root-instance"), xml(rootInstance)})});
}

/// A whole file: \a headerBoxes into the jp2h box, \a before in front of the codestream, \a after behind it.
inline Bytes jp2(const std::vector<Bytes> &headerBoxes, const Bytes &codestream, const std::vector<Bytes> &before = {},
                 const std::vector<Bytes> &after = {})
{
    return join({signature(), fileType(), jp2h(headerBoxes), join(before), box("jp2c", codestream), join(after)});
}

/// Where a box lies in a file, its header included.
struct BoxAt
{
    std::string type;
    std::size_t start, length;
};

/// Four bytes as a number.
template <typename File> std::uint32_t numberAt(const File &file, std::size_t place)
{
    const auto *bytes = reinterpret_cast<const std::uint8_t *>(file.data()) + place;
    return std::uint32_t(bytes[0]) << 24 | std::uint32_t(bytes[1]) << 16 | std::uint32_t(bytes[2]) << 8 | bytes[3];
}

/// The boxes of a sound file with 32-bit lengths, and those in its jp2h box.
template <typename File> std::vector<BoxAt> boxesOf(const File &file)
{
    std::vector<BoxAt> boxes;
    for (std::size_t at = 0; at + 8 <= static_cast<std::size_t>(file.size());) {
        const auto *type = reinterpret_cast<const char *>(file.data()) + at + 4;
        boxes.push_back({std::string(type, 4), at, numberAt(file, at)});
        at += boxes.back().type == "jp2h" ? 8 : std::max<std::size_t>(boxes.back().length, 8);
    }
    return boxes;
}

/// Throws where there is none.
template <typename File> BoxAt findBox(const File &file, const std::string &type)
{
    for (const BoxAt &box : boxesOf(file))
        if (box.type == type)
            return box;
    throw std::out_of_range("no box " + type);
}

} // namespace boxbuilder
