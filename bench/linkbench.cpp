// Measures what a person waits for over links of several kinds: the first and the complete picture of a scene, pans,
// and dragging, where a new view comes before the one before it is complete; with an nginx of its own.
//
// usage: linkbench [--waits] [--drags] [--http2] FOLDER [IMAGE ...]
//
// Without options all tables are made. FOLDER holds s2_plt.jp2 and s2_tlm.jp2, or other images named after it. Prints
// Markdown.

#include "child.h"
#include "progressive.h"
#include "scenarios.h"
#include "slowlink.h"
#include "viewpeer.h"
#include "webserver.h"

#include <xrv60/plkconfig.h>
#include <xrv60/plkfile.h>
#include <xrv60/plkinit.h>

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <set>
#include <stdexcept>
#include <thread>

namespace {

namespace fs = std::filesystem;

struct Link
{
    int roundTrip; ///< milliseconds
    double megabits;
};

constexpr int kOverview = 687; // pixels a side
constexpr int kDragStep = 64;  // pixels

/// Where the stream cache of a measurement lies; empty at its beginning.
class CacheFolder
{
public:
    CacheFolder()
        : path(fs::temp_directory_path() / ("linkbench-cache-" + std::to_string(::getpid())))
    {
        fs::remove_all(path);
        fs::create_directories(path);
    }
    ~CacheFolder() { fs::remove_all(path); }
    CacheFolder(const CacheFolder &) = delete;
    CacheFolder &operator=(const CacheFolder &) = delete;

    void use() const
    {
        PLK::SDK::CConfig &config = PLK::SDK::CFileBase::sFilesHelper().Get()->Config();
        config.SetXrvpCacheEnabled(true);
        config.SetXrvpCacheLocation(path.string().c_str());
    }
    std::uint64_t dataBytes() const
    {
        std::uint64_t sum = 0;
        for (const fs::directory_entry &entry : fs::directory_iterator(path))
            sum += entry.path().extension() == ".data" ? entry.file_size() : 0;
        return sum;
    }

private:
    const fs::path path;
};

std::vector<double> measured(const std::function<std::vector<double>()> &work)
{
    const ChildResult result = inChild(work);
    if (!result.error.empty())
        throw std::runtime_error(result.error);
    return result.numbers;
}

Window sizeOf(const std::string &file)
{
    const std::vector<double> size = measured([&] {
        PLK::CView view;
        view.Open(PLK::CString(file.c_str()), false, false);
        const PLKFileInfo *info = view.GetFileInfo();
        if (!info)
            throw std::runtime_error(file + " cannot be opened.");
        return std::vector<double>{double(info->nSizeX), double(info->nSizeY)};
    });
    return {0, 0, static_cast<int>(size[0]), static_cast<int>(size[1]), kOverview, kOverview};
}

void printRow(const std::string &image, const Link &link, const std::vector<double> &numbers, const char *format)
{
    std::printf("| %s | %d ms, %.0f Mbit/s |", image.c_str(), link.roundTrip, link.megabits);
    for (const double number : numbers) {
        std::printf(" ");
        std::printf(format, number);
        std::printf(" |");
    }
    std::printf("\n");
    std::fflush(stdout);
}

/// Seconds: from opening to the first and the last pass of the whole scene, for all pans at full resolution one after
/// the other, and to the first pass of the slowest of them.
std::vector<double> waits(const std::string &address, const Window &scene)
{
    const CacheFolder cache;
    return measured([&] {
        cache.use();
        std::unique_ptr<ProgressiveProbe> probe;
        double first = 0, pans = 0, slowest = 0;
        const double opening = millisecondsOf([&] { probe = std::make_unique<ProgressiveProbe>(address); });
        first = opening + probe->firstPass(scene);
        const double last = opening + probe->lastPass();
        const std::vector<Window> windows = walks(scene.width, scene.height).front().windows;
        for (const Window &window : windows) {
            const double firstOfPan = probe->firstPass(window);
            const double lastOfPan = probe->lastPass();
            if (&window == &windows.front()) // where they start
                continue;
            slowest = std::max(slowest, firstOfPan);
            pans += lastOfPan;
        }
        return std::vector<double>{first / 1e3, last / 1e3, pans / 1e3, slowest / 1e3};
    });
}

struct Drag
{
    int steps;
    std::chrono::milliseconds pause; ///< from one to the next
};

/// Views that became complete while a window at full resolution was dragged, step by step.
double dragOver(const std::string &address, const Window &scene, const Drag &drag)
{
    ProgressiveProbe probe(address);
    Window window{scene.width / 3, scene.height / 3, kPictureWidth, kPictureHeight, kPictureWidth, kPictureHeight};
    double complete = 0;
    for (int step = 0; step < drag.steps; ++step, window.x += kDragStep) {
        const auto next = std::chrono::steady_clock::now() + drag.pause;
        probe.set(window);
        std::this_thread::sleep_until(next);
        complete += probe.isComplete() ? 1 : 0;
    }
    return complete;
}

std::vector<double> dragging(const WebServer &server, const std::string &image, const Window &scene, const Link &link,
                             const Drag &drag)
{
    const CacheFolder cache;
    const SlowLink slow(server.port(), link.roundTrip, link.megabits);
    std::vector<double> result = measured([&] {
        cache.use();
        const std::string address = "xrvp://127.0.0.1:" + std::to_string(slow.port()) + "/" + image;
        const double complete = dragOver(address, scene, drag);
        PLKShutdown(); // as a program does at its end
        return std::vector<double>{complete};
    });
    const double came = double(slow.bytes());
    result.insert(result.end(), {came / 1e6, 100 * double(cache.dataBytes()) / came, double(slow.connections())});
    return result;
}

/// Seconds for the whole scene, its requests, and its connections.
std::vector<double> overHttp2(WebServer &server, const std::string &image, const Window &scene, const Link &link)
{
    const CacheFolder cache;
    const SlowLink slow(server.port(), link.roundTrip, link.megabits);
    server.takeTraffic();
    std::vector<double> result = measured([&] {
        cache.use();
        PLK::SDK::CFileBase::sFilesHelper().Get()->Config().SetXrvpClientCaFile(server.certificateFile().c_str());
        ViewPeer peer;
        return std::vector<double>{millisecondsOf([&] {
                                       peer.open("xrvps://localhost:" + std::to_string(slow.port()) + "/" + image);
                                       peer.show(scene);
                                   }) /
                                   1e3};
    });
    result.insert(result.end(), {double(server.takeTraffic().requests), double(slow.connections())});
    return result;
}

void printWaits(const std::string &folder, const std::vector<std::string> &images)
{
    const WebServer server(folder);
    std::printf("Seconds: first and complete picture of the whole scene, %d × %d; %d pans at 1:1, one after the other; "
                "first pass of the slowest pan\n\n| image | link | first | complete | pans | first of a pan |\n"
                "| --- | --- | --: | --: | --: | --: |\n",
                kOverview, kOverview, kPans);
    for (const std::string &image : images)
        for (const Link &link : {Link{50, 10}, Link{100, 10}, Link{200, 10}, Link{100, 2}}) {
            const SlowLink slow(server.port(), link.roundTrip, link.megabits);
            const std::string address = "xrvp://127.0.0.1:" + std::to_string(slow.port()) + "/" + image;
            printRow(image, link, waits(address, sizeOf(folder + "/" + image)), "%.2f");
        }
}

void printDrags(const std::string &folder, const std::vector<std::string> &images)
{
    const WebServer server(folder);
    for (const Drag &drag : {Drag{12, std::chrono::seconds(2)}, Drag{60, std::chrono::milliseconds(100)}}) {
        std::printf("\nDragging at 1:1, %d steps of %d pixels, one every %.1f seconds\n\n"
                    "| image | link | complete views | MB that came | kept, %% | connections |\n"
                    "| --- | --- | --: | --: | --: | --: |\n",
                    drag.steps, kDragStep, double(drag.pause.count()) / 1e3);
        for (const std::string &image : images)
            for (const Link &link : {Link{100, 2}, Link{100, 10}})
                printRow(image, link, dragging(server, image, sizeOf(folder + "/" + image), link, drag), "%.1f");
    }
}

void printHttp2(const std::string &folder, const std::vector<std::string> &images)
{
    WebServer server(folder, WebServer::Kind::SingleRangesOverHttp2);
    std::printf("\nWhole scene from a server that gives single ranges only, over HTTP/2\n\n"
                "| image | link | seconds | requests | connections |\n| --- | --- | --: | --: | --: |\n");
    for (const std::string &image : images)
        printRow(image, {100, 10}, overHttp2(server, image, sizeOf(folder + "/" + image), {100, 10}), "%.4g");
}

int run(const std::string &folder, const std::vector<std::string> &images, const std::set<std::string> &tables)
{
    const auto isWanted = [&](const char *table) { return tables.empty() || tables.count(table) > 0; };
    if (isWanted("--waits"))
        printWaits(folder, images);
    if (isWanted("--drags"))
        printDrags(folder, images);
    if (isWanted("--http2"))
        printHttp2(folder, images);
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    std::vector<std::string> names(argv + 1, argv + argc);
    const auto firstName = std::find_if(names.begin(), names.end(), [](const auto &name) { return name[0] != '-'; });
    const std::set<std::string> tables(names.begin(), firstName);
    names.erase(names.begin(), firstName);
    if (names.empty()) {
        std::fprintf(stderr, "usage: linkbench [--waits] [--drags] [--http2] FOLDER [IMAGE ...]\n");
        return 2;
    }
    const std::string folder = names.front();
    names.erase(names.begin());
    if (names.empty())
        names = {"s2_tlm.jp2", "s2_plt.jp2"};
    try {
        return run(folder, names, tables);
    } catch (const std::exception &problem) {
        std::fprintf(stderr, "%s\n", problem.what());
        return 1;
    }
}
