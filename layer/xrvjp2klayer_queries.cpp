// What the layer tells of the image it shows.

#include "cellvaluereader.h"
#include "xrvjp2klayer.h"
#include "xrvjp2krenderer.h"

#include <xrv60/plkinit.h>

#include <QStringList>

#include <array>
#include <limits>

namespace Korvane {

namespace {

constexpr int kXrvpVersion = 3;

constexpr std::array<const char *, 10> kCellTypeNames = {"UInt8", "UInt16", "UInt32", "UInt64", "Int8",
                                                         "Int16", "Int32",  "Int64",  "Float",  "Double"};
constexpr std::array<const char *, 5> kProgressionNames = {"LRCP", "RLCP", "RPCL", "PCRL", "CPRL"};

struct FreeStatistics
{
    void operator()(PLKFileStatistics *statistics) const { PLKFreeStatistics(statistics); }
};
using StatisticsPtr = std::unique_ptr<PLKFileStatistics, FreeStatistics>;

template <typename Numbers, typename Pick> QString joined(const Numbers &numbers, Pick pick)
{
    QStringList texts;
    for (const auto &number : numbers)
        texts.append(QString::number(pick(number)));
    return texts.join(QLatin1Char(','));
}

QSize toSize(const std::pair<std::uint32_t, std::uint32_t> &size)
{
    return QSize(static_cast<int>(size.first), static_cast<int>(size.second));
}

/// The whole part of a cell value in the unsigned type that histograms hold it in; what does not fit goes to its ends.
quint64 toUnsigned(float value)
{
    constexpr float kEnd = 18446744073709551616.0F; // 2^64
    if (!(value > 0.0F))
        return 0;
    return value < kEnd ? static_cast<quint64>(value) : std::numeric_limits<quint64>::max();
}

Map::HistogramT<quint64> makeHistogram(const PLKBandStatistics &band)
{
    Map::HistogramT<quint64> histogram;
    const std::vector<quint64> counts(band.pHistogram, band.pHistogram + band.nHistBucketCount);
    histogram.setBuckets(counts.data(), band.nHistBucketCount);
    histogram.maximumValue = toUnsigned(band.fMax);
    histogram.minimumValue = toUnsigned(band.fMin);
    histogram.mean = double(band.fMean);
    histogram.median = double(band.fMedian);
    histogram.standardDeviation = double(band.fStandardDev);
    histogram.mode = double(band.fMode);
    return histogram;
}

} // namespace

QIcon XRVJP2kLayer::getIcon() const
{
    return QIcon(QStringLiteral(":/Resources/logo.png"));
}

PLK::CView *XRVJP2kLayer::getFile() const
{
    return renderer.get();
}

PLK::CView *XRVJP2kLayer::getBackingFile() const
{
    return hasBackingRenderer() ? backingRenderer.get() : nullptr;
}

PLKFileInfo *XRVJP2kLayer::getFileInfo() const
{
    // The interface promises a plain pointer; the view gives a read-only one.
    return renderer ? const_cast<PLKFileInfo *>(renderer->GetFileInfo()) : nullptr;
}

PLKFileType XRVJP2kLayer::getFileType() const
{
    return renderer ? renderer->GetFileType() : PLK_FILE_UNKNOWN;
}

PLKFileStatistics *XRVJP2kLayer::getStatistics() const
{
    return renderer ? renderer->getClientStatistics() : nullptr;
}

Map::ILayerStatistics::StatisticsState XRVJP2kLayer::getStatisticsState() const
{
    switch (renderer ? renderer->GetStatisticsState() : PLK_STATISTICS_UNKNOWN) {
    case PLK_STATISTICS_ESTIMATED:
        return StatisticsState::Estimated;
    case PLK_STATISTICS_COUNTING:
        return StatisticsState::Counting;
    case PLK_STATISTICS_EXACT:
        return StatisticsState::Exact;
    case PLK_STATISTICS_UNKNOWN:
        break;
    }
    return StatisticsState::Unknown;
}

int XRVJP2kLayer::getStatisticsPercent() const
{
    return renderer ? renderer->GetStatisticsPercent() : 0;
}

void XRVJP2kLayer::countStatistics()
{
    if (renderer)
        renderer->StartCountingStatistics();
}

void XRVJP2kLayer::cancelStatistics()
{
    if (renderer)
        renderer->CancelCountingStatistics();
}

bool XRVJP2kLayer::areCellsLocal() const
{
    return renderer && renderer->GetFile() && !renderer->GetFile()->IsRemote();
}

std::unique_ptr<Map::LayerValueReader> XRVJP2kLayer::makeValueReader() const
{
    return renderer ? std::make_unique<CellValueReader>(renderer->GetFileName()) : nullptr;
}

QStringList XRVJP2kLayer::getBandNames() const
{
    return getBandDescriptions();
}

Map::ILayerCondition::Condition XRVJP2kLayer::getCondition() const
{
    const PLK::CError error = renderer ? renderer->GetCondition() : PLK::CError();
    switch (error.GetErrorNumber()) {
    case 0:
        return {};
    case PLK_ERR_CONNECTION_LOST:
        return {Fault::ConnectionLost, tr(error.GetErrorMessage())};
    case PLK_ERR_FILE_CHANGED:
        return {Fault::SourceChanged, tr(error.GetErrorMessage())};
    default:
        return {Fault::Damaged, tr(error.GetErrorMessage())};
    }
}

PLKRPCData *XRVJP2kLayer::getRPCInfo() const
{
    return renderer ? renderer->getRPCData() : nullptr;
}

QSize XRVJP2kLayer::getSize() const
{
    const PLKFileInfo *info = getFileInfo();
    return info ? QSize(static_cast<int>(info->nSizeX), static_cast<int>(info->nSizeY)) : QSize();
}

double XRVJP2kLayer::getCellSizeX() const
{
    const PLKFileInfo *info = getFileInfo();
    return info ? info->fCellIncrementX : 1.0;
}

double XRVJP2kLayer::getCellSizeY() const
{
    const PLKFileInfo *info = getFileInfo();
    return info ? info->fCellIncrementY : 1.0;
}

int XRVJP2kLayer::getNumberOfBands() const
{
    const PLKFileInfo *info = getFileInfo();
    return info ? info->nBands : 0;
}

double XRVJP2kLayer::getRotation() const
{
    const PLKFileInfo *info = getFileInfo();
    return info ? info->fCWRotationDegrees : 0.0;
}

int XRVJP2kLayer::getFileFormatVersion() const
{
    const PLKFileInfo *info = getFileInfo();
    return info ? info->nFormatVersion : 0;
}

int XRVJP2kLayer::getXRVPVersion() const
{
    const PLK::SDK::CFileBase *file = renderer ? renderer->GetFile() : nullptr;
    return file && file->IsRemote() ? kXrvpVersion : 0;
}

int XRVJP2kLayer::getOpacityBandNumber() const
{
    return renderer ? renderer->getOpacityBandNumber() : -1;
}

bool XRVJP2kLayer::hasOpacity() const
{
    return getOpacityBandNumber() != -1;
}

QString XRVJP2kLayer::getCellType() const
{
    const PLKFileInfo *info = getFileInfo();
    if (!info || info->eCellType < 0 || info->eCellType >= int(kCellTypeNames.size()))
        return tr("Unknown");
    return QLatin1String(kCellTypeNames[static_cast<size_t>(info->eCellType)]);
}

Map::RasterLayer::ColorSpace XRVJP2kLayer::getColorSpace() const
{
    const PLKFileInfo *info = getFileInfo();
    switch (info ? info->eColorSpace : PLK_COLORSPACE_NONE) {
    case PLK_COLORSPACE_SRGB:
        return RGB;
    case PLK_COLORSPACE_GREYSCALE:
        return Greyscale;
    case PLK_COLORSPACE_MULTIBAND:
        return Multiband;
    default:
        return UnknownColorSpace;
    }
}

QList<QString> XRVJP2kLayer::getBandDescriptions() const
{
    QList<QString> descriptions;
    const PLKFileInfo *info = getFileInfo();
    for (int band = 0; info && band < info->nBands; ++band)
        descriptions.append(QString::fromUtf8(info->pBands[band].szDesc));
    return descriptions;
}

QString XRVJP2kLayer::getCoordSysName() const
{
    const int code = renderer ? renderer->GetEPSGCode() : 0;
    return code > 0 ? QStringLiteral("epsg:%1").arg(code) : tr("Unknown");
}

QString XRVJP2kLayer::getFormat() const
{
    const QString name = getDataSource().toLower();
    if (name.endsWith(QLatin1String(".xrv")))
        return QStringLiteral("MILTO XRV");
    for (const char *extension : {".jp2", ".jpc", ".jpx"}) {
        if (name.endsWith(QLatin1String(extension)))
            return QStringLiteral("JPEG 2000");
    }
    return tr("Unknown");
}

QString XRVJP2kLayer::getProtocol() const
{
    const QString name = viewName();
    const QString lowered = name.toLower();
    if (lowered.startsWith(QLatin1String("xrvps://")))
        return QStringLiteral("XRVPS");
    if (lowered.startsWith(QLatin1String("xrvp://")))
        return QStringLiteral("XRVP");
    // Unlike the prefixes, the extensions count in small letters only, and anywhere in the name.
    if (name.contains(QLatin1String(".xrv")))
        return tr("Local XRV file");
    if (name.contains(QLatin1String(".jp2")))
        return tr("Local JPEG 2000 file");
    return tr("Local file");
}

bool XRVJP2kLayer::getJp2FileInfo(Jp2FileInfo &info) const
{
    if (getFileType() != PLK_FILE_JPEG2000)
        return false;
    const PLK::ViewMetadata::ViewMetadataJp2 &header = renderer->MetadataJp2();
    const int profile = header.ComplianceProfileType();
    if (profile >= 0 && profile <= 2)
        info.profile = profile == 0 ? 2 : profile - 1;
    info.comments = QString::fromStdString(header.Comments());
    info.numberOfTiles = toSize(header.NumberOfTiles());
    info.tileSize = toSize(header.TileSize());
    const auto precincts = header.PrecinctSize();
    info.precinctSizesX = joined(precincts, [](const auto &precinct) { return precinct.first; });
    info.precinctSizesY = joined(precincts, [](const auto &precinct) { return precinct.second; });
    info.codeBlockSize = toSize(header.CodeBlock());
    info.bitDepths = joined(header.BitDepth(), [](std::uint8_t depth) { return uint(depth); });
    info.resolutionLevels = header.Levels();
    info.qualityLayers = header.Layers();
    const int order = header.PrecinctProgressionOrder();
    info.progressionOrder = order >= 0 && order < int(kProgressionNames.size())
                                ? QString(QLatin1String(kProgressionNames[static_cast<size_t>(order)]))
                                : tr("Unknown progression order");
    if (header.TransformationType() == 0)
        info.filter = QStringLiteral("9x7 (Irreversible)");
    else if (header.TransformationType() == 1)
        info.filter = QStringLiteral("5x3 (Reversible)");
    info.useSOP = header.SOPExists();
    info.useEPH = header.EPHExists();
    info.hasGML = header.GMLJP2BoxExists();
    return true;
}

QVector<Map::HistogramT<quint64>> XRVJP2kLayer::getHistograms(bool reset, bool, QSize, double, double, double, double)
{
    if (!renderer)
        return histogramCache;
    if (reset) {
        histogramCache.clear();
        return histogramCache;
    }
    const StatisticsPtr statistics(getStatistics());
    if (statistics && histogramCache.isEmpty())
        histogramCache = makeHistograms(*statistics);
    return histogramCache;
}

QVector<Map::HistogramT<quint64>> XRVJP2kLayer::makeHistograms(const PLKFileStatistics &statistics) const
{
    QVector<Map::HistogramT<quint64>> histograms;
    const QList<QString> names = getBandDescriptions();
    for (quint32 band = 0; band < statistics.nBands; ++band) {
        histograms.append(makeHistogram(statistics.pBandStats[band]));
        histograms.last().bandName = names.value(static_cast<int>(band));
    }
    return histograms;
}

} // namespace Korvane
