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
///
/// Its nodes are made when they are first asked about: what has not been told takes no memory, however many leaves
/// there are.
class TagTree
{
public:
    TagTree(std::uint32_t width, std::uint32_t height);

    std::uint32_t width() const { return leavesAcross; }
    std::uint32_t height() const { return leavesDown; }

    /// Reads until it is known whether the leaf's value is below \a threshold (up to 65535).
    bool isBelow(PacketBits &bits, std::uint32_t x, std::uint32_t y, int threshold);
    /// After isBelow() said no: that holds for all leaves of the square of 2^level leaves a side, counted from the
    /// first leaf, in which the leaf lies, and asking for them reads nothing.
    int levelNotBelow() const { return lastLevel; }
    /// Reads until the leaf's value is known; at most \a limit.
    int value(PacketBits &bits, std::uint32_t x, std::uint32_t y, int limit);

    /// A number that the owner gives the leaf for which isBelow() said yes last; 0 to begin with.
    std::uint32_t &label() { return quads[lastQuad].below[lastSlot]; }
    std::uint32_t labelOf(std::uint32_t x, std::uint32_t y) const;

    std::size_t memoryUse() const { return quads.capacity() * sizeof(Quad); }

private:
    static constexpr std::uint16_t kUntold = 0xFFFF;
    struct Node
    {
        std::uint16_t value = kUntold;
        std::uint16_t low = 0; ///< the value is no less, as far as has been told
    };
    /// The four nodes below one; the first quad has the root alone.
    struct Quad
    {
        Node nodes[4];
        std::uint32_t below[4] = {0, 0, 0, 0}; ///< quads, 0 for those not made yet; of leaves their labels
    };
    static unsigned slotAt(std::uint32_t x, std::uint32_t y, int level)
    {
        return (x >> level & 1u) | (y >> level & 1u) << 1;
    }

    std::uint32_t leavesAcross, leavesDown;
    int depth = 0; ///< levels below the root
    int lastLevel = 0;
    std::size_t lastQuad = 0;
    unsigned lastSlot = 0;
    std::vector<Quad> quads;
};

} // namespace xrv
