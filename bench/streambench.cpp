// Measures what views of large images ask of a web server, and how soon they are there over a slow link: this SDK and
// GDAL side by side, with an nginx of its own.
//
// usage: streambench FOLDER
//
// FOLDER holds s2_plt.jp2, s2_tlm.jp2, rgb_tiled.jp2 and rgb_single.jp2, or other images named after it. Prints
// Markdown.

#include "child.h"
#include "gdalpeer.h"
#include "scenarios.h"
#include "slowlink.h"
#include "viewpeer.h"
#include "webserver.h"

#include <xrv60/plkconfig.h>
#include <xrv60/plkfile.h>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <stdexcept>

namespace {

constexpr int kRoundTrip = 50;     // milliseconds
constexpr double kMegabits = 20.0; // per second

struct NamedWindow
{
    const char *name;
    Window window;
};

/// Where the stream cache of a measurement lies; empty again for every cold one.
class CacheFolder
{
public:
    CacheFolder()
        : path(std::filesystem::temp_directory_path() / ("streambench-cache-" + std::to_string(::getpid())))
    {
        clear();
    }
    ~CacheFolder() { std::filesystem::remove_all(path); }
    void clear() const
    {
        std::filesystem::remove_all(path);
        std::filesystem::create_directories(path);
    }
    std::string name() const { return path.string(); }

private:
    const std::filesystem::path path;
};

PLK::SDK::CConfig &config()
{
    return PLK::SDK::CFileBase::sFilesHelper().Get()->Config();
}

void useCache(const CacheFolder &cache)
{
    config().SetXrvpCacheEnabled(true);
    config().SetXrvpCacheLocation(cache.name().c_str());
}

std::string streamAddress(int port, const std::string &image)
{
    return "xrvp://127.0.0.1:" + std::to_string(port) + "/" + image;
}

std::string gdalAddress(int port, const std::string &image)
{
    return "/vsicurl/http://127.0.0.1:" + std::to_string(port) + "/" + image;
}

/// All of the image, and windows around its middle.
std::vector<NamedWindow> windowsOf(int width, int height)
{
    const auto middle = [&](int across, int down, int cellsPerPixel) {
        const int w = across * cellsPerPixel, h = down * cellsPerPixel;
        return Window{(width - w) / 2, (height - h) / 2, w, h, across, down};
    };
    return {{"whole scene, 687 × 687", {0, 0, width, height, 687, 687}},
            {"1:1 window, 500 × 500", middle(500, 500, 1)},
            {"1:4 window, 1024 × 768", middle(1024, 768, 4)}};
}

/// Milliseconds from open to the last line.
ChildResult viewStream(const std::string &address, const Window &window, const CacheFolder &cache)
{
    return inChild([&] {
        ViewPeer peer;
        useCache(cache);
        return std::vector<double>{millisecondsOf([&] {
            peer.open(address);
            peer.show(window);
        })};
    });
}

/// What a person does: the whole scene, then closer and across it, then to full resolution and on. Number of views.
ChildResult viewSession(const std::string &address, const Window &size, const CacheFolder &cache)
{
    return inChild([&] {
        std::vector<Window> views{{0, 0, size.width, size.height, 687, 687}};
        for (const Walk &walk : walks(size.width, size.height)) {
            const bool isFar = walk.windows.front().width > kPictureWidth;
            const auto end = walk.windows.begin() + (isFar ? 10 : 20);
            views.insert(isFar ? views.begin() + 1 : views.end(), walk.windows.begin(), end);
        }
        ViewPeer peer;
        useCache(cache);
        peer.open(address);
        for (const Window &view : views)
            peer.show(view);
        return std::vector<double>{double(views.size())};
    });
}

/// Does the picture of the stream equal that of the file? One number, 1 or 0.
ChildResult comparePictures(const std::string &address, const std::string &file, const Window &window,
                            const CacheFolder &cache)
{
    return inChild([&] {
        ViewPeer local, stream;
        useCache(cache);
        local.open(file);
        local.show(window);
        stream.open(address);
        stream.show(window);
        return std::vector<double>{local.picture() == stream.picture() ? 1.0 : 0.0};
    });
}

ChildResult viewWithGdal(const std::string &address, const Window &window)
{
    return inChild([&] {
        GdalPeer peer;
        return std::vector<double>{millisecondsOf([&] {
            peer.open(address);
            peer.show(window);
        })};
    });
}

void check(const ChildResult &result)
{
    if (!result.error.empty())
        throw std::runtime_error(result.error);
}

Window sizeOf(const std::string &file)
{
    const ChildResult size = inChild([&] {
        PLK::CView view;
        view.Open(PLK::CString(file.c_str()), false, false);
        const PLKFileInfo *info = view.GetFileInfo();
        if (!info)
            throw std::runtime_error(file + " cannot be opened.");
        return std::vector<double>{double(info->nSizeX), double(info->nSizeY)};
    });
    check(size);
    return {0, 0, static_cast<int>(size.numbers[0]), static_cast<int>(size.numbers[1]), 0, 0};
}

std::string traffic(const Traffic &seen)
{
    char text[64];
    std::snprintf(text, sizeof text, "%d | %.2f", seen.requests, double(seen.bytes) / 1e6);
    return text;
}

std::string seconds(double milliseconds)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.2f", milliseconds / 1e3);
    return text;
}

/// One row of the table of requests and bytes.
void measureTraffic(WebServer &server, const std::string &folder, const std::string &image, const NamedWindow &view,
                    const CacheFolder &cache)
{
    const std::string address = streamAddress(server.port(), image);
    server.takeTraffic();
    cache.clear();
    check(viewStream(address, view.window, cache));
    const Traffic cold = server.takeTraffic();
    check(viewStream(address, view.window, cache));
    const Traffic warm = server.takeTraffic();
    const ChildResult same = comparePictures(address, folder + "/" + image, view.window, cache);
    check(same);
    server.takeTraffic();
    // GDAL does not read every format.
    const bool isWithGdal = viewWithGdal(gdalAddress(server.port(), image), view.window).error.empty();
    const std::string gdal = isWithGdal ? traffic(server.takeTraffic()) : " | ";
    std::printf("| %s | %s | %s | %s | %s | %s |\n", image.c_str(), view.name, traffic(cold).c_str(),
                traffic(warm).c_str(), same.numbers[0] == 1.0 ? "yes" : "NO", gdal.c_str());
    std::fflush(stdout);
}

/// One row of the table of sessions.
void measureSession(WebServer &server, const std::string &image, const Window &size, const CacheFolder &cache)
{
    cache.clear();
    server.takeTraffic();
    const ChildResult session = viewSession(streamAddress(server.port(), image), size, cache);
    check(session);
    std::printf("| %s | %.0f | %s |\n", image.c_str(), session.numbers[0], traffic(server.takeTraffic()).c_str());
    std::fflush(stdout);
}

/// One row of the table of times over a slow link.
void measureLink(const WebServer &server, const std::string &image, const NamedWindow &view, const CacheFolder &cache)
{
    const SlowLink link(server.port(), kRoundTrip, kMegabits);
    const std::string address = streamAddress(link.port(), image);
    cache.clear();
    const ChildResult cold = viewStream(address, view.window, cache);
    check(cold);
    const ChildResult warm = viewStream(address, view.window, cache);
    check(warm);
    const ChildResult gdal = viewWithGdal(gdalAddress(link.port(), image), view.window);
    std::printf("| %s | %s | %s | %s | %s |\n", image.c_str(), view.name, seconds(cold.numbers[0]).c_str(),
                seconds(warm.numbers[0]).c_str(), gdal.error.empty() ? seconds(gdal.numbers[0]).c_str() : "");
    std::fflush(stdout);
}

int run(const std::string &folder, const std::vector<std::string> &images)
{
    WebServer server(folder);
    const CacheFolder cache;
    std::printf("| image | view | cold: requests | MB | again: requests | MB | same picture as the file's | "
                "GDAL: requests | MB |\n| --- | --- | --: | --: | --: | --: | --- | --: | --: |\n");
    for (const std::string &image : images) {
        const Window size = sizeOf(folder + "/" + image);
        for (const NamedWindow &view : windowsOf(size.width, size.height))
            measureTraffic(server, folder, image, view, cache);
    }
    std::printf("\nSessions: the whole scene, ten views at 1:4 and twenty at 1:1, each %d × %d but the first:\n\n"
                "| image | views | requests | MB |\n| --- | --: | --: | --: |\n",
                kPictureWidth, kPictureHeight);
    for (const std::string &image : images)
        measureSession(server, image, sizeOf(folder + "/" + image), cache);
    std::printf("\nWith a round trip of %d ms and %.0f Mbit/s, seconds from open to the last line:\n\n"
                "| image | view | cold | again | GDAL |\n| --- | --- | --: | --: | --: |\n",
                kRoundTrip, kMegabits);
    for (const std::string &image : images) {
        const Window size = sizeOf(folder + "/" + image);
        for (const NamedWindow &view : windowsOf(size.width, size.height))
            measureLink(server, image, view, cache);
    }
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc < 2) {
        std::fprintf(stderr, "usage: streambench FOLDER [IMAGE ...]\n");
        return 2;
    }
    std::vector<std::string> images(argv + 2, argv + argc);
    if (images.empty())
        images = {"s2_plt.jp2", "s2_tlm.jp2", "rgb_tiled.jp2", "rgb_single.jp2"};
    try {
        return run(argv[1], images);
    } catch (const std::exception &problem) {
        std::fprintf(stderr, "%s\n", problem.what());
        return 1;
    }
}
