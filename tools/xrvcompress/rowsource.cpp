#include "rowsource.h"

#include <algorithm>
#include <cstring>

using PLK::CError;
using namespace xrv;

namespace {

template <typename Cell>
void spread(const std::uint8_t *row, const IntRect &rect, std::size_t bands, std::size_t band, std::int32_t *out)
{
    for (std::int64_t x = rect.x0; x < rect.x1; ++x) {
        Cell cell;
        std::memcpy(&cell, row + (static_cast<std::size_t>(x) * bands + band) * sizeof cell, sizeof cell);
        *out++ = cell;
    }
}

void spreadRow(const std::uint8_t *row, const IntRect &rect, std::size_t bands, std::size_t band, std::size_t bytes,
               bool isSigned, std::int32_t *out)
{
    if (bytes == 1)
        isSigned ? spread<std::int8_t>(row, rect, bands, band, out) : spread<std::uint8_t>(row, rect, bands, band, out);
    else
        isSigned ? spread<std::int16_t>(row, rect, bands, band, out)
                 : spread<std::uint16_t>(row, rect, bands, band, out);
}

} // namespace

std::size_t RowSource::bytesPerCell() const
{
    return std::any_of(image.bands.begin(), image.bands.end(), [](const XrvBand &band) { return band.bits > 8; }) ? 2
                                                                                                                  : 1;
}

CError RowSource::keepRows(std::int64_t first, std::int64_t end)
{
    kept.resize(static_cast<std::size_t>(end - first) * rowBytes());
    if (first > keptEnd)
        if (CError error = skipRows(first - keptEnd))
            return error;
    for (std::int64_t y = std::max(first, keptEnd); y < end; ++y)
        if (CError error = readRow(kept.data() + static_cast<std::size_t>(y - first) * rowBytes()))
            return error;
    keptFirst = first;
    keptEnd = end;
    return {};
}

CError RowSource::skipRows(std::int64_t count)
{
    Bytes dropped(rowBytes());
    for (; count > 0; --count)
        if (CError error = readRow(dropped.data()))
            return error;
    return {};
}

CError RowSource::rewind()
{
    keptFirst = keptEnd = 0;
    return restart();
}

CError RowSource::read(const IntRect &rect, const std::vector<std::int32_t *> &planes)
{
    if (rect.y0 < keptFirst)
        return {PLK_ERR_INVALID_ARGUMENT, "The rows of this image come from top to bottom."};
    if (rect.y1 > keptEnd)
        if (CError error = keepRows(rect.y0, rect.y1))
            return error;
    for (std::int64_t y = rect.y0; y < rect.y1; ++y) {
        const std::uint8_t *row = kept.data() + static_cast<std::size_t>(y - keptFirst) * rowBytes();
        for (std::size_t band = 0; band < planes.size(); ++band)
            spreadRow(row, rect, planes.size(), band, bytesPerCell(), image.bands[band].isSigned,
                      planes[band] + (y - rect.y0) * rect.width());
    }
    return {};
}
