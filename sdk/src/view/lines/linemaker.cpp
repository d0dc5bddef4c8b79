#include "linemaker.h"

#include "pixelrow.h"

#include "view/sampling/convertingsampler.h"

#include <algorithm>
#include <cstring>

namespace xrv {

namespace {

/// Stands in for the planes of components that have no cells at a level, as those of narrow images that lie between two
/// samples of it (ISO/IEC 15444-1 B.5). The samplers replace what is missing by the nearest cell, so there must be one.
const Plane &blankPlane()
{
    static const Plane plane{0, {0, 0, 1, 1}, SampleType::UInt8, {0}};
    return plane;
}

/// \a bands, each once, in the order of their first appearance.
std::vector<int> eachOnce(const std::vector<int> &bands)
{
    std::vector<int> distinct;
    for (int band : bands)
        if (std::find(distinct.begin(), distinct.end(), band) == distinct.end())
            distinct.push_back(band);
    return distinct;
}

} // namespace

LineMaker::LineMaker(const RasterInfo &raster, const BandMap &bandMap, RequestPtr request, int level)
    : raster(raster)
    , bandMap(bandMap)
    , request(std::move(request))
    , axisX(this->request->datasetRect.left, this->request->datasetRect.right, this->request->width, raster.width)
    , axisY(this->request->datasetRect.top, this->request->datasetRect.bottom, this->request->height, raster.height)
{
    // Grey pictures name one band three times: it is sampled once, and its row is used three times.
    distinctBands = eachOnce(this->request->bands);
    requestEntry.resize(distinctBands.size());
    for (std::size_t i = 0; i < this->request->bands.size(); ++i) {
        const auto found = std::find(distinctBands.begin(), distinctBands.end(), this->request->bands[i]);
        distinctOf.push_back(static_cast<std::size_t>(found - distinctBands.begin()));
        requestEntry[distinctOf.back()] = i;
    }
    opacity = opacityEntry();
    isPremultiplied = opacity >= 0 && bandMap.bands()[distinctBands[static_cast<std::size_t>(opacity)]].isPremultiplied;
    const auto count = static_cast<std::size_t>(axisX.insideCount());
    cellRows.assign(distinctBands.size(), std::vector<std::int32_t>(count));
    byteRows.assign(distinctBands.size(), std::vector<std::uint8_t>(count));
    for (std::vector<std::int32_t> &row : cellRows)
        cellRowPointers.push_back(row.data());
    measure(level);
    chooseSampler(level);
}

/// The last of two or four bands is the opacity of the others, if it is an opacity band and none of them.
int LineMaker::opacityEntry() const
{
    const std::size_t size = request->bands.size();
    if (size != 2 && size != 4)
        return -1;
    const Band &band = bandMap.bands()[static_cast<std::size_t>(request->bands.back())];
    const bool isAlone = std::count(request->bands.begin(), request->bands.end(), request->bands.back()) == 1;
    return band.isOpacity && isAlone && !band.isSigned ? static_cast<int>(distinctOf.back()) : -1;
}

/// What a row of all planes takes in bytes, and how many of their rows a line needs. Three columns more than the pixels
/// cover, as linesFor() takes three rows more: planes reach a cell beyond what was asked for on either side, where
/// interpolation needs it, and their edges are rounded outwards.
void LineMaker::measure(int level)
{
    for (int component : request->components) {
        const CellGrid columns(raster, component, level, CellGrid::Axis::X);
        const CellGrid rows(raster, component, level, CellGrid::Axis::Y);
        const auto size = sampleSize(raster.components[static_cast<std::size_t>(component)].sampleType);
        planeBytesPerRow +=
            (axisX.insideCount() * axisX.pitch() / columns.cellSpan() + 3.0) * static_cast<double>(size);
        rowsPerLine = std::max(rowsPerLine, axisY.pitch() / rows.cellSpan());
    }
}

/// Three ways from cells to bands, the cheapest that is right:
/// - Every pixel is one cell, and the bands are components: cells go through a table to bytes (makeBytes()).
/// - Each component is brought to the pixels by itself and the bands are made there. That is right for subsampled
///   components, and for everything that is not interpolated.
/// - The bands are made from the cells, and these are interpolated, where the order matters: between two entries of a
///   palette there is no third one, and colours under an opacity band count by what is visible of them.
void LineMaker::chooseSampler(int level)
{
    const bool oneGrid = onOneGrid(level);
    // Numbers of palette entries must not be mixed; on different grids that leaves picking.
    const bool interpolate = request->resampleMethod == PLK_RESAMPLE_BILINEAR && (oneGrid || !bandMap.hasPalette());
    std::vector<ComponentSampler> samplers = componentSamplers(level, interpolate);
    const bool isPointwise = std::all_of(samplers.begin(), samplers.end(), [](auto &s) { return s.isPointwise(); });
    const bool isWeighted = opacity >= 0 && !isPremultiplied;
    if (!isPointwise && oneGrid && (bandMap.hasPalette() || isWeighted)) {
        const CellGrid columns(raster, request->components.front(), level, CellGrid::Axis::X);
        const CellGrid rows(raster, request->components.front(), level, CellGrid::Axis::Y);
        sampler = std::make_unique<ConvertingSampler>(bandMap, distinctBands, isWeighted ? opacity : -1,
                                                      std::make_shared<ColumnTaps>(columns, axisX, true),
                                                      RowTaps(rows, axisY, true));
        return;
    }
    auto resampling = std::make_unique<ResamplingSampler>(bandMap, distinctBands, request->components,
                                                          std::move(samplers), axisX.insideCount());
    byteSampler = isPointwise && resampling->isDirect() && !isPremultiplied ? resampling.get() : nullptr;
    sampler = std::move(resampling);
}

std::vector<ComponentSampler> LineMaker::componentSamplers(int level, bool interpolate) const
{
    // Usually all components lie on one grid: which columns the pixels come from is then worked out once.
    std::vector<ComponentSampler> samplers;
    std::vector<std::pair<CellGrid, std::shared_ptr<ColumnTaps>>> shared;
    for (int component : request->components) {
        const CellGrid columns(raster, component, level, CellGrid::Axis::X);
        const CellGrid rows(raster, component, level, CellGrid::Axis::Y);
        auto same = std::find_if(shared.begin(), shared.end(), [&](auto &entry) { return entry.first == columns; });
        if (same == shared.end())
            same = shared.emplace(shared.end(), columns, std::make_shared<ColumnTaps>(columns, axisX, interpolate));
        samplers.emplace_back(same->second, RowTaps(rows, axisY, interpolate));
    }
    return samplers;
}

bool LineMaker::onOneGrid(int level) const
{
    const auto grid = [&](int component, CellGrid::Axis axis) { return CellGrid(raster, component, level, axis); };
    const int first = request->components.front();
    return std::all_of(request->components.begin(), request->components.end(), [&](int component) {
        return grid(component, CellGrid::Axis::X) == grid(first, CellGrid::Axis::X) &&
               grid(component, CellGrid::Axis::Y) == grid(first, CellGrid::Axis::Y);
    });
}

/// measure() backwards.
int LineMaker::linesFor(std::size_t budget) const
{
    const double rows = static_cast<double>(budget) / planeBytesPerRow - 3.0;
    const double lines = rows / std::max(rowsPerLine, 1e-9);
    return static_cast<int>(std::clamp(lines, 1.0, static_cast<double>(request->height)));
}

void LineMaker::bind(const std::vector<Plane> &newPlanes)
{
    planes.clear();
    for (const Plane &plane : newPlanes)
        planes.push_back(plane.rect.isEmpty() ? &blankPlane() : &plane);
    sampler->bind(planes);
}

void LineMaker::makeCells(int y)
{
    sampler->sample(y, cellRowPointers.data());
    if (isPremultiplied)
        divideOutOpacity();
}

/// Colours under premultiplied opacity (channel type 2, ISO/IEC 15444-1 I.5.3.6) are stored as what is left of them;
/// pixels carry colour and opacity apart. After interpolation, which is right for what is stored: so nothing that is
/// hidden shines through. Rounded to the nearest, and cut off where damage or loss made a colour brighter than its
/// opacity allows.
void LineMaker::divideOutOpacity()
{
    const auto alpha = static_cast<std::size_t>(opacity);
    const std::int64_t full =
        (std::int64_t(1) << bandMap.bands()[static_cast<std::size_t>(distinctBands[alpha])].bits) - 1;
    for (std::size_t band = 0; band < cellRows.size(); ++band) {
        const Band &info = bandMap.bands()[static_cast<std::size_t>(distinctBands[band])];
        if (band == alpha || info.isSigned || info.kind != CellKind::Whole)
            continue;
        const std::int64_t highest = (std::int64_t(1) << std::min<int>(info.bits, 31)) - 1;
        for (std::size_t i = 0; i < cellRows[band].size(); ++i) {
            const std::int64_t visible = cellRows[alpha][i];
            const std::int64_t cell = visible > 0 ? (cellRows[band][i] * full + visible / 2) / visible : 0;
            cellRows[band][i] = static_cast<std::int32_t>(std::min(cell, highest));
        }
    }
}

const ByteMap &LineMaker::byteMap(std::size_t distinct) const
{
    return *(autoscaleOpacity ? request->autoscaledByteMaps : request->byteMaps)[requestEntry[distinct]];
}

void LineMaker::makeBytes(int y)
{
    if (byteSampler == nullptr)
        makeCells(y);
    for (std::size_t band = 0; band < byteRows.size(); ++band) {
        const ByteMap &map = byteMap(band);
        if (byteSampler != nullptr) {
            byteSampler->sampleBytes(y, band, map, byteRows[band].data());
            continue;
        }
        map.convertRow(cellRows[band].data(), byteRows[band].size(), byteRows[band].data());
    }
}

void LineMaker::makeBgra(int y, std::uint8_t *line)
{
    const std::size_t before = 4u * static_cast<std::size_t>(axisX.insideBegin());
    const std::size_t after = 4u * static_cast<std::size_t>(axisX.insideEnd()),
                      all = 4u * static_cast<std::size_t>(request->width);
    if (!isInside(y)) { // 0 is transparent, here and on either side of the image
        std::memset(line, 0, all);
        return;
    }
    makeBytes(y);
    std::memset(line, 0, before);
    std::memset(line + after, 0, all - after);
    const auto entry = [this](std::size_t i) { return byteRows[distinctOf[i]].data(); };
    // One or two bands are grey in all three colours; the last of two or four is the opacity, whatever kind of band it
    // is.
    const bool isColour = distinctOf.size() >= 3;
    const std::uint8_t *alpha = distinctOf.size() % 2 == 0 ? entry(distinctOf.size() - 1) : nullptr;
    interleaveBgra(entry(isColour ? 2 : 0), entry(isColour ? 1 : 0), entry(0), alpha, axisX.insideCount(),
                   line + before);
}

template <typename Cell> void LineMaker::writeCells(void *const *lines) const
{
    const auto before = static_cast<std::size_t>(axisX.insideBegin());
    const auto width = static_cast<std::size_t>(request->width);
    for (std::size_t entry = 0; entry < distinctOf.size(); ++entry) {
        auto *line = static_cast<std::uint8_t *>(lines[entry]);
        std::memset(line, 0, width * sizeof(Cell));
        const Band &band = bandMap.bands()[static_cast<std::size_t>(request->bands[entry])];
        writeCellsAs<Cell>(cellRows[distinctOf[entry]], band.kind, line + before * sizeof(Cell));
    }
}

void LineMaker::makeBil(int y, PLKCellType type, void *const *lines)
{
    if (!isInside(y)) {
        for (std::size_t entry = 0; entry < distinctOf.size(); ++entry)
            std::memset(lines[entry], 0, static_cast<std::size_t>(request->width) * cellSize(type));
        return;
    }
    if (type == PLKCT_UINT8) { // through the transforms, as pictures are; other types get the cells themselves
        makeBytes(y);
        for (std::size_t entry = 0; entry < distinctOf.size(); ++entry) {
            auto *line = static_cast<std::uint8_t *>(lines[entry]);
            std::memset(line, 0, static_cast<std::size_t>(request->width));
            std::memcpy(line + axisX.insideBegin(), byteRows[distinctOf[entry]].data(),
                        byteRows[distinctOf[entry]].size());
        }
        return;
    }
    makeCells(y);
    switch (type) {
    case PLKCT_UINT16:
        return writeCells<std::uint16_t>(lines);
    case PLKCT_UINT32:
        return writeCells<std::uint32_t>(lines);
    case PLKCT_UINT64:
        return writeCells<std::uint64_t>(lines);
    case PLKCT_INT8:
        return writeCells<std::int8_t>(lines);
    case PLKCT_INT16:
        return writeCells<std::int16_t>(lines);
    case PLKCT_INT32:
        return writeCells<std::int32_t>(lines);
    case PLKCT_INT64:
        return writeCells<std::int64_t>(lines);
    case PLKCT_FLOAT:
        return writeCells<float>(lines);
    case PLKCT_DOUBLE:
        return writeCells<double>(lines);
    case PLKCT_UINT8:
        return;
    }
}

} // namespace xrv
