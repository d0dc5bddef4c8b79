#include "mappedreader.h"

#include "base/planerow.h"
#include "decode/transform/planeops.h"

#include <algorithm>
#include <cstring>

namespace xrv {

using PLK::CError;

namespace {

Plane *find(std::vector<Plane> *planes, int component)
{
    const auto found = std::find_if(planes->begin(), planes->end(),
                                    [component](const Plane &plane) { return plane.component == component; });
    return found == planes->end() ? nullptr : &*found;
}

/// Row \a y of \a plane in 32 bits.
void readBits(const Plane &plane, std::int64_t y, std::vector<std::int32_t> *row)
{
    withRow(plane, y, [row](const auto *cells) {
        for (std::size_t i = 0; i < row->size(); ++i)
            (*row)[i] = bitsOfCell(cells[i]);
    });
}

/// From codes to cells, row by row.
class RowMaker
{
public:
    /// Planes without cells of the same places are null.
    RowMaker(const CellMapping &mapping, const Plane &high, const Plane *low, const Plane *opacity)
        : mapping(mapping)
        , high(high)
        , low(low)
        , opacity(opacity)
        , highRow(static_cast<std::size_t>(high.rect.width()))
        , lowRow(highRow.size(), mapping.lowBits > 0 ? std::int32_t(1) << (mapping.lowBits - 1) : 0)
        , opacityRow(highRow.size())
    {
    }

    void make(std::int64_t y, std::uint8_t *cells)
    {
        readBits(high, y, &highRow);
        if (low)
            readBits(*low, y, &lowRow);
        for (std::size_t i = 0; i < highRow.size(); ++i)
            highRow[i] = mapping.cellOf(static_cast<std::uint32_t>(highRow[i]) << mapping.lowBits |
                                        static_cast<std::uint32_t>(lowRow[i]));
        if (opacity && mapping.hidden) {
            readBits(*opacity, y, &opacityRow);
            for (std::size_t i = 0; i < highRow.size(); ++i)
                if (opacityRow[i] == 0)
                    highRow[i] = *mapping.hidden;
        }
        std::memcpy(cells, highRow.data(), highRow.size() * sizeof highRow.front());
    }

private:
    const CellMapping &mapping;
    const Plane &high;
    const Plane *low, *opacity;
    std::vector<std::int32_t> highRow, lowRow, opacityRow;
};

} // namespace

MappedReader::MappedReader(std::unique_ptr<RasterReader> codeReader, std::vector<MappedComponent> mappedComponents)
    : codes(std::move(codeReader))
    , components(std::move(mappedComponents))
    , raster(codes->info())
{
    raster.components.resize(std::min(components.size(), raster.components.size()));
    auto next = static_cast<int>(components.size());
    for (std::size_t i = 0; i < raster.components.size(); ++i) {
        const CellMapping &mapping = components[i].mapping;
        lowComponents.push_back(mapping.lowBits > 0 ? next++ : -1);
        if (!mapping.isMapped())
            continue;
        ComponentInfo &info = raster.components[i];
        info.bits = 32;
        info.isSigned = mapping.isFloat() || components[i].isSigned;
        info.sampleType = mapping.isFloat() ? SampleType::Float
                          : info.isSigned   ? SampleType::Int32
                                            : SampleType::UInt32;
    }
}

/// All components on one grid, and of the depths that the mappings need.
bool MappedReader::isWellMade() const
{
    const std::vector<ComponentInfo> &all = codes->info().components;
    std::size_t expected = components.size();
    for (const MappedComponent &component : components)
        expected += component.mapping.lowBits > 0 ? 1 : 0;
    const auto isOnOneGrid = [&](const ComponentInfo &info) {
        return info.stepX == all.front().stepX && info.stepY == all.front().stepY;
    };
    if (all.size() != expected || !std::all_of(all.begin(), all.end(), isOnOneGrid))
        return false;
    for (std::size_t i = 0; i < components.size(); ++i) {
        const CellMapping &mapping = components[i].mapping;
        const auto holds = [&](std::size_t component, int bits) {
            return bits > 0 && all[component].bits >= bits && !all[component].isSigned;
        };
        if (mapping.isMapped() && !holds(i, mapping.bits() - mapping.lowBits))
            return false;
        if (mapping.lowBits > 0 && !holds(static_cast<std::size_t>(lowComponents[i]), mapping.lowBits))
            return false;
    }
    return true;
}

std::unique_ptr<RasterReader> MappedReader::make(std::unique_ptr<RasterReader> codes,
                                                 std::vector<MappedComponent> components)
{
    std::unique_ptr<MappedReader> made(new MappedReader(std::move(codes), std::move(components)));
    return made->isWellMade() ? std::move(made) : nullptr;
}

ReadRequest MappedReader::requestOfCodes(const ReadRequest &request) const
{
    ReadRequest result = request;
    const auto add = [&result](int component) {
        if (std::find(result.components.begin(), result.components.end(), component) == result.components.end())
            result.components.push_back(component);
    };
    for (const int component : request.components) {
        const int low = lowComponents[static_cast<std::size_t>(component)];
        if (low >= 0 && request.level == 0)
            add(low);
        if (mapping(component).hidden)
            add(static_cast<int>(components.size()) - 1);
    }
    return result;
}

CError MappedReader::read(const ReadRequest &request, ReadResult *result)
{
    ReadResult coded;
    if (CError error = codes->read(requestOfCodes(request), &coded))
        return error;
    result->damaged = coded.damaged;
    result->damage = std::move(coded.damage);
    result->planes.clear();
    for (const int component : request.components)
        if (mapping(component).isMapped())
            result->planes.push_back(planeOf(component, request.level, &coded.planes));
        else
            result->planes.push_back(*find(&coded.planes, component)); // others may need it, too
    return {};
}

Plane MappedReader::planeOf(int component, int level, std::vector<Plane> *planes) const
{
    const Plane &high = *find(planes, component);
    Plane plane = makePlane(component, high.rect, raster.components[static_cast<std::size_t>(component)].sampleType);
    const auto sameplaced = [&](int other) {
        const Plane *found = other >= 0 ? find(planes, other) : nullptr;
        return found && found->rect == high.rect ? found : nullptr;
    };
    const Plane *low = level == 0 ? sameplaced(lowComponents[static_cast<std::size_t>(component)]) : nullptr;
    const Plane *opacity = mapping(component).hidden ? sameplaced(static_cast<int>(components.size()) - 1) : nullptr;
    if (plane.rect.isEmpty())
        return plane;
    RowMaker rows(mapping(component), high, low, opacity);
    const auto rowBytes = static_cast<std::size_t>(high.rect.width()) * sizeof(std::int32_t);
    for (std::int64_t y = high.rect.y0; y < high.rect.y1; ++y)
        rows.make(y, plane.bytes.data() + static_cast<std::size_t>(y - high.rect.y0) * rowBytes);
    return plane;
}

CError MappedReader::prefetch(const std::vector<ReadRequest> &requests)
{
    std::vector<ReadRequest> coded;
    for (const ReadRequest &request : requests)
        coded.push_back(requestOfCodes(request));
    return codes->prefetch(coded);
}

} // namespace xrv
