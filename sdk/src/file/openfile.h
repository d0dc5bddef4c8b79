#pragma once

#include "colour/bandmap.h"
#include "container/jp2structure.h"
#include "decode/rasterreader.h"
#include "geo/georeference.h"
#include "io/bytesource.h"
#include "io/openwatch.h"
#include "statistics/statistics.h"
#include "xrv/xrvstructure.h"

#include <xrv60/plkerror.h>
#include <xrv60/plktypes.h>

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace xrv {

class FaultLog;

/// Everything known of one open file: its bytes, boxes, raster, bands and place in the world. Shared by the views'
/// threads; immutable after open() but for the statistics, which are computed once.
class OpenFile
{
public:
    /// Opens a local file or a stream by its UTF-8 name. Damage that the file can be shown in spite of is logged.
    /// PLK_ERR_CANCELLED when \a watch was cancelled.
    static PLK::CError open(const std::string &givenName, std::shared_ptr<OpenWatch> watch,
                            std::shared_ptr<OpenFile> *file);
    ~OpenFile();

    /// As given, but without the user and password of an address.
    const std::string &name() const { return fileName; }
    /// As it may be shown and logged: of an address, what follows "?" is left out too.
    const std::string &shownName() const { return shownFileName; }
    /// Told of damage that is met later, and of failures.
    const std::shared_ptr<FaultLog> &faults() const { return faultLog; }
    /// Name of the file in the file system, empty for streams.
    const std::string &localName() const { return localFileName; }
    PLKFileType type() const { return fileType; }
    ByteSource &source() const { return *byteSource; }
    const std::shared_ptr<ByteSource> &sharedSource() const { return byteSource; }
    RasterReader &reader() const { return *rasterReader; }
    const Jp2Structure &structure() const { return boxes; }
    const BandMap &bandMap() const { return map; }
    const GeoReference &geoReference() const { return geo; }
    const PLKFileInfo &info() const { return fileInfo; }
    /// In file order.
    const std::vector<PLKXMLBox> &xmlBoxes() const { return xmls; }
    /// What the file says besides its boxes of JPEG 2000; null where it is no XRV file.
    const XrvStructure *xrv() const { return xrvStructure.get(); }

    /// An XRV file whose cells are not those of the original.
    bool canBeDithered() const;

    /// Statistics of all bands, owned by this object: those that the file carries, else computed at the first call,
    /// which may decode.
    PLK::CError statistics(const PLKFileStatistics **result);
    /// The same where they are known; else what a small resolution level tells, which is enough for a picture's
    /// contrast.
    PLK::CError displayStatistics(const PLKFileStatistics **result);

private:
    OpenFile();
    PLK::CError readBoxes(std::vector<std::string> *warnings);
    PLK::CError openRaster(std::vector<std::string> *warnings);
    PLK::CError openParts(std::vector<std::string> *warnings);
    void findPlace(std::vector<std::string> *warnings);
    void compareWithHeaderBox(std::vector<std::string> *warnings) const;
    void fillInfo();
    void fillBandInfos();
    void fillXrvInfo();
    void fillTexts();
    PLK::CError readStoredStatistics(StatisticsPtr *kept);
    PLK::CError findStatistics(StatisticsPtr *kept, StatisticsDetail detail, const PLKFileStatistics **result);
    PLK::CError makeStatistics(StatisticsPtr *kept, StatisticsDetail detail);
    double uncompressedBytes() const;
    std::string typeName() const;

    std::string fileName, shownFileName, localFileName;
    std::shared_ptr<FaultLog> faultLog;
    PLKFileType fileType = PLK_FILE_UNKNOWN;
    std::shared_ptr<ByteSource> byteSource;
    Jp2Structure boxes;
    std::unique_ptr<XrvStructure> xrvStructure;
    std::unique_ptr<RasterReader> rasterReader;
    BandMap map;
    GeoReference geo;
    PLKFileInfo fileInfo{};
    std::vector<PLKBandInfo> bandInfos;
    std::array<std::wstring, kXrvTexts> texts; ///< that textRecord points to
    PLKFileMetaData textRecord{};
    std::vector<PLKXMLBox> xmls;
    std::mutex statisticsMutex; ///< guards what follows
    StatisticsPtr fullStatistics, roughStatistics;
};

} // namespace xrv
