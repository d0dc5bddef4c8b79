#pragma once

#include "view/viewengine.h"

#include <xrv60/plkerror.h>

#include <cstddef>
#include <initializer_list>

namespace xrv {

/// What PLK::CView::SetView() is called with.
struct ViewArguments
{
    static constexpr int kMaxBands = 4;

    int bandCount = 0;
    const int *bands = nullptr;
    int width = 0, height = 0;
    EdgeRect worldRect;

    /// PLK_ERR_INVALID_ARGUMENT when these are no view of a file with \a fileBands bands.
    PLK::CError check(std::size_t fileBands) const;
};

bool areFinite(std::initializer_list<double> numbers);
/// All edges finite, and an area between them.
bool isArea(const EdgeRect &rect);

} // namespace xrv
