#include "sourceparts.h"

#include "geo/geojp2.h"
#include "io/filenames.h"
#include "io/filesource.h"
#include "xrv/xrvstructure.h"

#include <algorithm>

using PLK::CError;
using namespace xrv;

namespace {

bool startsWith(const Bytes &bytes, const std::vector<int> &start)
{
    return bytes.size() >= start.size() &&
           std::equal(start.begin(), start.end(), bytes.begin(),
                      [](int wanted, std::uint8_t byte) { return wanted < 0 || wanted == byte; });
}

bool isTiff(const Bytes &start)
{
    return startsWith(start, {'I', 'I', 42, 0}) || startsWith(start, {'M', 'M', 0, 42}) ||
           startsWith(start, {'I', 'I', 43, 0}) || startsWith(start, {'M', 'M', 0, 43});
}

bool isPnm(const Bytes &start)
{
    return start.size() >= 3 && start[0] == 'P' && start[1] >= '1' && start[1] <= '7' &&
           (start[2] == ' ' || start[2] == '\n' || start[2] == '\r' || start[2] == '\t' || start[2] == '#');
}

} // namespace

CError openImageSource(const std::string &path, std::unique_ptr<ImageSource> *source,
                       std::vector<std::string> *warnings)
{
    if (isStreamAddress(path))
        return openViewSource(path, source, warnings);
    std::shared_ptr<ByteSource> file;
    if (CError error = FileSource::open(path, &file))
        return error;
    Bytes start;
    if (CError error = file->read({0, std::min<std::uint64_t>(file->size(), 16)}, &start))
        return error;
    file.reset();
    if (isTiff(start))
        return openTiffSource(path, source, warnings);
    if (isPnm(start))
        return openPnmSource(path, source, warnings);
    if (startsWith(start, {0x89, 'P', 'N', 'G', 0x0d, 0x0a, 0x1a, 0x0a}))
        return openPngSource(path, source, warnings);
    if (startsWith(start, {0, 0, 0, 12, -1, -1, -1, ' ', 0x0d, 0x0a, 0x87, 0x0a}) ||
        startsWith(start, {0, 0, 0, 12, 'j', 'P'}) || startsWith(start, {0xff, 0x4f, 0xff, 0x51}))
        return openViewSource(path, source, warnings);
    return {PLK_ERR_UNKNOWN_FORMAT, "\"" + path + "\" is no JPEG 2000, XRV, TIFF, PNM or PNG file."};
}

void completePlace(const std::string &path, ImageDescription *image, std::vector<std::string> *warnings)
{
    Jp2Structure structure;
    if (!image->geoTags.isEmpty())
        structure.uuidBoxes.push_back({kGeoJp2Uuid, makeGeoTiff(image->geoTags)});
    image->place = readGeoReference(structure, image->width, image->height, path, warnings);
    image->rpc = readRpc(structure, path, warnings);
    // A place that is not in the tags would be lost if the tags were handed on.
    if (image->place.origin != GeoReference::Origin::GeoJp2)
        image->geoTags = {};
}

void nameBands(ImageDescription *image)
{
    const char *const rgb[] = {"Red", "Green", "Blue"};
    const bool isRgb = image->colourSpace == PLK_COLORSPACE_SRGB;
    const bool isGrey = image->colourSpace == PLK_COLORSPACE_GREYSCALE;
    for (std::size_t i = 0; i < image->bands.size(); ++i) {
        std::string &name = image->bands[i].description;
        if (!name.empty())
            continue;
        if (image->isLastOpacity && i + 1 == image->bands.size())
            name = "AllOpacity";
        else if (isRgb && i < 3)
            name = rgb[i];
        else if (isGrey && i == 0)
            name = "Greyscale";
        else
            name = "Band #" + std::to_string(i + 1);
    }
}
