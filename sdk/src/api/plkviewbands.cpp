#include "plkview_p.h"

#include "refusals.h"

#include "file/openfile.h"
#include "statistics/statistics.h"

#include <new>

namespace PLK {

CError CView::SetTransform(unsigned band, std::unique_ptr<API::CMinMaxTransform> transform)
{
    if (!d->engine())
        return xrv::notOpen();
    if (band >= SharedFile()->bandMap().bands().size() || !transform)
        return xrv::invalidArgument("There is no such band, or no transform for it.");
    if (!xrv::areFinite({transform->GetMin(), transform->GetMax()}))
        return xrv::invalidArgument("The limits of a transform must be finite.");
    try {
        d->tables.setRange(static_cast<int>(band), transform->GetMin(), transform->GetMax());
    } catch (const std::bad_alloc &) {
        return noMemoryForView();
    }
    return {};
}

CError CView::ClearTransforms()
{
    if (!d->engine())
        return xrv::notOpen();
    d->tables.clear();
    return {};
}

CError CView::CalculateMinMaxTransforms(unsigned bandCount, const unsigned *bands,
                                        std::vector<std::unique_ptr<API::CMinMaxTransform>> *transforms, double percent,
                                        unsigned sampling)
{
    if (!d->engine())
        return xrv::notOpen();
    if (transforms == nullptr || (bandCount > 0 && bands == nullptr))
        return xrv::invalidArgument("There are no bands to calculate transforms of, or no place for these.");
    if (!(percent > 0.0 && percent <= 100.0) || sampling < 1 || sampling > 100)
        return xrv::invalidArgument("Transforms are calculated of 1 to 100 per cent of the cells.");
    try {
        xrv::SharedStatistics statistics;
        if (CError error = SharedFile()->statistics().display(&statistics))
            return error;
        std::vector<std::unique_ptr<API::CMinMaxTransform>> found;
        for (unsigned i = 0; i < bandCount; ++i) {
            if (bands[i] >= statistics->nBands)
                return xrv::invalidArgument("Transforms are asked for of a band that the file does not have.");
            const auto [lowest, highest] = xrv::clipRange(statistics->pBandStats[bands[i]], percent);
            found.push_back(std::make_unique<API::CMinMaxTransform>(lowest, highest));
        }
        transforms->swap(found);
    } catch (const std::bad_alloc &) {
        return noMemoryForView();
    }
    return {};
}

CError CView::GetDefaultRGBABandList(std::vector<std::uint32_t> *bands) const
{
    if (!d->engine())
        return xrv::notOpen();
    if (bands == nullptr)
        return xrv::invalidArgument("There is no place for the bands.");
    const std::vector<int> found = SharedFile()->bandMap().rgbaBands();
    if (found.empty())
        return {PLK_ERR_NOT_AVAILABLE, "The image has fewer than three bands of colour."};
    bands->assign(found.begin(), found.end());
    return {};
}

} // namespace PLK
