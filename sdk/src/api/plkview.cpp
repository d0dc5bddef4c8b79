#include <xrv60/plkview.h>

#include "config/configuration.h"
#include "file/openfile.h"
#include "io/filenames.h"
#include "statistics/statistics.h"
#include "view/bandtables.h"
#include "view/viewengine.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <new>

namespace PLK {

namespace {

constexpr int kMaxSize = 65535;
constexpr int kMaxBands = 4;

CError invalid(const char *sentence)
{
    return {PLK_ERR_INVALID_ARGUMENT, sentence};
}

CError notOpen()
{
    return {PLK_ERR_NOT_OPEN, "No file is open."};
}

CError outOfMemory()
{
    return {PLK_ERR_OUT_OF_MEMORY, "There is not enough memory for this view."};
}

bool areFinite(std::initializer_list<double> numbers)
{
    return std::all_of(numbers.begin(), numbers.end(), [](double number) { return std::isfinite(number); });
}

CError checkView(std::size_t fileBands, int bandCount, const int *bands, int width, int height)
{
    if (bandCount < 1 || bandCount > kMaxBands || bands == nullptr)
        return invalid("A view shows one to four bands.");
    for (int i = 0; i < bandCount; ++i)
        if (bands[i] < 0 || static_cast<std::size_t>(bands[i]) >= fileBands)
            return invalid("The view asks for a band that the file does not have.");
    if (width < 1 || height < 1 || width > kMaxSize || height > kMaxSize)
        return invalid("The size of a view is 1 to 65535 pixels either way.");
    return {};
}

} // namespace

/// What a view consists of, and the way from the worker's passes to the virtual callback.
class CView::Private : public xrv::PassListener
{
public:
    explicit Private(CView *owner)
        : owner(owner)
    {
    }

    PLKReadStatus passReady(PLKSetViewInfo *info) override { return owner->RefreshPass(info); }

    std::shared_ptr<xrv::ViewEngine> engine() const
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return openEngine;
    }
    void setEngine(std::shared_ptr<xrv::ViewEngine> engine)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        openEngine.swap(engine);
    }
    void setError(const CError &error)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        lastError = error;
    }
    CError error() const
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return lastError;
    }

    PLKReadStatus readLine(const xrv::LineTarget &target);
    /// Everything of \a request that the view's parameters, its transforms and the configuration decide.
    void fillSettings(const std::vector<xrv::Band> &fileBands, xrv::ViewRequest *request);

    CView *const owner;
    xrv::BandTables tables;
    std::atomic<bool> closing{false};

private:
    mutable std::mutex mutex; ///< guards openEngine and lastError
    std::shared_ptr<xrv::ViewEngine> openEngine;
    CError lastError; ///< of a read while nothing was open, or that ran out of memory
};

PLKReadStatus CView::Private::readLine(const xrv::LineTarget &target)
{
    const std::shared_ptr<xrv::ViewEngine> open = engine();
    if (!open) {
        setError(notOpen());
        return PLK_READ_FAILED;
    }
    try {
        return open->readLine(target);
    } catch (const std::bad_alloc &) {
        open->setLastError(outOfMemory());
        return PLK_READ_FAILED;
    }
}

void CView::Private::fillSettings(const std::vector<xrv::Band> &fileBands, xrv::ViewRequest *request)
{
    for (int band : request->bands) {
        const xrv::Band &info = fileBands[static_cast<std::size_t>(band)];
        request->byteMaps.push_back(tables.mapOf(band, info, false));
        request->autoscaledByteMaps.push_back(tables.mapOf(band, info, true));
    }
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
        return outOfMemory();
    }
}

CError CView::Open(const CString &name, bool progressive, bool update)
{
    if (update)
        return invalid("Files cannot be opened for update.");
    if (const CError error = Close(false))
        return error;
    try {
        if (const CError error = OpenFileNamed(name, openControl))
            return error;
        const std::shared_ptr<xrv::OpenFile> &file = SharedFile();
        const xrv::ViewSource source{
            file, &file->reader(), &file->bandMap(), file->canBeDithered(), file->shownName(), file->faults()};
        d->setEngine(std::make_shared<xrv::ViewEngine>(source, progressive, *d));
    } catch (const std::bad_alloc &) {
        CloseFile(true);
        return outOfMemory();
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
            return invalid("A view cannot be closed from within its own refresh callback.");
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
        return notOpen();
    xrv::ByteSource &source = SharedFile()->source();
    const CError condition = source.condition();
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
        return notOpen();
    const std::vector<xrv::Band> &fileBands = SharedFile()->bandMap().bands();
    if (CError error = checkView(fileBands.size(), bandCount, bands, width, height))
        return error;
    if (!areFinite({x1, y1, x2, y2}) || x1 == x2 || y1 == y2)
        return invalid("The world rectangle of the view is empty or not finite.");
    try {
        xrv::ViewRequest request;
        request.width = width;
        request.height = height;
        request.worldRect = {x1, y1, x2, y2};
        xrv::EdgeRect &cells = request.datasetRect;
        if (CError error = ConvertWorldToDataset(x1, y1, &cells.left, &cells.top))
            return error;
        if (CError error = ConvertWorldToDataset(x2, y2, &cells.right, &cells.bottom))
            return error;
        if (!areFinite({cells.left, cells.top, cells.right, cells.bottom}) || cells.left == cells.right ||
            cells.top == cells.bottom)
            return invalid("The world rectangle of the view is too large or too small for this file.");
        request.bands.assign(bands, bands + bandCount);
        d->fillSettings(fileBands, &request);
        engine->setView(std::move(request));
    } catch (const std::bad_alloc &) {
        return outOfMemory();
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
        d->setError(invalid("There is no buffer for the line."));
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
        d->setError(invalid("There are no buffers for the line, or their type is none."));
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
    void *const buffers[kMaxBands] = {lines[0], lines[1], lines[2], lines[3]};
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
    return engine ? engine->blocks().available : 0;
}

std::uint64_t CView::GetAllBlocksInView() const
{
    const std::shared_ptr<xrv::ViewEngine> engine = d->engine();
    return engine ? engine->blocks().inView : 0;
}

CError CView::SetTransform(unsigned band, std::unique_ptr<API::CMinMaxTransform> transform)
{
    if (!d->engine())
        return notOpen();
    if (band >= SharedFile()->bandMap().bands().size() || !transform)
        return invalid("There is no such band, or no transform for it.");
    if (!areFinite({transform->GetMin(), transform->GetMax()}))
        return invalid("The limits of a transform must be finite.");
    try {
        d->tables.setRange(static_cast<int>(band), transform->GetMin(), transform->GetMax());
    } catch (const std::bad_alloc &) {
        return outOfMemory();
    }
    return {};
}

CError CView::ClearTransforms()
{
    if (!d->engine())
        return notOpen();
    d->tables.clear();
    return {};
}

CError CView::CalculateMinMaxTransforms(unsigned bandCount, const unsigned *bands,
                                        std::vector<std::unique_ptr<API::CMinMaxTransform>> *transforms, double percent,
                                        unsigned sampling)
{
    if (!d->engine())
        return notOpen();
    if (transforms == nullptr || (bandCount > 0 && bands == nullptr))
        return invalid("There are no bands to calculate transforms of, or no place for these.");
    if (!(percent > 0.0 && percent <= 100.0) || sampling < 1 || sampling > 100)
        return invalid("Transforms are calculated of 1 to 100 per cent of the cells.");
    try {
        const PLKFileStatistics *statistics = nullptr;
        if (CError error = SharedFile()->statistics().display(&statistics))
            return error;
        std::vector<std::unique_ptr<API::CMinMaxTransform>> found;
        for (unsigned i = 0; i < bandCount; ++i) {
            if (bands[i] >= statistics->nBands)
                return invalid("Transforms are asked for of a band that the file does not have.");
            const auto [lowest, highest] = xrv::clipRange(statistics->pBandStats[bands[i]], percent);
            found.push_back(std::make_unique<API::CMinMaxTransform>(lowest, highest));
        }
        transforms->swap(found);
    } catch (const std::bad_alloc &) {
        return outOfMemory();
    }
    return {};
}

CError CView::GetDefaultRGBABandList(std::vector<std::uint32_t> *bands) const
{
    if (!d->engine())
        return notOpen();
    if (bands == nullptr)
        return invalid("There is no place for the bands.");
    const std::vector<xrv::Band> &all = SharedFile()->bandMap().bands();
    std::vector<std::uint32_t> colours, opacity, named;
    for (std::uint32_t i = 0; i < all.size(); ++i)
        (all[i].isOpacity ? opacity : colours).push_back(i);
    if (colours.size() < 3)
        return {PLK_ERR_NOT_AVAILABLE, "The image has fewer than three bands of colour."};
    for (const char *name : {"Red", "Green", "Blue"}) {
        const auto isNamed = [&](std::uint32_t band) { return all[band].description == name; };
        const auto found = std::find_if(colours.begin(), colours.end(), isNamed);
        if (found != colours.end())
            named.push_back(*found);
    }
    if (named.size() < 3)
        named.assign(colours.begin(), colours.begin() + 3);
    if (!opacity.empty())
        named.push_back(opacity.back());
    bands->swap(named);
    return {};
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
