#include "imagesample.h"

#include "tileencoder.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace xrv {

using PLK::CError;

namespace {

constexpr std::uint64_t kFewPieces = 96; ///< smaller ones are taken where fewer would fit
constexpr std::uint32_t kMaxPiece = 256, kSmallestPiece = 64;

std::size_t bytesPerCell(const XrvBand &band)
{
    return band.bits > 8 ? 2 : 1;
}

std::uint64_t bytesPerColumn(const std::vector<XrvBand> &bands)
{
    std::uint64_t bytes = 0;
    for (const XrvBand &band : bands)
        bytes += bytesPerCell(band);
    return bytes;
}

/// A number from 0 to below 1 that is different for each \a i and evenly spread over any run of them (the multiples of
/// the golden ratio).
double scattered(std::uint64_t i)
{
    return std::fmod(static_cast<double>(i) * 0.6180339887498949 + 0.5, 1.0);
}

template <typename Cell> std::uint8_t *packCells(const std::vector<std::int32_t> &cells, std::uint8_t *out)
{
    for (const std::int32_t cell : cells) {
        const auto narrow = static_cast<Cell>(cell);
        std::memcpy(out, &narrow, sizeof narrow);
        out += sizeof narrow;
    }
    return out;
}

template <typename Cell> const std::uint8_t *unpackCells(const std::uint8_t *in, std::size_t count, std::int32_t *out)
{
    for (std::size_t i = 0; i < count; ++i, in += sizeof(Cell)) {
        Cell cell;
        std::memcpy(&cell, in, sizeof cell);
        out[i] = cell;
    }
    return in;
}

} // namespace

ImageSample::ImageSample(const ImageDescription &image, TileCoding imageCoding, std::uint64_t mostBytes)
    : coding(std::move(imageCoding))
{
    const std::uint64_t mostCells = mostBytes / bytesPerColumn(coding.bands);
    isWhole = std::uint64_t(image.width) * image.height <= mostCells;
    if (!isWhole) {
        coding.tileSize = std::min(coding.tileSize, kMaxPiece);
        while (coding.tileSize > kSmallestPiece && mostCells / coding.tileSize / coding.tileSize < kFewPieces)
            coding.tileSize /= 2;
    }
    spread(image, static_cast<std::int64_t>(mostCells / coding.tileSize / coding.tileSize));
    packed.resize(pieces.size());
}

/// A piece at a random place in each field of a grid, at \a most pieces, or all there are.
void ImageSample::spread(const ImageDescription &image, std::int64_t most)
{
    const std::int64_t size = coding.tileSize;
    const std::int64_t across = (image.width + size - 1) / size, down = (image.height + size - 1) / size;
    const double share = std::sqrt(static_cast<double>(most) / static_cast<double>(across * down));
    const auto fitting = static_cast<std::int64_t>(share * static_cast<double>(across));
    const std::int64_t columns = isWhole ? across : std::clamp<std::int64_t>(fitting, 1, across);
    const std::int64_t rows = isWhole ? down : std::clamp<std::int64_t>(most / columns, 1, down);
    std::uint64_t number = 0;
    const auto place = [&number](std::int64_t field, std::int64_t fields, std::int64_t places) {
        const std::int64_t first = field * places / fields, end = (field + 1) * places / fields;
        return first + static_cast<std::int64_t>(scattered(++number) * static_cast<double>(end - first));
    };
    for (std::int64_t row = 0; row < rows; ++row) {
        const std::int64_t y = size * place(row, rows, down);
        for (std::int64_t column = 0; column < columns; ++column) {
            const std::int64_t x = size * place(column, columns, across);
            pieces.push_back(IntRect{x, y, x + size, y + size}.intersected({0, 0, image.width, image.height}));
        }
    }
}

CError ImageSample::read(ImageSource &source, const CancelFlag &cancel, const std::function<void(double)> &progress)
{
    // The source may have an opacity band, which is coded apart.
    std::vector<std::vector<std::int32_t>> planes(std::max(coding.bands.size(), source.description().bands.size()));
    std::vector<std::int32_t *> places;
    for (std::size_t piece = 0; piece < pieces.size(); ++piece) {
        if (cancel.isRaised())
            return {PLK_ERR_CANCELLED, "The compression was cancelled."};
        places.clear();
        for (std::vector<std::int32_t> &plane : planes) {
            plane.resize(static_cast<std::size_t>(cells(piece)));
            places.push_back(plane.data());
        }
        if (CError error = source.read(pieces[piece], places))
            return error;
        keep(planes, &packed[piece]);
        progress(static_cast<double>(piece + 1) / static_cast<double>(pieces.size()));
    }
    return {};
}

void ImageSample::keep(const std::vector<std::vector<std::int32_t>> &planes, Bytes *out) const
{
    out->resize(planes.front().size() * static_cast<std::size_t>(bytesPerColumn(coding.bands)));
    std::uint8_t *place = out->data();
    for (std::size_t band = 0; band < coding.bands.size(); ++band)
        place = bytesPerCell(coding.bands[band]) == 1 ? packCells<std::uint8_t>(planes[band], place)
                                                      : packCells<std::uint16_t>(planes[band], place);
}

void ImageSample::unpack(const Bytes &in, const std::vector<std::int32_t *> &planes, std::size_t count) const
{
    const std::uint8_t *place = in.data();
    for (std::size_t band = 0; band < planes.size(); ++band) {
        const bool isSigned = coding.bands[band].isSigned;
        if (bytesPerCell(coding.bands[band]) == 1)
            place = isSigned ? unpackCells<std::int8_t>(place, count, planes[band])
                             : unpackCells<std::uint8_t>(place, count, planes[band]);
        else
            place = isSigned ? unpackCells<std::int16_t>(place, count, planes[band])
                             : unpackCells<std::uint16_t>(place, count, planes[band]);
    }
}

double ImageSample::excessBytes() const
{
    constexpr double kExcessOfBand = 50.0; // as measured; 40 to 70 at low rates
    return isWhole ? 0.0 : kExcessOfBand * static_cast<double>(coding.bands.size());
}

CError ImageSample::encode(std::size_t piece, double step, std::uint64_t *bytes) const
{
    TileCoding own = coding;
    own.step = step;
    const std::unique_ptr<TileEncoder> encoder = TileEncoder::make(own, pieces[piece]);
    unpack(packed[piece], encoder->planes(), static_cast<std::size_t>(cells(piece)));
    EncodedTile tile;
    if (CError error = encoder->encode(&tile))
        return error;
    *bytes = 0;
    for (const EncodedTile::Part &part : tile.parts)
        *bytes += part.packets.size();
    return {};
}

} // namespace xrv
