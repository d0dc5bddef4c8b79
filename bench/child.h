#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// What a child process measured, and the most memory that it held.
struct ChildResult
{
    std::vector<double> numbers;
    std::string error; ///< empty when all went well
    std::uint64_t peakBytes = 0;
};

/// Runs \a work in a process of its own, so that it starts cold and its memory can be told from that of others.
/// std::exception from \a work becomes the error.
ChildResult inChild(const std::function<std::vector<double>()> &work);

/// Runs a program, without its output, and measures how long it takes: the one number, in milliseconds.
ChildResult runProgram(const std::vector<std::string> &command);

/// Runs \a work and tells how long it took, in milliseconds.
double millisecondsOf(const std::function<void()> &work);
