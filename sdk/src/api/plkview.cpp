#include "plkview_p.h"

#include "refusals.h"

#include "config/configuration.h"
#include "file/openfile.h"
#include "io/filenames.h"

#include <algorithm>
#include <new>

namespace PLK {

PLKReadStatus CView::Private::readLine(const xrv::LineTarget &target)
{
    const std::shared_ptr<xrv::ViewEngine> open = engine();
    if (!open) {
        setError(xrv::notOpen());
        return PLK_READ_FAILED;
    }
    try {
        return open->readLine(target);
    } catch (const std::bad_alloc &) {
        open->setLastError(noMemoryForView());
        return PLK_READ_FAILED;
    }
}

CError CView::Private::makeRequest(const xrv::ViewArguments &arguments, xrv::ViewRequest *request)
{
    const xrv::EdgeRect &world = arguments.worldRect;
    xrv::EdgeRect &cells = request->datasetRect;
    if (CError error = owner->ConvertWorldToDataset(world.left, world.top, &cells.left, &cells.top))
        return error;
    if (CError error = owner->ConvertWorldToDataset(world.right, world.bottom, &cells.right, &cells.bottom))
        return error;
    if (!xrv::isArea(cells))
        return xrv::invalidArgument("The world rectangle of the view is too large or too small for this file.");
    request->worldRect = world;
    request->width = arguments.width;
    request->height = arguments.height;
    request->bands.assign(arguments.bands, arguments.bands + arguments.bandCount);
    fillByteMaps(request);
    fillSettings(request);
    return {};
}

void CView::Private::fillByteMaps(xrv::ViewRequest *request)
{
    const std::vector<xrv::Band> &fileBands = owner->SharedFile()->bandMap().bands();
    for (int band : request->bands) {
        const xrv::Band &info = fileBands[static_cast<std::size_t>(band)];
        request->byteMaps.push_back(tables.mapOf(band, info, false));
        request->autoscaledByteMaps.push_back(tables.mapOf(band, info, true));
    }
}

void CView::Private::fillSettings(xrv::ViewRequest *request) const
{
    const xrv::Configuration &config = xrv::configuration();
    request->resampleMethod = owner->ParametersDecompress().GetResampleMethod();
    request->textureDither = owner->ParametersDecompress().IsReaderDitherEnabled();
    request->qualityLayers = std::max(0, owner->ParametersJp2().Decompress().GetLayersToDecode());
    request->resilient = config.resilientDecoding;
    request->coarserNearest = config.optimizeNearestNeighbour;
    request->refreshTimeMs = config.refreshTimeMs;
    request->blockingTimeMs = config.blockingTimeMs;
}

CView::CView()
    : d(std::make_unique<Private>(this))
{
    parametersDecompress.SetReaderDitherEnabled(xrv::configuration().textureDither);
}

CView::~CView()
{
    Close(false);
}

CError CView::Open(const wchar_t *name, bool progressive, bool update)
{
    try {
        return Open(CString(xrv::resolveName(name).c_str()), progressive, update);
    } catch (const std::bad_alloc &) {
        return noMemoryForView();
    }
}

CError CView::Open(const CString &name, bool progressive, bool update)
{
    if (update)
        return xrv::invalidArgument("Files cannot be opened for update.");
    if (CError error = Close(false))
        return error;
    try {
        if (CError error = OpenFileNamed(name, openControl))
            return error;
        const std::shared_ptr<xrv::OpenFile> &file = SharedFile();
        const xrv::ViewSource source{
            file, &file->reader(), &file->bandMap(), file->canBeDithered(), file->shownName(), file->faults()};
        d->setEngine(std::make_shared<xrv::ViewEngine>(source, progressive, *d));
    } catch (const std::bad_alloc &) {
        CloseFile(true);
        return noMemoryForView();
    }
    return {};
}

void CView::SetOpenControl(const COpenControl &control)
{
    openControl = control;
}

CError CView::Close(bool freeCache)
{
    const std::shared_ptr<xrv::ViewEngine> engine = d->engine();
    if (engine) {
        if (engine->isWorkerThread())
            return xrv::invalidArgument("A view cannot be closed from within its own refresh callback.");
        d->closing = true;
        engine->stop();
        d->setEngine(nullptr);
    }
    d->tables.clear();
    CloseFile(freeCache);
    d->closing = false;
    return {};
}

CError CView::Reconnect()
{
    const std::shared_ptr<xrv::ViewEngine> engine = d->engine();
    if (!engine)
        return xrv::notOpen();
    xrv::ByteSource &source = SharedFile()->source();
    CError condition = source.condition();
    if (condition.GetErrorNumber() != PLK_ERR_CONNECTION_LOST)
        return condition;
    source.reconnect(engine->isProgressive()); // lines of the others are waited for
    engine->restart();
    return {};
}

CError CView::SetView(int bandCount, const int *bands, int width, int height, double x1, double y1, double x2,
                      double y2)
{
    const std::shared_ptr<xrv::ViewEngine> engine = d->engine();
    if (!engine)
        return xrv::notOpen();
    const xrv::ViewArguments arguments{bandCount, bands, width, height, {x1, y1, x2, y2}};
    if (CError error = arguments.check(SharedFile()->bandMap().bands().size()))
        return error;
    try {
        xrv::ViewRequest request;
        if (CError error = d->makeRequest(arguments, &request))
            return error;
        engine->setView(std::move(request));
    } catch (const std::bad_alloc &) {
        return noMemoryForView();
    }
    return SharedFile()->source().condition();
}

void CView::CancelReads()
{
    if (const std::shared_ptr<xrv::ViewEngine> engine = d->engine())
        engine->cancelReads();
}

PLKReadStatus CView::ReadLineBGRA(void *line)
{
    if (line == nullptr) {
        d->setError(xrv::invalidArgument("There is no buffer for the line."));
        return PLK_READ_FAILED;
    }
    xrv::LineTarget target;
    target.bgra = line;
    target.autoscaleOpacity = parametersDecompress.IsAutoscaleOpacitybandUpEnabled();
    return d->readLine(target);
}

PLKReadStatus CView::ReadLineBIL(PLKCellType type, void *const *lines)
{
    if (lines == nullptr || type < PLKCT_UINT8 || type > PLKCT_DOUBLE) {
        d->setError(xrv::invalidArgument("There are no buffers for the line, or their type is none."));
        return PLK_READ_FAILED;
    }
    xrv::LineTarget target;
    target.type = type;
    target.lines = lines;
    target.autoscaleOpacity = parametersDecompress.IsAutoscaleOpacitybandUpEnabled();
    return d->readLine(target);
}

PLKReadStatus CView::ReadLineBIL(std::uint8_t *const *lines, PLKCellType type)
{
    if (lines == nullptr)
        return ReadLineBIL(type, nullptr);
    void *const buffers[xrv::ViewArguments::kMaxBands] = {lines[0], lines[1], lines[2], lines[3]};
    return ReadLineBIL(type, buffers);
}

bool CView::IsProgressive() const
{
    const std::shared_ptr<xrv::ViewEngine> engine = d->engine();
    return engine && engine->isProgressive();
}

bool CView::IsViewSet() const
{
    const std::shared_ptr<xrv::ViewEngine> engine = d->engine();
    return engine && engine->isViewSet();
}

PLKSetViewInfo CView::GetSetViewInfo() const
{
    const std::shared_ptr<xrv::ViewEngine> engine = d->engine();
    return engine ? engine->viewInfo() : PLKSetViewInfo{};
}

bool CView::IsReadCancelPending() const
{
    const std::shared_ptr<xrv::ViewEngine> engine = d->engine();
    return engine && engine->isCancelPending();
}

bool CView::IsClosePending() const
{
    return d->closing;
}

CError CView::GetLastError() const
{
    const std::shared_ptr<xrv::ViewEngine> engine = d->engine();
    const CError error = engine ? engine->lastError() : CError();
    return error ? error : d->error();
}

signed char CView::GetPercentComplete() const
{
    const std::shared_ptr<xrv::ViewEngine> engine = d->engine();
    return static_cast<signed char>(engine ? engine->percent() : 100);
}

std::uint64_t CView::GetAllBlocksAvailable() const
{
    const std::shared_ptr<xrv::ViewEngine> engine = d->engine();
    return engine ? engine->cacheTiles().available : 0;
}

std::uint64_t CView::GetAllBlocksInView() const
{
    const std::shared_ptr<xrv::ViewEngine> engine = d->engine();
    return engine ? engine->cacheTiles().inView : 0;
}

void CView::RefreshUpdate(PLKSetViewInfo *)
{
}

PLKReadStatus CView::RefreshPass(PLKSetViewInfo *info)
{
    RefreshUpdate(info);
    return PLK_READ_SUCCESS;
}

} // namespace PLK
