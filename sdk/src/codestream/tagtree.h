#pragma once

#include <cstdint>
#include <vector>

namespace xrv {

/// Bits of a packet header, most significant first; after a byte of 0xFF the next one gives 7 (ISO/IEC 15444-1 B.10.1).
/// Reading beyond the end gives 0 and makes ok() false.
class PacketBits
{
public:
    PacketBits(const std::uint8_t *data, std::size_t size)
        : data(data)
        , size(size)
    {
    }

    unsigned bit()
    {
        if (left == 0)
            refill();
        --left;
        return current >> left & 1u;
    }
    unsigned bits(int count)
    {
        unsigned value = 0;
        while (count-- > 0)
            value = value << 1 | bit();
        return value;
    }
    bool ok() const { return good; }
    /// Ends the header: a last byte of 0xFF is followed by a stuffed one. Gives its length in bytes.
    std::size_t finish()
    {
        if (current == 0xFF && position > 0)
            ++position;
        left = 0;
        if (position > size)
            good = false;
        return position;
    }

private:
    void refill()
    {
        left = position > 0 && current == 0xFF ? 7 : 8;
        if (position < size) {
            current = data[position];
        } else {
            current = 0;
            good = false;
        }
        ++position;
    }

    const std::uint8_t *data;
    std::size_t size;
    std::size_t position = 0;
    unsigned current = 0;
    int left = 0;
    bool good = true;
};

/// Tag tree (B.10.2): a quad tree of minima, told bit by bit. What one packet has told of it holds for all later
/// packets of the precinct, so the order of the questions is part of the format.
class TagTree
{
public:
    TagTree(std::uint32_t width, std::uint32_t height);

    /// Reads until it is known whether the leaf's value is below \a threshold.
    bool isBelow(PacketBits &bits, std::uint32_t leaf, int threshold);
    /// Reads until the leaf's value is known; at most \a limit.
    int value(PacketBits &bits, std::uint32_t leaf, int limit);

private:
    struct Node
    {
        std::int32_t parent = -1;
        std::int16_t value = 0x7FFF; ///< until it has been told
        std::int16_t low = 0;        ///< the value is no less, as far as has been told
    };
    std::vector<Node> nodes;
};

} // namespace xrv
