#include "fileinforecord.h"

#include "base/utf8.h"
#include "config/configuration.h"

namespace xrv {

namespace {

constexpr const char *kUnnamed = "RAW";
constexpr std::uint8_t kJpeg2000FormatVersion = 1; // there has been no other

/// Bytes of all cells of the codestream's components, each in as many whole bytes as its depth needs.
double uncompressedBytes(const RasterInfo &raster)
{
    double bytes = 0.0;
    for (std::size_t c = 0; c < raster.components.size(); ++c) {
        const IntRect rect = raster.levelRect(static_cast<int>(c), 0);
        const int wholeBytes = (raster.components[c].bits + 7) / 8;
        bytes +=
            static_cast<double>(rect.width()) * static_cast<double>(rect.height()) * static_cast<double>(wholeBytes);
    }
    return bytes;
}

} // namespace

FileInfoRecord::FileInfoRecord(const FileParts &parts, std::uint64_t fileBytes)
{
    fillBands(parts);
    fillRaster(parts);
    fillPlace(parts.geo);
    fillCompression(parts, fileBytes);
    if (parts.xrv && parts.xrv->texts)
        fillTexts(*parts.xrv->texts);
}

void FileInfoRecord::fillBands(const FileParts &parts)
{
    const std::size_t count = parts.bandCount();
    const bool isDescribed = parts.xrv && parts.xrv->bands.size() == count;
    for (std::size_t i = 0; i < count; ++i)
        descriptions.push_back(isDescribed ? parts.xrv->bands[i].description : parts.bandMap.bands()[i].description);
    for (std::size_t i = 0; i < count; ++i) { // not before all texts have their place
        const Band &band = parts.bandMap.bands()[i];
        bands.push_back({band.bits, band.isSigned, descriptions[i].c_str()});
    }
    info.nBands = static_cast<std::uint16_t>(count);
    info.pBands = bands.data();
}

void FileInfoRecord::fillRaster(const FileParts &parts)
{
    info.nSizeX = parts.reader->info().width;
    info.nSizeY = parts.reader->info().height;
    info.eColorSpace = parts.bandMap.colourSpace();
    info.eCellType = parts.bandMap.cellType();
}

void FileInfoRecord::fillPlace(const GeoReference &geo)
{
    info.eCellSizeUnits = geo.units;
    info.fCellIncrementX = geo.incrementX();
    info.fCellIncrementY = geo.incrementY();
    info.fOriginX = geo.transform[0];
    info.fOriginY = geo.transform[3];
    info.fCWRotationDegrees = geo.clockwiseRotationDegrees();
    const bool isNamed = configuration().projectionFormat != PLK_PROJECTION_NONE;
    datum = isNamed ? geo.datum : kUnnamed;
    projection = isNamed ? geo.projection : kUnnamed;
    info.szDatum = datum.c_str();
    info.szProjection = projection.c_str();
}

/// An XRV file tells how it was compressed; of others there is only their size.
void FileInfoRecord::fillCompression(const FileParts &parts, std::uint64_t fileBytes)
{
    info.nFormatVersion = kJpeg2000FormatVersion;
    if (fileBytes > 0)
        info.fActualCompressionRate =
            static_cast<float>(uncompressedBytes(parts.reader->info()) / static_cast<double>(fileBytes));
    if (parts.xrv) {
        const XrvFileInfo &told = parts.xrv->info;
        info.nFormatVersion = parts.xrv->majorVersion;
        info.nCompressionRate = told.targetRate;
        compressionDate = told.compressionDate;
        if (told.actualRate > 0.0f)
            info.fActualCompressionRate = told.actualRate;
    }
    info.szCompressionDate = compressionDate.c_str();
}

void FileInfoRecord::fillTexts(const XrvTexts &fileTexts)
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
        if (!fileTexts[i])
            continue;
        texts[i] = wideFromUtf8(*fileTexts[i]);
        textRecord.*fields[i] = texts[i].c_str();
    }
    info.pFileMetaData = &textRecord;
}

} // namespace xrv
