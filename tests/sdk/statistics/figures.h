#pragma once

#include <algorithm>
#include <cmath>
#include <map>
#include <vector>

/// What statistics say of cells, worked out in the plainest way.
struct Figures
{
    template <typename Cell> explicit Figures(std::vector<Cell> cells)
    {
        std::sort(cells.begin(), cells.end());
        const std::size_t count = cells.size();
        min = double(cells.front());
        max = double(cells.back());
        median = (double(cells[(count - 1) / 2]) + double(cells[count / 2])) / 2;
        std::map<Cell, std::size_t> counts;
        for (const Cell cell : cells) {
            ++counts[cell];
            mean += double(cell) / double(count);
        }
        for (const Cell cell : cells)
            deviation += (double(cell) - mean) * (double(cell) - mean) / double(count);
        deviation = std::sqrt(deviation);
        mode = double(std::max_element(counts.begin(), counts.end(), [](const auto &a, const auto &b) {
                          return a.second < b.second;
                      })->first);
    }
    double min, max, median, mode, mean = 0, deviation = 0;
};
