#pragma once

#include <chrono>

/// A bar on the terminal that standard error is; nothing where it is none.
class ProgressBar
{
public:
    explicit ProgressBar(bool isWanted);
    /// Takes the bar away.
    ~ProgressBar();
    ProgressBar(const ProgressBar &) = delete;
    ProgressBar &operator=(const ProgressBar &) = delete;

    /// \a share: 0 to 1.
    void show(double share);

private:
    bool isShown = false;
    int lastPercent = -1;
    std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
};
