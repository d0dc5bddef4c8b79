#pragma once

#include "decodepool.h"

#include "base/cancelflag.h"

#include <xrv60/plkerror.h>

#include <atomic>
#include <exception>
#include <new>

namespace xrv {

/// Calls \a work, which gives a PLK::CError, for 0 to count - 1 on all cores. The first error ends it and is the
/// result, as is a raised \a cancel and what \a work throws.
template <typename Work> PLK::CError runAll(std::size_t count, const CancelFlag &cancel, Work work)
{
    std::mutex mutex; // guards firstError
    PLK::CError firstError;
    // Made before there is no memory for it: nothing may be thrown from a thread.
    PLK::CError noMemory(PLK_ERR_OUT_OF_MEMORY, "There is not enough memory to decode the image.");
    std::atomic<bool> hasRunOut{false};
    DecodePool::instance().run(count, [&](std::size_t i) {
        PLK::CError error;
        try {
            error = cancel.isRaised() ? PLK::CError(PLK_ERR_CANCELLED, "The read was cancelled.") : work(i);
        } catch (const std::exception &) {
            hasRunOut = true; // nothing else is thrown
            return false;
        }
        if (error.IsSuccess())
            return true;
        std::lock_guard<std::mutex> lock(mutex);
        if (firstError.IsSuccess())
            firstError = std::move(error);
        return false;
    });
    return hasRunOut ? noMemory : firstError;
}

} // namespace xrv
