#include "report.h"

#include <algorithm>
#include <cstdio>

namespace {

std::string text(const char *format, double number)
{
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, format, number);
    return buffer;
}

std::string time(double milliseconds)
{
    return text(milliseconds < 100.0 ? "%.1f" : "%.0f", milliseconds);
}

std::string cell(const Series &series, double number)
{
    if (!series.error().empty())
        return series.error();
    return series.isEmpty() ? "" : time(number);
}

std::string ratio(const Series &ours, const Series &peer)
{
    const bool isKnown = !ours.isEmpty() && !peer.isEmpty() && ours.error().empty() && peer.error().empty();
    return isKnown ? text("%.2f", ours.median() / peer.median()) : "";
}

std::string megabytes(std::uint64_t bytes)
{
    return bytes ? text("%.0f", static_cast<double>(bytes) / 1e6) : "";
}

void printRow(const std::vector<std::string> &cells)
{
    for (const std::string &content : cells)
        std::printf("| %s ", content.c_str());
    std::printf("|\n");
}

} // namespace

void Series::add(const ChildResult &result, std::size_t index)
{
    mostBytes = std::max(mostBytes, result.peakBytes);
    if (result.error.empty() && index < result.numbers.size())
        numbers.push_back(result.numbers[index]);
    else if (firstError.empty())
        firstError = result.error.empty() ? "nothing was measured" : result.error;
}

double Series::median() const
{
    if (numbers.empty())
        return 0.0;
    std::vector<double> sorted = numbers;
    std::sort(sorted.begin(), sorted.end());
    const std::size_t middle = sorted.size() / 2;
    return sorted.size() % 2 ? sorted[middle] : (sorted[middle - 1] + sorted[middle]) / 2.0;
}

double Series::worst() const
{
    return numbers.empty() ? 0.0 : *std::max_element(numbers.begin(), numbers.end());
}

void printComparisons(const std::vector<Comparison> &rows)
{
    printRow({"image", "what", "ours, ms", "GDAL, ms", "opj_decompress, ms", "ours / GDAL", "ours / opj",
              "memory: ours, MB", "GDAL, MB", "opj, MB"});
    printRow({"---", "---", "--:", "--:", "--:", "--:", "--:", "--:", "--:", "--:"});
    for (const Comparison &row : rows)
        printRow({row.image, row.what, cell(row.ours, row.ours.median()), cell(row.gdal, row.gdal.median()),
                  cell(row.opj, row.opj.median()), ratio(row.ours, row.gdal), ratio(row.ours, row.opj),
                  megabytes(row.ours.peakBytes()), megabytes(row.gdal.peakBytes()), megabytes(row.opj.peakBytes())});
}

void printProgressive(const std::vector<ProgressiveRow> &rows)
{
    printRow({"image", "what", "first pass, cold", "first pass, warm", "last pass, cold",
              "slowest first pass of 20 pans", "the same, each pan at the first pass of the one before", "memory, MB"});
    printRow({"---", "---", "--:", "--:", "--:", "--:", "--:", "--:"});
    for (const ProgressiveRow &row : rows) {
        const std::uint64_t peak =
            std::max({row.firstCold.peakBytes(), row.dragging.peakBytes(), row.resting.peakBytes()});
        printRow({row.image, row.what, cell(row.firstCold, row.firstCold.worst()),
                  cell(row.firstWarm, row.firstWarm.worst()), cell(row.last, row.last.median()),
                  cell(row.resting, row.resting.worst()), cell(row.dragging, row.dragging.worst()), megabytes(peak)});
    }
}

void printMemory(const std::vector<Comparison> &rows, const std::vector<ProgressiveRow> &progressive,
                 std::uint64_t budgetBytes)
{
    std::uint64_t most = 0;
    for (const Comparison &row : rows)
        most = std::max(most, row.ours.peakBytes());
    for (const ProgressiveRow &row : progressive)
        most = std::max({most, row.firstCold.peakBytes(), row.dragging.peakBytes(), row.resting.peakBytes()});
    std::printf("Most memory of any of our processes: %s MB; the tile cache's budget was %s MB.\n",
                megabytes(most).c_str(), megabytes(budgetBytes).c_str());
}
