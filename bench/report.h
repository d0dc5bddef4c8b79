#pragma once

#include "child.h"

#include <string>
#include <vector>

/// The repetitions of one measurement of one peer. Times in milliseconds.
class Series
{
public:
    /// Takes the number at \a index of \a result; a failed one makes the series fail.
    void add(const ChildResult &result, std::size_t index = 0);
    bool isEmpty() const { return numbers.empty(); }
    const std::string &error() const { return firstError; }
    double median() const;
    double worst() const;
    std::uint64_t peakBytes() const { return mostBytes; }

private:
    std::vector<double> numbers;
    std::string firstError;
    std::uint64_t mostBytes = 0;
};

/// One measurement side by side; a peer that was not measured has an empty series.
struct Comparison
{
    std::string image;
    std::string what;
    Series ours, gdal, opj;
};

/// How soon the passes of progressive views came.
struct ProgressiveRow
{
    std::string image;
    std::string what;
    Series firstCold, firstWarm;
    Series last;
    Series dragging, resting; ///< slowest first pass of the pans: next one at the first pass, or after the last
};

void printComparisons(const std::vector<Comparison> &rows);
void printProgressive(const std::vector<ProgressiveRow> &rows);
/// Most memory of any of our processes against the budget of the tile cache.
void printMemory(const std::vector<Comparison> &rows, const std::vector<ProgressiveRow> &progressive,
                 std::uint64_t budgetBytes);
