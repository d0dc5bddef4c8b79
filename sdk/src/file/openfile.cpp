#include "openfile.h"

#include "base/utf8.h"
#include "config/configuration.h"
#include "io/filenames.h"
#include "log/faultlog.h"
#include "log/logger.h"
#include "stream/opensource.h"
#include "stream/values/streamaddress.h"

#include <xrv60/plkinit.h>
#include <xrv60/plklog.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <new>

using PLK::CError;

namespace xrv {

namespace {

constexpr const char *kUnnamed = "RAW";
constexpr std::uint8_t kJpeg2000FormatVersion = 1; // there has been no other

void logNamed(int level, const std::string &text)
{
    if (logEnabled(level))
        log(level, wideFromUtf8(text));
}

bool isNamedXrv(const std::string &name)
{
    const std::string ending = ".xrv", lower = asciiLower(name);
    return lower.size() >= ending.size() && lower.compare(lower.size() - ending.size(), ending.size(), ending) == 0;
}

/// Begins as pages and messages of servers do, in HTML or XML.
bool isMarkup(ByteSource &source)
{
    Bytes start;
    if (source.read({0, std::min<std::uint64_t>(source.size(), 64)}, &start))
        return false;
    const std::string text(start.begin(), start.end());
    const std::size_t first = text.find_first_not_of(" \t\r\n\xEF\xBB\xBF");
    return first != std::string::npos && text[first] == '<';
}

GeoReference placeOf(const XrvFileInfo &info)
{
    GeoReference place;
    place.origin = GeoReference::Origin::XrvInfo;
    place.transform = info.transform;
    place.units = info.units;
    place.epsg = info.epsg;
    place.datum = info.datum;
    place.projection = info.projection;
    return place;
}

/// Places and steps that no window of the world could be computed with.
bool isUsable(const GeoReference &geo)
{
    const auto isFinite = [](double value) { return std::isfinite(value); };
    return std::all_of(geo.transform.begin(), geo.transform.end(), isFinite) && std::isfinite(geo.incrementX()) &&
           std::isfinite(geo.incrementY()) && geo.incrementX() != 0.0 && geo.incrementY() != 0.0;
}

} // namespace

OpenFile::OpenFile() = default;

OpenFile::~OpenFile()
{
    if (rasterReader)
        logNamed(PLK_LOG_INFO, "Closed \"" + shownFileName + "\".");
}

CError OpenFile::open(const std::string &givenName, std::shared_ptr<OpenWatch> watch, std::shared_ptr<OpenFile> *file)
{
    const std::string name = xrv::shownName(givenName);
    std::shared_ptr<OpenFile> opened(new OpenFile);
    opened->fileName = printableName(givenName); // a password goes nowhere from here
    opened->shownFileName = name;
    opened->faultLog = std::make_shared<FaultLog>(name);
    std::vector<std::string> warnings;
    CError error;
    try {
        error = openSource(givenName, &opened->byteSource, watch);
        if (!error)
            error = opened->openParts(&warnings);
    } catch (const std::bad_alloc &) {
        error = {PLK_ERR_OUT_OF_MEMORY, "There is not enough memory to open \"" + name + "\"."};
    } catch (const std::exception &exception) {
        error = {PLK_ERR_MALFORMED, "\"" + name + "\" cannot be opened: " + exception.what() + "."};
    }
    // Whatever came of it: parts that could not be read may have been passed over.
    if (watch->cancel.isRaised()) {
        logNamed(PLK_LOG_INFO, "The opening of \"" + name + "\" was cancelled.");
        return {PLK_ERR_CANCELLED, "The opening was cancelled."};
    }
    for (const std::string &warning : warnings)
        logNamed(PLK_LOG_WARNING, "\"" + name + "\": " + warning);
    if (error) {
        logNamed(PLK_LOG_ERROR, "\"" + name + "\" was not opened: " + error.GetErrorMessage());
        return error;
    }
    *file = std::move(opened);
    return {};
}

CError OpenFile::openParts(std::vector<std::string> *warnings)
{
    if (!byteSource->isRemote())
        localFileName = localPath(fileName);
    if (CError error = openRaster(warnings))
        return error;
    fileType = xrvStructure ? PLK_FILE_XRV : PLK_FILE_JPEG2000;
    findPlace(warnings);
    fillInfo();
    const RasterInfo &raster = rasterReader->info();
    logNamed(PLK_LOG_INFO, "Opened \"" + shownFileName + "\": " + typeName() + ", " + std::to_string(raster.width) +
                               " x " + std::to_string(raster.height) + " cells, " + std::to_string(fileInfo.nBands) +
                               " bands, " + std::to_string(byteSource->size()) + " bytes.");
    return {};
}

/// The content decides what the file is, not its name.
CError OpenFile::readBoxes(std::vector<std::string> *warnings)
{
    bool isXrv = false;
    if (CError error = xrv::isXrv(*byteSource, &isXrv))
        return error;
    if (isXrv) {
        xrvStructure = std::make_unique<XrvStructure>();
        CError error = readXrvStructure(*byteSource, xrvStructure.get(), warnings);
        boxes = std::move(xrvStructure->boxes);
        return error;
    }
    CError error = readJp2Structure(*byteSource, &boxes, warnings);
    if (error.GetErrorNumber() == PLK_ERR_UNKNOWN_FORMAT && byteSource->isRemote() && isMarkup(*byteSource))
        return {PLK_ERR_UNKNOWN_FORMAT, "The server sent a page or a message, not an image."};
    if (error.GetErrorNumber() == PLK_ERR_UNKNOWN_FORMAT && isNamedXrv(fileName))
        return {PLK_ERR_UNKNOWN_FORMAT, "This file is not an XRV image that this library can read."};
    return error;
}

CError OpenFile::openRaster(std::vector<std::string> *warnings)
{
    if (CError error = readBoxes(warnings))
        return error;
    if (CError error = RasterReader::open(byteSource, boxes.codestream, &rasterReader, packetIndexOf(boxes)))
        return error;
    compareWithHeaderBox(warnings);
    map = BandMap::make(rasterReader->info(), boxes, warnings);
    for (const BoxPlace &box : boxes.xmlBoxes)
        xmls.push_back({box.type, box.content.offset, box.content.length});
    return {};
}

std::string OpenFile::typeName() const
{
    if (fileType == PLK_FILE_XRV)
        return "XRV file";
    return boxes.isBareCodestream ? "JPEG 2000 codestream" : "JPEG 2000 file";
}

void OpenFile::compareWithHeaderBox(std::vector<std::string> *warnings) const
{
    const RasterInfo &raster = rasterReader->info();
    const std::uint32_t canvasWidth = raster.canvasX1 - raster.canvasX0;
    const std::uint32_t canvasHeight = raster.canvasY1 - raster.canvasY0;
    if (boxes.imageWidth == 0 && boxes.imageHeight == 0)
        return;
    if (boxes.imageWidth != canvasWidth || boxes.imageHeight != canvasHeight)
        warnings->push_back("The header box claims " + std::to_string(boxes.imageWidth) + " x " +
                            std::to_string(boxes.imageHeight) + " cells, but the codestream has " +
                            std::to_string(canvasWidth) + " x " + std::to_string(canvasHeight) +
                            "; the codestream is believed.");
}

void OpenFile::findPlace(std::vector<std::string> *warnings)
{
    const RasterInfo &raster = rasterReader->info();
    geo = xrvStructure && xrvStructure->info.hasPlace
              ? placeOf(xrvStructure->info)
              : readGeoReference(boxes, raster.width, raster.height, localFileName, warnings);
    if (isUsable(geo))
        return;
    warnings->push_back("The geo-reference has no usable cell size and is ignored.");
    geo = GeoReference();
}

void OpenFile::fillInfo()
{
    const RasterInfo &raster = rasterReader->info();
    fillBandInfos();
    fileInfo.nSizeX = raster.width;
    fileInfo.nSizeY = raster.height;
    fileInfo.nBands = static_cast<std::uint16_t>(bandInfos.size());
    fileInfo.pBands = bandInfos.data();
    fileInfo.eColorSpace = map.colourSpace();
    fileInfo.eCellType = map.cellType();
    fileInfo.eCellSizeUnits = geo.units;
    fileInfo.fCellIncrementX = geo.incrementX();
    fileInfo.fCellIncrementY = geo.incrementY();
    fileInfo.fOriginX = geo.transform[0];
    fileInfo.fOriginY = geo.transform[3];
    fileInfo.fCWRotationDegrees = geo.clockwiseRotationDegrees();
    const bool isNamed = configuration().projectionFormat != PLK_PROJECTION_NONE;
    fileInfo.szDatum = isNamed ? geo.datum.c_str() : kUnnamed;
    fileInfo.szProjection = isNamed ? geo.projection.c_str() : kUnnamed;
    fileInfo.nFormatVersion = kJpeg2000FormatVersion;
    fileInfo.szCompressionDate = "";
    if (byteSource->size() > 0)
        fileInfo.fActualCompressionRate =
            static_cast<float>(uncompressedBytes() / static_cast<double>(byteSource->size()));
    if (xrvStructure)
        fillXrvInfo();
}

void OpenFile::fillXrvInfo()
{
    const XrvFileInfo &info = xrvStructure->info;
    fileInfo.nFormatVersion = xrvStructure->majorVersion;
    fileInfo.nCompressionRate = info.targetRate;
    fileInfo.szCompressionDate = info.compressionDate.c_str();
    if (info.actualRate > 0.0f)
        fileInfo.fActualCompressionRate = info.actualRate;
    if (xrvStructure->bands.size() == bandInfos.size())
        for (std::size_t i = 0; i < bandInfos.size(); ++i)
            bandInfos[i].szDesc = xrvStructure->bands[i].description.c_str();
    if (xrvStructure->texts)
        fillTexts();
}

void OpenFile::fillTexts()
{
    const std::array<const wchar_t * PLKFileMetaData::*, kXrvTexts> fields{
        &PLKFileMetaData::sClassification,
        &PLKFileMetaData::sAcquisitionDate,
        &PLKFileMetaData::sAcquisitionSensorName,
        &PLKFileMetaData::sCompressionSoftware,
        &PLKFileMetaData::sAuthor,
        &PLKFileMetaData::sCopyright,
        &PLKFileMetaData::sCompany,
        &PLKFileMetaData::sEmail,
        &PLKFileMetaData::sAddress,
        &PLKFileMetaData::sTelephone,
    };
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const std::optional<std::string> &text = (*xrvStructure->texts)[i];
        if (!text)
            continue;
        texts[i] = wideFromUtf8(*text);
        textRecord.*fields[i] = texts[i].c_str();
    }
    fileInfo.pFileMetaData = &textRecord;
}

void OpenFile::fillBandInfos()
{
    constexpr std::size_t kMaxBands = std::numeric_limits<std::uint16_t>::max();
    const std::vector<Band> &bands = map.bands();
    const std::size_t count = std::min(bands.size(), kMaxBands);
    for (std::size_t i = 0; i < count; ++i)
        bandInfos.push_back({bands[i].bits, bands[i].isSigned, bands[i].description.c_str()});
}

double OpenFile::uncompressedBytes() const
{
    const RasterInfo &raster = rasterReader->info();
    double bytes = 0.0;
    for (std::size_t c = 0; c < raster.components.size(); ++c) {
        const IntRect rect = raster.levelRect(static_cast<int>(c), 0);
        bytes += static_cast<double>(rect.width()) * static_cast<double>(rect.height()) *
                 ((raster.components[c].bits + 7) / 8);
    }
    return bytes;
}

bool OpenFile::canBeDithered() const
{
    return xrvStructure && !xrvStructure->info.isLossless && !rasterReader->info().isLossless;
}

CError OpenFile::statistics(const PLKFileStatistics **result)
{
    const std::lock_guard<std::mutex> lock(statisticsMutex);
    return findStatistics(&fullStatistics, StatisticsDetail::Full, result);
}

CError OpenFile::displayStatistics(const PLKFileStatistics **result)
{
    const std::lock_guard<std::mutex> lock(statisticsMutex);
    return findStatistics(&roughStatistics, StatisticsDetail::Display, result);
}

CError OpenFile::findStatistics(StatisticsPtr *kept, StatisticsDetail detail, const PLKFileStatistics **result)
{
    try {
        if (!*kept && xrvStructure)
            if (CError error = readStoredStatistics(kept))
                return error;
        if (!*kept)
            if (CError error = makeStatistics(kept, detail))
                return error;
    } catch (const std::bad_alloc &) {
        return {PLK_ERR_OUT_OF_MEMORY, "There is not enough memory for the statistics of \"" + shownFileName + "\"."};
    }
    *result = kept->get();
    return {};
}

/// Damaged ones are none: they are then computed.
CError OpenFile::readStoredStatistics(StatisticsPtr *kept)
{
    Bytes content;
    if (CError error = readXrvContent(*byteSource, xrvStructure->statistics, &content))
        return error;
    *kept = parseStatistics(content, bandInfos.size());
    if (!*kept && !content.empty())
        logNamed(PLK_LOG_WARNING, "\"" + shownFileName + "\": The statistics are damaged and are computed anew.");
    return {};
}

CError OpenFile::makeStatistics(StatisticsPtr *kept, StatisticsDetail detail)
{
    const bool resilient = configuration().resilientDecoding;
    const auto start = std::chrono::steady_clock::now();
    if (CError error = computeStatistics(*rasterReader, map, detail, resilient, kept, faultLog.get()))
        return error;
    const auto elapsed = std::chrono::steady_clock::now() - start;
    logNamed(PLK_LOG_DEBUG, "Statistics of \"" + shownFileName + "\" took " +
                                std::to_string(std::chrono::duration_cast<std::chrono::milliseconds>(elapsed).count()) +
                                " ms.");
    return {};
}

} // namespace xrv
