#include "tagtree.h"

#include <algorithm>

namespace xrv {

/// The leaves come first, row by row, then each coarser level; the root is last.
TagTree::TagTree(std::uint32_t width, std::uint32_t height)
{
    std::size_t first = 0;
    while (width > 0 && height > 0) {
        const std::size_t count = std::size_t(width) * height;
        nodes.resize(first + count);
        if (count == 1)
            return;
        const std::uint32_t parentWidth = (width + 1) / 2;
        for (std::size_t i = 0; i < count; ++i)
            nodes[first + i].parent =
                static_cast<std::int32_t>(first + count + (i / width / 2) * parentWidth + (i % width) / 2);
        first += count;
        width = parentWidth;
        height = (height + 1) / 2;
    }
}

bool TagTree::isBelow(PacketBits &bits, std::uint32_t leaf, int threshold)
{
    std::int32_t path[32];
    int depth = 0;
    for (auto node = static_cast<std::int32_t>(leaf); node >= 0; node = nodes[node].parent)
        path[depth++] = node;
    // From the root to the leaf. A node is the least of those below it, so what is known to be its least value is that
    // of its children too: they need no bits for it.
    std::int16_t low = 0;
    while (depth > 0) {
        Node &node = nodes[path[--depth]];
        low = node.low = std::max(low, node.low);
        while (low < threshold && low < node.value) {
            if (bits.bit()) // a one: this is the value; a zero: it is larger
                node.value = low;
            else
                ++low;
        }
        node.low = low;
    }
    return nodes[leaf].value < threshold;
}

int TagTree::value(PacketBits &bits, std::uint32_t leaf, int limit)
{
    int threshold = 1;
    while (threshold <= limit && bits.ok() && !isBelow(bits, leaf, threshold))
        ++threshold;
    return threshold - 1;
}

} // namespace xrv
