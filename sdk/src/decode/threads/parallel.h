#pragma once

#include "decodepool.h"

#include "base/cancelflag.h"

#include <xrv60/plkerror.h>

#include <exception>
#include <new>

namespace xrv {

/// Calls \a work, which gives a PLK::CError, for 0 to count - 1 on all cores. The first error ends it and is the
/// result, as is a raised \a cancel and what \a work throws.
template <typename Work> PLK::CError runAll(std::size_t count, const CancelFlag &cancel, Work work)
{
    std::mutex mutex; // guards firstError
    PLK::CError firstError;
    DecodePool::instance().run(count, [&](std::size_t i) {
        PLK::CError error;
        try {
            error = cancel.isRaised() ? PLK::CError(PLK_ERR_CANCELLED, "The read was cancelled.") : work(i);
        } catch (const std::bad_alloc &) {
            error = PLK::CError(PLK_ERR_OUT_OF_MEMORY, "There is not enough memory to decode the image.");
        } catch (const std::exception &e) {
            error = PLK::CError(PLK_ERR_DECODE, e.what());
        }
        if (error.IsSuccess())
            return true;
        std::lock_guard<std::mutex> lock(mutex);
        if (firstError.IsSuccess())
            firstError = std::move(error);
        return false;
    });
    return firstError;
}

} // namespace xrv
