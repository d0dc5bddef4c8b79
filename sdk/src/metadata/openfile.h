#pragma once

#include "../colour/bandmap.h"
#include "../container/jp2structure.h"
#include "../decode/rasterreader.h"
#include "../geo/georeference.h"
#include "../io/bytesource.h"

#include <xrv60/plkerror.h>
#include <xrv60/plktypes.h>
#include <xrv60/plkviewmetadata.h>

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace PLK {

/// Everything known of one open file: its bytes, boxes, raster, bands and place in the world. Shared by the views' threads;
/// immutable after open() but for the statistics, which are computed once.
class OpenFile {
public:
    /// Opens a local file (or, one day, a stream) by its UTF-8 name.
    static CError open(const std::string &name, std::shared_ptr<OpenFile> *file);
    ~OpenFile();

    const std::string &name() const { return fileName; }
    PLKFileType type() const { return fileType; }
    xrv::ByteSource &source() const { return *byteSource; }
    xrv::RasterReader &reader() const { return *rasterReader; }
    const xrv::Jp2Structure &structure() const { return boxes; }
    const xrv::BandMap &bandMap() const { return map; }
    const xrv::GeoReference &geoReference() const { return geo; }
    const PLKFileInfo &info() const { return fileInfo; }

    /// Statistics of all bands, owned by this object; computed at the first call, which may decode.
    CError statistics(const PLKFileStatistics **result);

private:
    OpenFile();
    void fillInfo();

    std::string fileName;
    PLKFileType fileType = PLK_FILE_UNKNOWN;
    std::shared_ptr<xrv::ByteSource> byteSource;
    xrv::Jp2Structure boxes;
    std::unique_ptr<xrv::RasterReader> rasterReader;
    xrv::BandMap map;
    xrv::GeoReference geo;
    PLKFileInfo fileInfo{};
    std::vector<PLKBandInfo> bandInfos;
    std::string datum, projection;
    std::mutex statisticsMutex; ///< guards computedStatistics
    std::unique_ptr<PLKFileStatistics, void (*)(PLKFileStatistics *)> computedStatistics;
};

} // namespace PLK
