#pragma once

#include "viewarguments.h"

#include "view/bandtables.h"
#include "view/viewengine.h"

#include <xrv60/plkview.h>

#include <atomic>
#include <memory>
#include <mutex>

namespace PLK {

/// What a view consists of, and the way from the worker's passes to the virtual callback.
class CView::Private : public xrv::PassListener
{
public:
    explicit Private(CView *owner)
        : owner(owner)
    {
    }

    PLKReadStatus passReady(PLKSetViewInfo *info) override { return owner->RefreshPass(info); }

    std::shared_ptr<xrv::ViewEngine> engine() const
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return openEngine;
    }
    void setEngine(std::shared_ptr<xrv::ViewEngine> engine)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        openEngine.swap(engine);
    }
    void setError(const CError &error)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        lastError = error;
    }
    CError error() const
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return lastError;
    }

    PLKReadStatus readLine(const xrv::LineTarget &target);
    /// The view that \a arguments, which were checked, mean now: with the view's parameters, its transforms and the
    /// configuration. PLK_ERR_INVALID_ARGUMENT where the file's cells cannot be counted that far.
    CError makeRequest(const xrv::ViewArguments &arguments, xrv::ViewRequest *request);

    CView *const owner;
    xrv::BandTables tables;           ///< of the thread that drives the view
    std::atomic<bool> closing{false}; ///< see IsClosePending()

private:
    void fillByteMaps(xrv::ViewRequest *request);
    void fillSettings(xrv::ViewRequest *request) const;

    mutable std::mutex mutex; ///< guards what follows: lines are read while others open and close
    std::shared_ptr<xrv::ViewEngine> openEngine;
    CError lastError; ///< of a read while nothing was open, or that ran out of memory
};

inline CError noMemoryForView()
{
    return {PLK_ERR_OUT_OF_MEMORY, "There is not enough memory for this view."};
}

} // namespace PLK
