#include "opjpeer.h"

#include <unistd.h>

#include <algorithm>

namespace {

/// Cells per pixel may fall short of the window's by this factor, as they may for GDAL.
constexpr double kOversampling = 1.2;

int reductionFor(const Window &window, int levels)
{
    const double cellsPerPixel = std::min(static_cast<double>(window.width) / window.pixelsAcross,
                                          static_cast<double>(window.height) / window.pixelsDown);
    int reduction = 0;
    while (reduction + 1 < levels && static_cast<double>(2 << reduction) < cellsPerPixel * kOversampling)
        ++reduction;
    return reduction;
}

std::string temporaryFile(const char *suffix)
{
    const char *const folder = ::access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp";
    return std::string(folder) + "/viewbench-" + std::to_string(::getpid()) + suffix;
}

} // namespace

ChildResult runOpjDecompress(const std::string &path, const Window &window, int levels)
{
    const std::string output = temporaryFile(".ppm");
    const auto text = [](int number) { return std::to_string(std::max(number, 0)); };
    const std::string area = text(window.x) + ',' + text(window.y) + ',' + text(window.x + window.width) + ',' +
                             text(window.y + window.height);
    const ChildResult result = runProgram({"opj_decompress", "-i", path, "-o", output, "-d", area, "-r",
                                           text(reductionFor(window, levels)), "-threads", "2"});
    ::unlink(output.c_str());
    return result;
}
