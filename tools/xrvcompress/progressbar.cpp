#include "progressbar.h"

#include <cstdio>
#include <string>

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace {

constexpr int kWidth = 40;

bool isTerminal()
{
#ifdef _WIN32
    return _isatty(_fileno(stderr)) != 0;
#else
    return isatty(STDERR_FILENO) != 0;
#endif
}

} // namespace

ProgressBar::ProgressBar(bool isWanted)
    : isShown(isWanted && isTerminal())
{
}

ProgressBar::~ProgressBar()
{
    if (isShown && lastPercent >= 0)
        std::fprintf(stderr, "\r%*s\r", kWidth + 24, "");
}

void ProgressBar::show(double share)
{
    const int percent = static_cast<int>(share * 100.0);
    if (!isShown || percent == lastPercent)
        return;
    lastPercent = percent;
    const auto filled = static_cast<std::size_t>(share * kWidth);
    const std::string bar = std::string(filled, '=') + std::string(kWidth - filled, ' ');
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::fprintf(stderr, "\r[%s] %3d %%  %.0f s ", bar.c_str(), percent, seconds);
    std::fflush(stderr);
}
