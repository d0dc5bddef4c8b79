// Measures how soon views of large images are there: this SDK, GDAL and OpenJPEG's own tool side by side in one run.
//
// usage: viewbench FOLDER [REPETITIONS]
//
// FOLDER holds s2_plt.jp2, s2_tlm.jp2, rgb_tiled.jp2 and rgb_single.jp2. Prints Markdown.

#include "child.h"
#include "gdalpeer.h"
#include "opjpeer.h"
#include "progressive.h"
#include "report.h"
#include "scenarios.h"
#include "viewpeer.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <numeric>

namespace {

constexpr std::array<const char *, 4> kImages{"s2_plt.jp2", "s2_tlm.jp2", "rgb_tiled.jp2", "rgb_single.jp2"};

struct Image
{
    std::string name;
    std::string path;
    int width = 0, height = 0, levels = 0;
    std::uint64_t cacheBudget = 0;
};

/// Reads the file once, so that every peer finds it in the system's cache.
void warmUp(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    std::vector<char> buffer(1 << 20);
    while (file.read(buffer.data(), static_cast<std::streamsize>(buffer.size()))) {
    }
}

/// Also the budget of the tile cache as it is by itself.
bool describe(Image *image)
{
    const ChildResult result = inChild([image] {
        PLK::CView view;
        view.Open(PLK::CString(image->path.c_str()), false, false);
        const PLKFileInfo *info = view.GetFileInfo();
        const double budget = static_cast<double>(PLK::SDK::CFileBase::sFilesHelper().Get()->Config().GetCacheMaxmem());
        return info ? std::vector<double>{static_cast<double>(info->nSizeX), static_cast<double>(info->nSizeY),
                                          static_cast<double>(view.MetadataJp2().Levels()), budget}
                    : std::vector<double>();
    });
    if (result.numbers.size() != 4)
        return false;
    image->width = static_cast<int>(result.numbers[0]);
    image->height = static_cast<int>(result.numbers[1]);
    image->levels = static_cast<int>(result.numbers[2]);
    image->cacheBudget = static_cast<std::uint64_t>(result.numbers[3]);
    return true;
}

/// From open to the finished picture.
template <typename AnyPeer> ChildResult timeSingle(const Image &image, const Window &window)
{
    return inChild([&] {
        AnyPeer peer;
        return std::vector<double>{millisecondsOf([&] {
            peer.open(image.path);
            peer.show(window);
        })};
    });
}

/// Total and slowest of the pans, without the picture where they start; and the total from open on with that picture,
/// as what is decoded ahead there makes the pans cheap.
template <typename AnyPeer> ChildResult timeWalk(const Image &image, const Walk &walk)
{
    return inChild([&] {
        AnyPeer peer;
        const double start = millisecondsOf([&] {
            peer.open(image.path);
            peer.show(walk.windows.front());
        });
        std::vector<double> times;
        for (std::size_t i = 1; i < walk.windows.size(); ++i)
            times.push_back(millisecondsOf([&] { peer.show(walk.windows[i]); }));
        const double total = std::accumulate(times.begin(), times.end(), 0.0);
        return std::vector<double>{total, *std::max_element(times.begin(), times.end()), start + total};
    });
}

std::vector<Comparison> compareSingles(const Image &image, int repetitions)
{
    std::vector<Comparison> rows;
    for (const SingleView &single : singleViews(image.width, image.height)) {
        Comparison row{image.name, single.name, {}, {}, {}};
        for (int i = 0; i < repetitions; ++i) {
            row.ours.add(timeSingle<ViewPeer>(image, single.window));
            row.gdal.add(timeSingle<GdalPeer>(image, single.window));
            row.opj.add(runOpjDecompress(image.path, single.window, image.levels));
        }
        rows.push_back(row);
    }
    return rows;
}

std::vector<Comparison> compareWalks(const Image &image, int repetitions)
{
    std::vector<Comparison> rows;
    for (const Walk &walk : walks(image.width, image.height)) {
        const std::string name = std::to_string(kPans) + " pans at " + walk.name;
        std::array<Comparison, 3> kinds{{{image.name, name + ", total", {}, {}, {}},
                                         {image.name, name + ", slowest", {}, {}, {}},
                                         {image.name, name + ", with open and first view", {}, {}, {}}}};
        for (int i = 0; i < repetitions; ++i) {
            const ChildResult ours = timeWalk<ViewPeer>(image, walk), gdal = timeWalk<GdalPeer>(image, walk);
            for (std::size_t kind = 0; kind < kinds.size(); ++kind) {
                kinds[kind].ours.add(ours, kind);
                kinds[kind].gdal.add(gdal, kind);
            }
        }
        rows.insert(rows.end(), kinds.begin(), kinds.end());
    }
    return rows;
}

/// First pass cold, last pass, first pass of the same window again.
ChildResult timePasses(const Image &image, const Window &window)
{
    return inChild([&] {
        ProgressiveProbe probe(image.path);
        const double cold = probe.firstPass(window);
        const double last = probe.lastPass();
        return std::vector<double>{cold, last, probe.firstPass(window)};
    });
}

/// Slowest first pass of the pans.
ChildResult timeProgressiveWalk(const Image &image, const Walk &walk, bool untilLastPass)
{
    return inChild([&] {
        ProgressiveProbe probe(image.path);
        double slowest = 0.0;
        for (const Window &window : walk.windows) {
            slowest = std::max(slowest, probe.firstPass(window));
            if (untilLastPass)
                probe.lastPass();
        }
        return std::vector<double>{slowest};
    });
}

std::vector<ProgressiveRow> measureProgressive(const Image &image, int repetitions)
{
    std::vector<ProgressiveRow> rows;
    const std::vector<Walk> allWalks = walks(image.width, image.height);
    const std::vector<SingleView> singles = singleViews(image.width, image.height);
    for (std::size_t i = 0; i < singles.size(); ++i) {
        ProgressiveRow row{image.name, singles[i].name, {}, {}, {}, {}, {}};
        for (int repetition = 0; repetition < repetitions; ++repetition) {
            const ChildResult passes = timePasses(image, singles[i].window);
            row.firstCold.add(passes, 0);
            row.last.add(passes, 1);
            row.firstWarm.add(passes, 2);
            if (i < allWalks.size()) {
                row.resting.add(timeProgressiveWalk(image, allWalks[i], true));
                row.dragging.add(timeProgressiveWalk(image, allWalks[i], false));
            }
        }
        rows.push_back(row);
    }
    return rows;
}

/// Largest and mean difference of our 1:1 picture from GDAL's, in steps of 8 bits: both must have done the same work.
ChildResult pictureDifference(const Image &image)
{
    return inChild([&] {
        const Window window = singleViews(image.width, image.height).front().window;
        ViewPeer ours;
        ours.open(image.path);
        ours.show(window);
        GdalPeer gdal;
        gdal.open(image.path);
        gdal.show(window);
        const auto bands = static_cast<std::size_t>(gdal.bands()), cellSize = static_cast<std::size_t>(gdal.cellSize());
        const std::size_t pixels = ours.picture().size() / 4;
        double largest = 0.0, sum = 0.0;
        for (std::size_t pixel = 0; pixel < pixels; ++pixel) {
            for (std::size_t band = 0; band < bands; ++band) {
                // The highest byte of a little-endian cell is what a picture of 8 bits shows of it.
                const int theirs = gdal.picture()[(pixel * bands + band) * cellSize + cellSize - 1];
                const double difference = std::abs(ours.picture()[pixel * 4 + 2 - band] - theirs);
                largest = std::max(largest, difference);
                sum += difference;
            }
        }
        return std::vector<double>{largest, sum / static_cast<double>(pixels * bands)};
    });
}

void printAgreement(const Image &image)
{
    const ChildResult result = pictureDifference(image);
    if (result.error.empty())
        std::printf("%s: our 1:1 picture differs from GDAL's by at most %.0f and on average by %.4f of 255.\n\n",
                    image.name.c_str(), result.numbers[0], result.numbers[1]);
    else
        std::printf("%s: our 1:1 picture cannot be compared: %s\n\n", image.name.c_str(), result.error.c_str());
}

template <typename Row> void append(std::vector<Row> *rows, const std::vector<Row> &more)
{
    rows->insert(rows->end(), more.begin(), more.end());
}

} // namespace

int main(int argc, char *argv[])
{
    const int repetitions = argc > 2 ? std::atoi(argv[2]) : 5;
    if (argc < 2 || argc > 3 || repetitions < 1) {
        std::fputs("usage: viewbench FOLDER [REPETITIONS]\n", stderr);
        return 2;
    }
    std::vector<Comparison> rows;
    std::vector<ProgressiveRow> progressive;
    std::uint64_t budget = 0;
    for (const char *name : kImages) {
        Image image{name, std::string(argv[1]) + '/' + name};
        warmUp(image.path);
        if (!describe(&image)) {
            std::fprintf(stderr, "viewbench: %s cannot be opened\n", image.path.c_str());
            return 1;
        }
        budget = image.cacheBudget;
        std::fprintf(stderr, "%s: %d x %d\n", name, image.width, image.height);
        printAgreement(image);
        append(&rows, compareSingles(image, repetitions));
        append(&rows, compareWalks(image, repetitions));
        append(&progressive, measureProgressive(image, repetitions));
    }
    std::printf("Side by side, medians of %d repetitions:\n\n", repetitions);
    printComparisons(rows);
    std::printf("\nProgressive views, milliseconds from SetView, worst of %d repetitions (last pass: median):\n\n",
                repetitions);
    printProgressive(progressive);
    std::printf("\n");
    printMemory(rows, progressive, budget);
    return 0;
}
