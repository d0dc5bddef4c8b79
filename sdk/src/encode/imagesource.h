#pragma once

#include "geotifftags.h"

#include "base/plane.h"
#include "geo/georeference.h"
#include "xrv/xrvrecords.h"

#include <xrv60/plkerror.h>
#include <xrv60/plktypes.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace xrv {

/// What is known of an image that is to be compressed.
struct ImageDescription
{
    std::uint32_t width = 0, height = 0; ///< cells
    /// Colours first, an opacity band last. 1 to 16 bits each, or 32 with any kind of cells.
    std::vector<XrvBand> bands;
    PLKColorSpace colourSpace = PLK_COLORSPACE_MULTIBAND; ///< greyscale, sRGB or multiband
    bool isLastOpacity = false;
    /// Where every band has this value there are no data. Counts where there is no opacity band.
    std::optional<double> noData;
    GeoReference place; ///< of Origin::None without one
    GeoTags geoTags;    ///< as the source has them; they may say more of the reference system than place
    std::optional<PLKRPCData> rpc;
    std::vector<std::string> xmls; ///< contents of XML boxes, UTF-8
    XrvTexts texts;
};

/// An image that is read rectangle by rectangle.
class ImageSource
{
public:
    virtual ~ImageSource() = default;

    virtual const ImageDescription &description() const = 0;
    /// Puts the cells of \a rect (within the image) into \a planes, one for each band, rows packed, each cell as its
    /// kind has it. Asked for from left to right, then from top to bottom, in rectangles of one height, between which
    /// rows may be left out; never from two threads at once.
    virtual PLK::CError read(const IntRect &rect, const std::vector<std::int32_t *> &planes) = 0;
    /// Starts again at the top; they may have another height then.
    virtual PLK::CError rewind() = 0;
};

} // namespace xrv
