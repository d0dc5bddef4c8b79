#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

/// Makes the bytes of a TIFF file of one cell with geographic tags, without any TIFF library, so that wrong ones can be
/// made.
class GeoTiffBuilder
{
public:
    enum Type : std::uint16_t { Ascii = 2, Short = 3, Long = 4, Double = 12 };
    using Bytes = std::vector<std::uint8_t>;

    explicit GeoTiffBuilder(bool isBigEndian = false)
        : bigEndian(isBigEndian)
    {
    }

    GeoTiffBuilder &doubles(std::uint16_t tag, const std::vector<double> &values)
    {
        Bytes data;
        for (double value : values) {
            std::uint64_t bits;
            std::memcpy(&bits, &value, sizeof bits);
            put(&data, bits, 8);
        }
        return raw(tag, Double, static_cast<std::uint32_t>(values.size()), data);
    }
    /// A GeoKeyDirectory of short keys.
    GeoTiffBuilder &keys(const std::vector<std::pair<std::uint16_t, std::uint16_t>> &entries)
    {
        std::vector<std::uint16_t> values = {1, 1, 0, static_cast<std::uint16_t>(entries.size())};
        for (const auto &entry : entries)
            values.insert(values.end(), {entry.first, 0, 1, entry.second});
        return shorts(34735, values);
    }
    GeoTiffBuilder &shorts(std::uint16_t tag, const std::vector<std::uint16_t> &values)
    {
        Bytes data;
        for (std::uint16_t value : values)
            put(&data, value, 2);
        return raw(tag, Short, static_cast<std::uint32_t>(values.size()), data);
    }
    GeoTiffBuilder &text(std::uint16_t tag, const std::string &value)
    {
        const Bytes data(value.c_str(), value.c_str() + value.size() + 1);
        return raw(tag, Ascii, static_cast<std::uint32_t>(data.size()), data);
    }
    /// \a count may lie about \a data.
    GeoTiffBuilder &raw(std::uint16_t tag, std::uint16_t type, std::uint32_t count, const Bytes &data)
    {
        tags.push_back({tag, type, count, data});
        return *this;
    }

    /// Tags must have been added in rising order; those of the picture are below all geographic ones.
    Bytes bytes() const
    {
        std::vector<Tag> all;
        for (const auto &[tag, value] : {std::pair<std::uint16_t, std::uint16_t>{256, 1},
                                         {257, 1},
                                         {258, 8},
                                         {259, 1},
                                         {262, 1},
                                         {273, 8},
                                         {277, 1},
                                         {278, 1},
                                         {279, 1}}) {
            Bytes data;
            put(&data, value, 2);
            all.push_back({tag, Short, 1, data});
        }
        all.insert(all.end(), tags.begin(), tags.end());
        const std::size_t start = 10;
        Bytes extra, out(2, bigEndian ? 'M' : 'I');
        put(&out, 42, 2);
        put(&out, start, 4);
        out.resize(start);
        put(&out, all.size(), 2);
        const std::size_t extraStart = start + 2 + all.size() * 12 + 4;
        for (const Tag &tag : all) {
            put(&out, tag.tag, 2);
            put(&out, tag.type, 2);
            put(&out, tag.count, 4);
            Bytes value = tag.data;
            if (value.size() > 4) {
                value.clear();
                put(&value, extraStart + extra.size(), 4);
                extra.insert(extra.end(), tag.data.begin(), tag.data.end());
            }
            value.resize(4);
            out.insert(out.end(), value.begin(), value.end());
        }
        put(&out, 0, 4);
        out.insert(out.end(), extra.begin(), extra.end());
        return out;
    }

private:
    struct Tag
    {
        std::uint16_t tag, type;
        std::uint32_t count;
        Bytes data;
    };

    void put(Bytes *out, std::uint64_t value, int count) const
    {
        for (int i = 0; i < count; ++i)
            out->push_back(static_cast<std::uint8_t>(value >> 8 * (bigEndian ? count - 1 - i : i)));
    }

    bool bigEndian;
    std::vector<Tag> tags;
};
