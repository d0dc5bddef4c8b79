#pragma once

#include <xrv60/plkview.h>

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <vector>

/// What is shown: pixels, and the rectangle of world coordinates.
struct Window
{
    int width, height;
    double x1, y1, x2, y2;
};

inline PLK::CError setView(PLK::CView &view, const Window &window, const std::vector<int> &bands = {0})
{
    return view.SetView(static_cast<int>(bands.size()), bands.data(), window.width, window.height, window.x1, window.y1,
                        window.x2, window.y2);
}

/// All of the file, one pixel per cell.
inline Window wholeOf(const PLK::CView &view)
{
    const PLKFileInfo &info = *view.GetFileInfo();
    Window window{static_cast<int>(info.nSizeX), static_cast<int>(info.nSizeY), 0, 0, 0, 0};
    view.ConvertDatasetToWorld(0, 0, &window.x1, &window.y1);
    view.ConvertDatasetToWorld(window.width, window.height, &window.x2, &window.y2);
    return window;
}

/// All lines, four bytes per pixel; empty when one cannot be had.
inline std::vector<std::uint32_t> readPicture(PLK::CView &view, const Window &window,
                                              const std::vector<int> &bands = {0})
{
    if (setView(view, window, bands))
        return {};
    std::vector<std::uint32_t> pixels(std::size_t(window.width) * std::size_t(window.height));
    for (int y = 0; y < window.height; ++y)
        if (view.ReadLineBGRA(pixels.data() + std::ptrdiff_t(y) * window.width) != PLK_READ_SUCCESS)
            return {};
    return pixels;
}

/// All cells of a band; empty when a line cannot be had.
inline std::vector<std::int32_t> readCells(PLK::CView &view, int band, const Window &window)
{
    if (setView(view, window, {band}))
        return {};
    std::vector<std::int32_t> cells(std::size_t(window.width) * std::size_t(window.height));
    for (int y = 0; y < window.height; ++y) {
        void *const line = cells.data() + std::ptrdiff_t(y) * window.width;
        if (view.ReadLineBIL(PLKCT_INT32, &line) != PLK_READ_SUCCESS)
            return {};
    }
    return cells;
}

inline std::vector<std::int32_t> readCells(PLK::CView &view, int band)
{
    return readCells(view, band, wholeOf(view));
}

/// Cells [x0, x1) x [y0, y1) of one band at full resolution.
inline std::vector<std::int32_t> readCells(PLK::CView &view, int band, int x0, int y0, int x1, int y1)
{
    Window window{x1 - x0, y1 - y0, 0, 0, 0, 0};
    view.ConvertDatasetToWorld(x0, y0, &window.x1, &window.y1);
    view.ConvertDatasetToWorld(x1, y1, &window.x2, &window.y2);
    return readCells(view, band, window);
}

/// Reads every pass and keeps the last one that was whole.
class ProgressiveView : public PLK::CView
{
public:
    ~ProgressiveView() override { Close(true); }

    PLKReadStatus RefreshPass(PLKSetViewInfo *info) override
    {
        if (IsReadCancelPending() || IsClosePending())
            return PLK_READ_CANCELLED;
        std::vector<std::uint32_t> pixels(std::size_t(info->nSizeX) * info->nSizeY);
        PLKReadStatus status = PLK_READ_SUCCESS;
        for (std::size_t y = 0; y < info->nSizeY && status == PLK_READ_SUCCESS; ++y)
            status = ReadLineBGRA(pixels.data() + y * info->nSizeX);
        const std::lock_guard<std::mutex> lock(mutex);
        ++passCount;
        hasFailed = hasFailed || status == PLK_READ_FAILED;
        if (status == PLK_READ_SUCCESS) {
            lastPicture.swap(pixels);
            generation = info->nGeneration;
            percent = GetPercentComplete();
        }
        changed.notify_all();
        return status == PLK_READ_CANCELLED ? status : PLK_READ_SUCCESS;
    }
    /// False when the last pass of the view that was set last does not come within 30 seconds.
    bool waitForLast()
    {
        const std::uint64_t wanted = GetSetViewInfo().nGeneration;
        std::unique_lock<std::mutex> lock(mutex);
        return changed.wait_for(lock, std::chrono::seconds(30), [&] { return generation == wanted && percent == 100; });
    }
    bool failed() const
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return hasFailed;
    }
    int passes() const
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return passCount;
    }
    std::vector<std::uint32_t> picture() const
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return lastPicture;
    }

private:
    mutable std::mutex mutex; ///< guards the members below
    std::condition_variable changed;
    std::vector<std::uint32_t> lastPicture;
    std::uint64_t generation = 0;
    int percent = 0;
    int passCount = 0;
    bool hasFailed = false;
};
