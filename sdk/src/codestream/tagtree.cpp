#include "tagtree.h"

#include <algorithm>

namespace xrv {

TagTree::TagTree(std::uint32_t width, std::uint32_t height)
    : leavesAcross(width)
    , leavesDown(height)
{
    while (std::max(width, height) > std::uint64_t(1) << depth)
        ++depth;
}

bool TagTree::isBelow(PacketBits &bits, std::uint32_t x, std::uint32_t y, int threshold)
{
    if (quads.empty())
        quads.emplace_back();
    lastQuad = 0;
    lastSlot = 0;
    // From the root to the leaf. A node is the least of those below it, so what is known to be its least value is that
    // of its children too: they need no bits for it.
    std::uint16_t low = 0;
    for (lastLevel = depth;; --lastLevel) {
        Node &node = quads[lastQuad].nodes[lastSlot];
        low = std::max(low, node.low);
        while (low < threshold && low < node.value) {
            if (bits.bit()) // a one: this is the value; a zero: it is larger
                node.value = low;
            else
                ++low;
        }
        node.low = low;
        if (node.value >= threshold)
            return false;
        if (lastLevel == 0)
            return true;
        std::size_t next = quads[lastQuad].below[lastSlot];
        if (next == 0) {
            next = quads.size();
            quads[lastQuad].below[lastSlot] = static_cast<std::uint32_t>(next);
            quads.emplace_back();
        }
        lastQuad = next;
        lastSlot = slotAt(x, y, lastLevel - 1);
    }
}

int TagTree::value(PacketBits &bits, std::uint32_t x, std::uint32_t y, int limit)
{
    int threshold = 1;
    while (threshold <= limit && bits.ok() && !isBelow(bits, x, y, threshold))
        ++threshold;
    return threshold - 1;
}

std::uint32_t TagTree::labelOf(std::uint32_t x, std::uint32_t y) const
{
    if (quads.empty())
        return 0;
    std::uint32_t below = quads.front().below[0];
    for (int level = depth - 1; level >= 0 && below != 0; --level)
        below = quads[below].below[slotAt(x, y, level)];
    return below;
}

} // namespace xrv
