#include "bandcounter.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace xrv {

namespace {

constexpr int kMaxCountedBits = 16;
constexpr std::size_t kByteBuckets = 256;

} // namespace

BandCounter::BandCounter(int bandBits, bool bandIsSigned, std::size_t bucketLimit, CellKind bandKind)
    : bits(bandBits)
    , isSigned(bandIsSigned)
    , maxBuckets(bucketLimit)
    , kind(bandKind)
    , isScouting(bandBits > kMaxCountedBits)
    , smallest(std::numeric_limits<double>::infinity())
    , largest(-smallest)
{
    if (isScouting) {
        medianFinder.emplace();
        return;
    }
    const int countedBits = std::max(bits, 8);
    first = isSigned ? -std::ldexp(1.0, countedBits - 1) : 0.0;
    counts.resize(std::size_t(1) << countedBits);
}

std::size_t BandCounter::memoryFor(int bits)
{
    constexpr int kCountersOfDeepBands = 4; // those of the median, too
    return (sizeof(std::uint64_t) << std::clamp(bits, 8, kMaxCountedBits)) *
           (bits > kMaxCountedBits ? kCountersOfDeepBands : 1);
}

int BandCounter::passesFor(int bits)
{
    return bits > kMaxCountedBits ? 2 : 1;
}

bool BandCounter::beginNextPass()
{
    isDone = !isScouting;
    if (isDone)
        return false;
    isScouting = false;
    medianFinder->beginSecondPass();
    if (largest < smallest) // no cells
        smallest = largest = 0.0;
    areWhole = areWhole || smallest == largest;
    first = smallest;
    constexpr double kMostSteps = 1 << kMaxCountedBits;
    const double range = areWhole ? largest - smallest + 1.0 : largest - smallest;
    const double steps = areWhole ? std::min(range, kMostSteps) : kMostSteps;
    valuesPerStep = range / steps;
    counts.resize(static_cast<std::size_t>(steps));
    return true;
}

double BandCounter::valueOf(std::size_t step) const
{
    const double middle = areWhole ? (valuesPerStep - 1.0) / 2.0 : valuesPerStep / 2.0;
    return first + static_cast<double>(step) * valuesPerStep + middle;
}

void BandCounter::finish(PLKBandStatistics *statistics) const
{
    *statistics = {};
    std::uint64_t total = 0;
    for (std::uint64_t count : counts)
        total += count;
    if (total > 0) {
        const auto isFilled = [](std::uint64_t count) { return count > 0; };
        const auto lowest = std::find_if(counts.begin(), counts.end(), isFilled) - counts.begin();
        const auto highest = counts.rend() - std::find_if(counts.rbegin(), counts.rend(), isFilled) - 1;
        const auto mode = std::max_element(counts.begin(), counts.end()) - counts.begin();
        statistics->fMin = static_cast<float>(isExact() ? valueOf(static_cast<std::size_t>(lowest)) : smallest);
        statistics->fMax = static_cast<float>(isExact() ? valueOf(static_cast<std::size_t>(highest)) : largest);
        statistics->fMode = static_cast<float>(valueOf(static_cast<std::size_t>(mode)));
        statistics->fMedian = static_cast<float>(median(total));
        computeMoments(static_cast<double>(total), statistics);
    }
    makeHistogram(statistics);
}

void BandCounter::computeMoments(double total, PLKBandStatistics *statistics) const
{
    double distance = sum, squares = sumOfSquares;
    if (isExact()) {
        for (std::size_t i = 0; i < counts.size(); ++i)
            distance += static_cast<double>(i) * static_cast<double>(counts[i]);
    }
    const double mean = distance / total;
    double variance = squares / total - mean * mean;
    if (isExact()) {
        squares = 0.0;
        for (std::size_t i = 0; i < counts.size(); ++i)
            squares +=
                (static_cast<double>(i) - mean) * (static_cast<double>(i) - mean) * static_cast<double>(counts[i]);
        variance = squares / total;
    }
    statistics->fMean = static_cast<float>(first + mean);
    statistics->fStandardDev = static_cast<float>(std::sqrt(std::max(0.0, variance)));
}

double BandCounter::valueOfKey(std::uint32_t key) const
{
    const auto bitsOfKey = static_cast<std::int32_t>(key ^ kKeyOfZero);
    if (kind == CellKind::Float)
        return static_cast<double>(floatOfBits(CellMapping::ordered(bitsOfKey)));
    return isSigned ? static_cast<double>(bitsOfKey) : static_cast<double>(key);
}

double BandCounter::median(std::uint64_t total) const
{
    if (medianFinder) {
        const auto [lower, upper] = medianFinder->middle();
        return (valueOfKey(lower) + valueOfKey(upper)) / 2.0;
    }
    const auto valueAtRank = [this](std::uint64_t rank) {
        std::uint64_t below = 0;
        for (std::size_t i = 0; i < counts.size(); ++i) {
            below += counts[i];
            if (below > rank)
                return valueOf(i);
        }
        return valueOf(counts.size() - 1);
    };
    return (valueAtRank((total - 1) / 2) + valueAtRank(total / 2)) / 2.0;
}

void BandCounter::makeHistogram(PLKBandStatistics *statistics) const
{
    std::size_t begin = 0, end = counts.size();
    if (bits > 8) { // only between the smallest and the largest value
        while (begin + 1 < end && counts[begin] == 0)
            ++begin;
        while (end > begin + 1 && counts[end - 1] == 0)
            --end;
    }
    const std::size_t steps = end - begin;
    const std::size_t buckets = bits > 8 ? std::min(steps, maxBuckets) : kByteBuckets;
    statistics->nHistBucketCount = static_cast<std::uint32_t>(buckets);
    statistics->pHistogram = new std::uint64_t[buckets]();
    for (std::size_t i = 0; i < steps; ++i)
        statistics->pHistogram[i * buckets / steps] += counts[begin + i];
}

} // namespace xrv
