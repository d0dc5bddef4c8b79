#include <xrv60/plkfile.h>

#include "refusals.h"
#include "sourcestream.h"
#include "viewmetadatavalues.h"

#include "file/openfile.h"
#include "log/faultlog.h"
#include "statistics/statisticsrecord.h"

#include <xrv60/plkinit.h>

#include <algorithm>
#include <functional>
#include <new>

namespace PLK::SDK {

namespace {

CError missingResult()
{
    return xrv::invalidArgument("There is no place for the result.");
}

} // namespace

/// What callers see of an open file.
class CFileClient::FileFacade : public CFileBase
{
public:
    explicit FileFacade(std::shared_ptr<xrv::OpenFile> openFile)
        : file(std::move(openFile))
        , stream(file->sharedSource())
    {
    }
    const char *GetName() const override { return file->name().c_str(); }
    PLKFileType GetType() const override { return file->type(); }
    bool IsRemote() const override { return file->source().isRemote(); }

    const std::shared_ptr<xrv::OpenFile> file;
    xrv::SourceStream stream;
};

CFileClient::CFileClient() = default;

CFileClient::~CFileClient() = default;

CError CFileClient::OpenFileNamed(const CString &name, const COpenControl &control)
{
    CloseFile(false);
    if (CError error = xrv::OpenFile::open(name.Utf8(), control.watch, &file))
        return error;
    facade = std::make_unique<FileFacade>(file);
    metadataJp2.Assign(
        ViewMetadata::ViewMetadataJp2::Values::of(file->reader().mainHeader(), file->structure().hasGmlBox));
    if (const xrv::XrvStructure *xrv = file->xrv())
        metadataXRV.Assign({xrv->info.tileWidth, xrv->info.tileHeight});
    return {};
}

void CFileClient::CloseFile(bool freeCache)
{
    if (file && freeCache)
        file->reader().dropCached();
    metadataJp2.Assign(nullptr);
    metadataXRV.Assign({0, 0});
    facade.reset();
    file.reset();
}

const CFileBase *CFileClient::GetFile() const
{
    return facade.get();
}

std::string CFileClient::GetFileName() const
{
    return file ? file->name() : std::string();
}

PLKFileType CFileClient::GetFileType() const
{
    return file ? file->type() : PLK_FILE_UNKNOWN;
}

const PLKFileInfo *CFileClient::GetFileInfo() const
{
    return file ? &file->info() : nullptr;
}

int CFileClient::GetEPSGCode() const
{
    return file ? file->geoReference().epsg : 0;
}

CError CFileClient::ConvertDatasetToWorld(double datasetX, double datasetY, double *worldX, double *worldY) const
{
    if (!file)
        return xrv::notOpen();
    if (!worldX || !worldY)
        return missingResult();
    const PLKFileInfo &info = file->info();
    *worldX = info.fOriginX + datasetX * info.fCellIncrementX;
    *worldY = info.fOriginY + datasetY * info.fCellIncrementY;
    return {};
}

CError CFileClient::ConvertWorldToDataset(double worldX, double worldY, double *datasetX, double *datasetY) const
{
    if (!file)
        return xrv::notOpen();
    if (!datasetX || !datasetY)
        return missingResult();
    const PLKFileInfo &info = file->info();
    *datasetX = (worldX - info.fOriginX) / info.fCellIncrementX;
    *datasetY = (worldY - info.fOriginY) / info.fCellIncrementY;
    return {};
}

CError CFileClient::GetWorldTransform(double transform[6]) const
{
    if (!file)
        return xrv::notOpen();
    if (!transform)
        return missingResult();
    std::copy(file->geoReference().transform.begin(), file->geoReference().transform.end(), transform);
    return {};
}

const PLKXMLBox *CFileClient::GetXMLBox(const PLKXMLBox *previous) const
{
    if (!file)
        return nullptr;
    const std::vector<PLKXMLBox> &boxes = file->xmlBoxes();
    const PLKXMLBox *const end = boxes.data() + boxes.size();
    if (!previous)
        return boxes.empty() ? nullptr : boxes.data();
    const std::less<> isBefore; // a total order even for pointers of other files
    if (isBefore(previous, boxes.data()) || !isBefore(previous, end))
        return nullptr;
    return previous + 1 == end ? nullptr : previous + 1;
}

CIOStream *CFileClient::GetStream() const
{
    return facade ? &facade->stream : nullptr;
}

CError CFileClient::GetClientStatistics(PLKFileStatistics **statistics)
{
    if (!statistics)
        return missingResult();
    *statistics = nullptr;
    const std::shared_ptr<xrv::OpenFile> used = file;
    if (!used)
        return xrv::notOpen();
    xrv::SharedStatistics kept;
    if (CError error = used->statistics().atHand(&kept)) {
        used->faults()->failed(error);
        return error;
    }
    try {
        *statistics = xrv::copyOf(*kept).release();
    } catch (const std::bad_alloc &) {
        return {PLK_ERR_OUT_OF_MEMORY, "There is not enough memory for the statistics."};
    }
    return {};
}

PLKStatisticsState CFileClient::GetStatisticsState() const
{
    return file ? file->statistics().state() : PLK_STATISTICS_UNKNOWN;
}

CError CFileClient::StartCountingStatistics()
{
    if (!file)
        return xrv::notOpen();
    file->statistics().startCount();
    return {};
}

int CFileClient::GetStatisticsPercent() const
{
    if (GetStatisticsState() == PLK_STATISTICS_EXACT)
        return 100;
    return file ? file->statistics().count().percent() : 0;
}

void CFileClient::CancelCountingStatistics()
{
    if (file)
        file->statistics().count().cancel();
}

CError CFileClient::WaitForStatistics()
{
    const std::shared_ptr<xrv::OpenFile> used = file;
    if (!used)
        return xrv::notOpen();
    return GetStatisticsState() == PLK_STATISTICS_EXACT ? CError() : used->statistics().count().wait();
}

CError CFileClient::GetCondition() const
{
    if (!file)
        return {};
    if (CError error = file->source().condition())
        return error;
    const std::string damage = file->faults()->cellDamage();
    return damage.empty() ? CError() : CError(PLK_ERR_MALFORMED, damage);
}

CError CFileClient::GetRPCData(PLKRPCData **rpcData) const
{
    if (!rpcData)
        return missingResult();
    *rpcData = nullptr;
    if (!file)
        return xrv::notOpen();
    std::vector<std::string> warnings;
    std::optional<PLKRPCData> found = file->xrv() ? file->xrv()->rpc : std::nullopt;
    if (!found)
        found = xrv::readRpc(file->structure(), file->localName(), &warnings);
    for (const std::string &warning : warnings)
        file->faults()->damaged(warning); // the question may be asked often
    if (!found)
        return {PLK_ERR_NOT_AVAILABLE, "The file has no rational polynomial coefficients."};
    *rpcData = new PLKRPCData(*found);
    return {};
}

} // namespace PLK::SDK

void PLKFreeRPCData(PLKRPCData *rpcData)
{
    delete rpcData;
}

void PLKFreeStatistics(PLKFileStatistics *statistics)
{
    const xrv::StatisticsPtr released(statistics);
}
