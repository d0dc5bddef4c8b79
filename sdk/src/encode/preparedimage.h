#pragma once

#include "cellcoder.h"
#include "hiddencells.h"
#include "imagesource.h"
#include "imagewriter.h"

#include "statistics/bandcounter.h"
#include "statistics/statisticsrecord.h"

#include <functional>
#include <memory>
#include <vector>

namespace xrv {

/// An image as its components are coded: with an opacity band that hides what is no data, and deep cells as codes.
class PreparedImage
{
public:
    /// Deepest components that the encoders can be given: transformed, they have to fit the numbers that these count
    /// with.
    static constexpr int kMaxCodedBits = 22;

    /// \a source is borrowed.
    explicit PreparedImage(ImageSource &source);

    /// Goes through all of the image, \a rects, where its cells have to be known before. PLK_ERR_UNSUPPORTED for what
    /// cannot be written so. \a progress: the share that is done; false ends the work.
    PLK::CError prepare(const WriteOptions &options, const std::vector<IntRect> &rects,
                        const std::function<bool(double)> &progress);
    /// Whether prepare() has to go through the image.
    bool needsSurvey() const;

    /// With the opacity band.
    const ImageDescription &description() const { return image; }
    /// Empty where no band is mapped.
    const std::vector<CellMapping> &mappings() const { return coder.mappings(); }
    /// Bands of the codestream.
    const std::vector<XrvBand> &components() const { return codedBands; }

    /// Fills \a planes, one for each component, and counts the cells. One thread at a time.
    PLK::CError read(const IntRect &rect, const std::vector<std::int32_t *> &planes);
    /// Of all cells that were read, those left out that are hidden.
    StatisticsPtr statistics() const;

private:
    PLK::CError check(const WriteOptions &options) const;
    PLK::CError survey(const std::vector<IntRect> &rects, const std::function<bool(double)> &progress,
                       std::vector<class BandSurvey> *surveys);
    PLK::CError readBands(const IntRect &rect, const std::vector<std::int32_t *> &planes);
    PLK::CError narrow(const std::vector<class BandSurvey> &surveys);
    void map(const std::vector<class BandSurvey> &surveys);
    void addOpacity();
    void makeCounters();
    void count(const std::vector<std::int32_t *> &planes, std::size_t cells);
    const std::int32_t *opacityOf(const std::vector<std::int32_t *> &planes) const
    {
        return image.isLastOpacity ? planes[image.bands.size() - 1] : nullptr;
    }

    ImageSource &source;
    ImageDescription image;
    const std::size_t sourceBands;
    const HiddenCells hidden;
    bool hasMadeOpacity = false; ///< of what is no data
    CellCoder coder;
    std::vector<XrvBand> codedBands;
    std::vector<BandCounter> counters;
};

} // namespace xrv
