#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace xrv {

/// Finds the median of numbers of 32 bits that are gone through twice: it counts them by their upper halves, and then
/// by their lower halves those that may be the median.
class MedianFinder
{
public:
    MedianFinder()
        : upper(kHalves)
    {
    }

    void scout(std::uint32_t number) { ++upper[number >> kHalfBits]; }
    void beginSecondPass();
    void tally(std::uint32_t number)
    {
        for (Middle &middle : middles)
            if (number >> kHalfBits == middle.upper)
                ++middle.lower[number % kHalves];
    }
    /// The two in the middle; the same twice where there is one. 0 where nothing was counted.
    std::pair<std::uint32_t, std::uint32_t> middle() const { return {middles[0].number(), middles[1].number()}; }

private:
    static constexpr int kHalfBits = 16;
    static constexpr std::size_t kHalves = std::size_t(1) << kHalfBits;
    struct Middle
    {
        std::uint32_t number() const;
        std::uint32_t upper = 0;
        std::uint64_t rank = 0; ///< among those that share the upper half
        std::vector<std::uint64_t> lower;
    };
    std::vector<std::uint64_t> upper;
    std::array<Middle, 2> middles;
};

} // namespace xrv
