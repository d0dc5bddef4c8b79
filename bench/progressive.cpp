#include "progressive.h"

#include "viewpeer.h"

#include <xrv60/plkinit.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <stdexcept>

namespace {

using Clock = std::chrono::steady_clock;
constexpr auto kPatience = std::chrono::seconds(60);

double milliseconds(Clock::duration duration)
{
    return std::chrono::duration<double, std::milli>(duration).count();
}

} // namespace

/// Reads every pass as a renderer would, and keeps when it was there.
class ProgressiveProbe::View : public PLK::CView
{
public:
    ~View() override { Close(true); }
    PLKReadStatus RefreshPass(PLKSetViewInfo *info) override;
    void begin();
    double waitForFirst();
    double waitForLast();
    bool isComplete();

    std::vector<int> bands;

private:
    bool readPass(const PLKSetViewInfo &info);

    std::mutex mutex; ///< guards all below
    std::condition_variable changed;
    std::uint64_t generation = 0;     ///< of the pass that was read last
    std::uint64_t lastGeneration = 0; ///< of the window before the one that is waited for
    Clock::time_point start, firstRead, lastRead;
    bool isFinished = false;
    bool isEmpty = false;
    std::vector<std::uint8_t> pixels; ///< of the SDK's thread alone
};

bool ProgressiveProbe::View::readPass(const PLKSetViewInfo &info)
{
    const std::size_t lineBytes = std::size_t{info.nSizeX} * 4;
    pixels.resize(lineBytes * info.nSizeY);
    for (std::size_t place = 0; place < pixels.size(); place += lineBytes)
        if (ReadLineBGRA(pixels.data() + place) != PLK_READ_SUCCESS)
            return false;
    return true;
}

PLKReadStatus ProgressiveProbe::View::RefreshPass(PLKSetViewInfo *info)
{
    if (!readPass(*info))
        return PLK_READ_CANCELLED;
    const auto now = Clock::now();
    const bool isBlank = std::all_of(pixels.begin(), pixels.end(), [](std::uint8_t byte) { return byte == 0; });
    const std::lock_guard<std::mutex> lock(mutex);
    if (generation != info->nGeneration) {
        generation = info->nGeneration;
        firstRead = now;
        isEmpty = isBlank;
    }
    lastRead = now;
    isFinished = info->nBlocksAvailable >= info->nBlocksInView;
    changed.notify_all();
    return PLK_READ_SUCCESS;
}

void ProgressiveProbe::View::begin()
{
    const std::lock_guard<std::mutex> lock(mutex);
    lastGeneration = std::max(generation, GetSetViewInfo().nGeneration);
    start = Clock::now();
}

double ProgressiveProbe::View::waitForFirst()
{
    std::unique_lock<std::mutex> lock(mutex);
    if (!changed.wait_for(lock, kPatience, [this] { return generation > lastGeneration; }))
        throw std::runtime_error("No pass came.");
    if (isEmpty)
        throw std::runtime_error("The first pass showed nothing.");
    return milliseconds(firstRead - start);
}

double ProgressiveProbe::View::waitForLast()
{
    std::unique_lock<std::mutex> lock(mutex);
    if (!changed.wait_for(lock, kPatience, [this] { return generation > lastGeneration && isFinished; }))
        throw std::runtime_error("The last pass did not come.");
    return milliseconds(lastRead - start);
}

bool ProgressiveProbe::View::isComplete()
{
    const std::lock_guard<std::mutex> lock(mutex);
    return generation > lastGeneration && isFinished;
}

ProgressiveProbe::ProgressiveProbe(const std::string &path)
    : view(std::make_unique<View>())
{
    PLKInit();
    const PLK::CError error = view->Open(PLK::CString(path.c_str()), true, false);
    if (error)
        throw std::runtime_error(error.GetErrorMessage());
    view->bands = pictureBands(*view);
}

ProgressiveProbe::~ProgressiveProbe() = default;

void ProgressiveProbe::set(const Window &window)
{
    view->begin();
    setWindow(view.get(), view->bands, window);
}

bool ProgressiveProbe::isComplete() const
{
    return view->isComplete();
}

double ProgressiveProbe::firstPass(const Window &window)
{
    set(window);
    return view->waitForFirst();
}

double ProgressiveProbe::lastPass()
{
    return view->waitForLast();
}
