// Writes the XRV file that the pages are tested with. A program of its own: the writer is built on the SDK's objects,
// the pages on its library.
//
// usage: makexrvsample FILE

#include "data/syntheticimage.h"
#include "pages/xrvsample.h"

#include <cstdio>

namespace {

SyntheticImage makeSample()
{
    SyntheticImage image(XrvSample::kWidth, XrvSample::kHeight, XrvSample::kBands, 8);
    image.cell = XrvSample::cell;
    for (std::size_t band = 0; band < XrvSample::kBands; ++band)
        image.image.bands[band].description = XrvSample::kBandNames[band];
    for (std::size_t i = 0; i < xrv::kXrvTexts; ++i)
        image.image.texts[i] = XrvSample::kTexts[i];
    xrv::GeoReference &place = image.image.place;
    place.origin = xrv::GeoReference::Origin::XrvInfo;
    place.transform = {500000.0, 10.0, 0.0, 5200000.0, 0.0, -10.0};
    place.units = PLK_UNITS_METERS;
    place.datum = XrvSample::kDatum;
    place.projection = XrvSample::kProjection;
    image.image.xmls = {XrvSample::kXml};
    return image;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 2)
        return 2;
    SyntheticImage image = makeSample();
    xrv::WriteOptions options;
    options.isLossless = false;
    options.rate = XrvSample::kRate;
    options.tileSize = XrvSample::kBlockSize;
    options.compressionDate = XrvSample::kDate;
    const PLK::CError error = xrv::writeImage(image, options, argv[1]);
    if (error)
        std::fprintf(stderr, "%s\n", error.GetErrorMessage());
    return error ? 1 : 0;
}
