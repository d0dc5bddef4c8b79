#include "inputbudget.h"
#include "sourceparts.h"
#include "tiffhandle.h"

#include "geo/geotags.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>

using PLK::CError;
using namespace xrv;

namespace {

constexpr std::uint64_t kMaxTileBytes = 1u << 30;
constexpr std::uint64_t kBytesOfHandle = 256u << 10; ///< what libtiff takes for an open file
constexpr std::uint32_t kTagNoData = 42113;          ///< as GDAL writes it

/// A TIFF or GeoTIFF file with cells of 1 to 16 or 32 bits, or of 64 that are Floats as well: strips or tiles, bands
/// together or apart, and palettes, which become colours. Files in strips are read from top to bottom, those in tiles
/// piece by piece.
class TiffSource : public ImageSource
{
public:
    const ImageDescription &description() const override { return image; }

    CError open(const std::string &path, std::vector<std::string> *warnings)
    {
        name = path;
        if (!addHandle())
            return failed();
        TIFF *tiff = first();
        TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &image.width);
        TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &image.height);
        TIFFGetFieldDefaulted(tiff, TIFFTAG_BITSPERSAMPLE, &bits);
        TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLESPERPIXEL, &samples);
        TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLEFORMAT, &format);
        TIFFGetFieldDefaulted(tiff, TIFFTAG_PLANARCONFIG, &planar);
        if (TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &photometric) != 1)
            photometric = PHOTOMETRIC_MINISBLACK;
        if (CError error = check())
            return error;
        describe(warnings);
        readTags();
        completePlace(path, &image, warnings);
        return TIFFIsTiled(tiff) ? prepareTiles() : prepareRows();
    }

    CError read(const IntRect &rect, const std::vector<std::int32_t *> &planes) override
    {
        CError error = TIFFIsTiled(first()) ? readTiles(rect, planes) : readRows(rect, planes);
        return error || isExact ? error : inexact();
    }

    CError rewind() override
    {
        keptFirst = keptEnd = 0;
        return {};
    }

private:
    TIFF *first() const { return handles.front().get(); }
    bool isApart() const { return planar == PLANARCONFIG_SEPARATE && samples > 1; }
    bool isInBytes() const { return bits % 8 == 0 && bits != 24; } ///< else cells follow without gaps
    bool isFloat() const { return format == SAMPLEFORMAT_IEEEFP; }
    std::uint64_t bytesOf(std::uint64_t cells) const { return (cells * bits + 7) / 8; }
    /// Samples that lie together in one buffer.
    std::size_t samplesTogether() const { return isApart() ? 1 : samples; }

    bool addHandle()
    {
        handles.push_back(openTiff(name, &message));
        return handles.back() != nullptr;
    }
    CError failed() const
    {
        return {PLK_ERR_MALFORMED, "\"" + name + "\" cannot be read" + (message.empty() ? "." : ": " + message + ".")};
    }

    CError check()
    {
        if (image.width == 0 || image.height == 0 || samples == 0)
            return failed();
        if (CError error = checkCells())
            return error;
        std::uint16_t compression = COMPRESSION_NONE;
        TIFFGetFieldDefaulted(first(), TIFFTAG_COMPRESSION, &compression);
        if (!TIFFIsCODECConfigured(compression))
            return {PLK_ERR_UNSUPPORTED, "\"" + name + "\" is compressed in a way that this program cannot read."};
        if (photometric == PHOTOMETRIC_YCBCR) {
            if (compression != COMPRESSION_JPEG || isApart())
                return {PLK_ERR_UNSUPPORTED, "\"" + name + "\" has luma and chroma bands; they are not read."};
            TIFFSetField(first(), TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
            photometric = PHOTOMETRIC_RGB;
        }
        isPalette = photometric == PHOTOMETRIC_PALETTE && samples == 1 && format == SAMPLEFORMAT_UINT;
        return {};
    }

    CError checkCells() const
    {
        if (format != SAMPLEFORMAT_UINT && format != SAMPLEFORMAT_INT && !isFloat())
            return {PLK_ERR_UNSUPPORTED, "\"" + name + "\" has cells that are no real numbers."};
        if (isFloat() && bits != 32 && bits != 64)
            return {PLK_ERR_UNSUPPORTED, "\"" + name + "\" has floating-point cells of " + std::to_string(bits) +
                                             " bits; those of 32 and 64 are read."};
        const bool isRead = bits == 32 || (bits >= 1 && bits <= 16 && (format == SAMPLEFORMAT_UINT || isInBytes()));
        if (!isFloat() && !isRead)
            return {PLK_ERR_UNSUPPORTED, "\"" + name + "\" has cells of " + std::to_string(bits) +
                                             " bits; those of 1 to 16 and 32 bits are read, signed ones of 8, 16 and "
                                             "32."};
        return {};
    }
    CError inexact() const
    {
        return {PLK_ERR_UNSUPPORTED, "\"" + name +
                                         "\" has cells of 64 bits that a Float of 32 bits does not hold, such as " +
                                         std::to_string(inexactCell) + "; they cannot be written without loss."};
    }

    void describe(std::vector<std::string> *warnings)
    {
        std::uint16_t extraCount = 0, *extras = nullptr;
        TIFFGetFieldDefaulted(first(), TIFFTAG_EXTRASAMPLES, &extraCount, &extras);
        const bool hasAlpha = extraCount > 0 && extras && extras[extraCount - 1] != EXTRASAMPLE_UNSPECIFIED;
        image.isLastOpacity = hasAlpha && samples > 1 && bits <= 16;
        const int colours = samples - extraCount;
        const bool isRgb = isPalette || (photometric == PHOTOMETRIC_RGB && colours >= 3);
        const bool isGrey = (photometric == PHOTOMETRIC_MINISBLACK || photometric == PHOTOMETRIC_MINISWHITE) &&
                            samples - (image.isLastOpacity ? 1 : 0) == 1;
        image.colourSpace = isRgb ? PLK_COLORSPACE_SRGB : isGrey ? PLK_COLORSPACE_GREYSCALE : PLK_COLORSPACE_MULTIBAND;
        isInverted = isGrey && photometric == PHOTOMETRIC_MINISWHITE && format == SAMPLEFORMAT_UINT;
        const CellKind kind = isFloat()                                   ? CellKind::Float
                              : bits == 32 && format == SAMPLEFORMAT_UINT ? CellKind::Unsigned
                                                                          : CellKind::Whole;
        const std::uint16_t bandBits = isPalette ? 8 : isFloat() ? 32 : bits;
        const XrvBand band{static_cast<std::uint8_t>(bandBits), format != SAMPLEFORMAT_UINT, {}, kind};
        image.bands.assign(isPalette ? 3u : samples, band);
        nameBands(&image);
        if (isPalette)
            TIFFGetField(first(), TIFFTAG_COLORMAP, &palette[0], &palette[1], &palette[2]);
        isPalette = isPalette && palette[2];
        const bool isPlain = isRgb || isGrey || photometric == PHOTOMETRIC_MINISBLACK;
        if (!isPlain && warnings)
            warnings->push_back("The colours of \"" + name +
                                "\" are of a kind that is not converted; its bands stay as "
                                "they are.");
    }

    void readTags()
    {
        GeoTags &tags = image.geoTags;
        TIFF *tiff = first();
        tags.pixelScale = tiffNumbers<double>(tiff, kTagPixelScale, TIFF_DOUBLE);
        tags.tiePoints = tiffNumbers<double>(tiff, kTagTiePoints, TIFF_DOUBLE);
        tags.matrix = tiffNumbers<double>(tiff, kTagMatrix, TIFF_DOUBLE);
        tags.keys = tiffNumbers<std::uint16_t>(tiff, kTagGeoKeys, TIFF_SHORT);
        tags.keyDoubles = tiffNumbers<double>(tiff, kTagGeoDoubles, TIFF_DOUBLE);
        const std::vector<char> text = tiffNumbers<char>(tiff, kTagGeoAscii, TIFF_ASCII);
        tags.keyTexts.assign(text.begin(), std::find(text.begin(), text.end(), '\0'));
        tags.rpc = tiffNumbers<double>(tiff, kTagRpc, TIFF_DOUBLE);
        readNoData();
        const std::vector<char> xmp = tiffNumbers<char>(tiff, TIFFTAG_XMLPACKET, TIFF_BYTE);
        if (!xmp.empty())
            image.xmls.emplace_back(xmp.begin(), xmp.end());
    }

    /// A number in words. Of a palette it is an index, and colours are what is handed on.
    void readNoData()
    {
        std::vector<char> text = tiffNumbers<char>(first(), kTagNoData, TIFF_ASCII);
        text.push_back('\0');
        char *end = nullptr;
        const double number = std::strtod(text.data(), &end);
        if (end == text.data() || isPalette)
            return;
        image.noData = isInverted ? std::ldexp(1.0, bits) - 1.0 - number : number;
    }

    // In tiles.

    CError prepareTiles()
    {
        TIFFGetField(first(), TIFFTAG_TILEWIDTH, &tileWidth);
        TIFFGetField(first(), TIFFTAG_TILELENGTH, &tileHeight);
        const auto bytes = static_cast<std::uint64_t>(std::max<tmsize_t>(0, TIFFTileSize(first())));
        const std::uint64_t needed = bytesOf(std::uint64_t(tileWidth) * samplesTogether()) * tileHeight;
        if (needed == 0 || needed > bytes || bytes > kMaxTileBytes)
            return failed();
        if (CError error = admitAtOnce(name, bytes))
            return error;
        buffer.resize(static_cast<std::size_t>(bytes));
        return {};
    }

    CError readTiles(const IntRect &rect, const std::vector<std::int32_t *> &planes)
    {
        const std::uint16_t apart = isApart() ? samples : std::uint16_t(1);
        for (std::int64_t y = rect.y0 / tileHeight * tileHeight; y < rect.y1; y += tileHeight) {
            for (std::int64_t x = rect.x0 / tileWidth * tileWidth; x < rect.x1; x += tileWidth) {
                for (std::uint16_t plane = 0; plane < apart; ++plane) {
                    if (!readTile(static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y), plane))
                        return failed();
                    spread({x, y, x + tileWidth, y + tileHeight}, rect, plane, buffer, planes);
                }
            }
        }
        return {};
    }

    /// Sparse files leave out tiles and strips of zeros, and give them neither a length nor a place.
    static bool isLeftOut(TIFF *tiff, std::uint32_t number)
    {
        int isUnknown = 0;
        return TIFFGetStrileByteCountWithErr(tiff, number, &isUnknown) == 0 &&
               TIFFGetStrileOffsetWithErr(tiff, number, &isUnknown) == 0 && !isUnknown;
    }

    bool readTile(std::uint32_t x, std::uint32_t y, std::uint16_t plane)
    {
        if (!isLeftOut(first(), TIFFComputeTile(first(), x, y, 0, plane)))
            return TIFFReadTile(first(), buffer.data(), x, y, 0, plane) >= 0;
        std::fill(buffer.begin(), buffer.end(), std::uint8_t(0));
        return true;
    }

    // In strips.

    /// Rows of bands that are apart are read in turn, each by a handle of its own: going back costs reading anew.
    CError prepareRows()
    {
        if (isApart())
            if (CError error = admitAtOnce(name, kBytesOfHandle * samples))
                return error;
        while (isApart() && handles.size() < samples)
            if (!addHandle())
                return failed();
        const auto bytes = static_cast<std::uint64_t>(std::max<tmsize_t>(0, TIFFScanlineSize(first())));
        if (bytesOf(std::uint64_t(image.width) * samplesTogether()) > bytes)
            return failed();
        rowBytes = static_cast<std::size_t>(bytes);
        TIFFGetFieldDefaulted(first(), TIFFTAG_ROWSPERSTRIP, &rowsPerStrip);
        rowsPerStrip = std::max(rowsPerStrip, 1u);
        return {};
    }

    CError readRows(const IntRect &rect, const std::vector<std::int32_t *> &planes)
    {
        if (rect.y1 > keptEnd)
            if (CError error = keepRows(rect.y0, rect.y1))
                return error;
        const std::size_t planeBytes = rowBytes * static_cast<std::size_t>(keptEnd - keptFirst);
        for (std::size_t plane = 0; plane < handles.size(); ++plane) {
            const std::uint8_t *rows = kept.data() + plane * planeBytes;
            for (std::int64_t y = rect.y0; y < rect.y1; ++y) {
                const std::uint8_t *row = rows + static_cast<std::size_t>(y - keptFirst) * rowBytes;
                spreadRow(row, 0, y, rect, plane, planes);
            }
        }
        return {};
    }

    CError keepRows(std::int64_t firstRow, std::int64_t end)
    {
        const std::size_t planeBytes = rowBytes * static_cast<std::size_t>(end - firstRow);
        kept.resize(planeBytes * handles.size());
        // Within a strip most codecs cannot pass over rows: those before the first one are read and dropped.
        const std::int64_t strip = firstRow / rowsPerStrip * rowsPerStrip;
        for (std::size_t plane = 0; plane < handles.size(); ++plane) {
            std::uint8_t *rows = kept.data() + plane * planeBytes;
            for (std::int64_t y = std::max(keptEnd, strip); y < end; ++y)
                if (!readRow(rows + static_cast<std::size_t>(std::max<std::int64_t>(0, y - firstRow)) * rowBytes,
                             static_cast<std::uint32_t>(y), plane))
                    return failed();
        }
        keptFirst = firstRow;
        keptEnd = end;
        return {};
    }

    bool readRow(std::uint8_t *row, std::uint32_t y, std::size_t plane)
    {
        TIFF *tiff = handles[plane].get();
        const auto sample = static_cast<std::uint16_t>(plane);
        if (!isLeftOut(tiff, TIFFComputeStrip(tiff, y, sample)))
            return TIFFReadScanline(tiff, row, y, sample) >= 0;
        std::fill_n(row, rowBytes, std::uint8_t(0));
        return true;
    }

    // From buffers to planes.

    /// \a tile: where the cells of \a bytes lie.
    void spread(const IntRect &tile, const IntRect &rect, std::size_t plane, const Bytes &bytes,
                const std::vector<std::int32_t *> &planes) const
    {
        const auto tileRow = static_cast<std::size_t>(bytesOf(std::uint64_t(tileWidth) * samplesTogether()));
        for (std::int64_t y = std::max(tile.y0, rect.y0); y < std::min(tile.y1, rect.y1); ++y)
            spreadRow(bytes.data() + static_cast<std::size_t>(y - tile.y0) * tileRow, tile.x0, y,
                      rect.intersected(tile), plane, planes, rect);
    }
    void spreadRow(const std::uint8_t *row, std::int64_t rowX, std::int64_t y, const IntRect &rect, std::size_t plane,
                   const std::vector<std::int32_t *> &planes) const
    {
        spreadRow(row, rowX, y, rect, plane, planes, rect);
    }

    /// The cells of \a part from a row that begins at column \a rowX, to planes that hold \a rect.
    void spreadRow(const std::uint8_t *row, std::int64_t rowX, std::int64_t y, const IntRect &part, std::size_t plane,
                   const std::vector<std::int32_t *> &planes, const IntRect &rect) const
    {
        const std::size_t together = samplesTogether();
        for (std::size_t i = 0; i < together; ++i) {
            const std::size_t sample = plane + i;
            const std::int64_t place = (y - rect.y0) * rect.width() + part.x0 - rect.x0;
            const std::size_t cell = static_cast<std::size_t>(part.x0 - rowX) * together + i;
            if (isInBytes())
                spreadCells(row + cell * (bits / 8u), together * (bits / 8u), part.width(), planes[sample] + place);
            else
                spreadBits(row, cell, together, part.width(), planes[sample] + place);
            if (isPalette)
                lookUp(part.width(), place, planes);
        }
    }

    void spreadCells(const std::uint8_t *cell, std::size_t step, std::int64_t count, std::int32_t *out) const
    {
        const bool isSigned = format == SAMPLEFORMAT_INT;
        if (bits == 8)
            isSigned ? convert<std::int8_t>(cell, step, count, out) : convert<std::uint8_t>(cell, step, count, out);
        else if (bits == 64)
            narrow(cell, step, count, out);
        else if (bits == 32)
            copy(cell, step, count, out);
        else
            isSigned ? convert<std::int16_t>(cell, step, count, out) : convert<std::uint16_t>(cell, step, count, out);
    }

    /// Each is 32 bits already, whatever they mean.
    void copy(const std::uint8_t *cell, std::size_t step, std::int64_t count, std::int32_t *out) const
    {
        for (std::int64_t i = 0; i < count; ++i, cell += step) {
            std::memcpy(&out[i], cell, sizeof out[i]);
            out[i] = isInverted ? ~out[i] : out[i];
        }
    }

    void narrow(const std::uint8_t *cell, std::size_t step, std::int64_t count, std::int32_t *out) const
    {
        for (std::int64_t i = 0; i < count; ++i, cell += step) {
            double value = 0.0;
            std::memcpy(&value, cell, sizeof value);
            // Beyond the largest Float there is none to convert to.
            const bool isInRange = !(std::abs(value) > double(std::numeric_limits<float>::max())) || std::isinf(value);
            const float narrower = isInRange ? static_cast<float>(value) : 0.0f;
            out[i] = bitsOfFloat(narrower);
            if (std::isnan(value) || static_cast<double>(narrower) == value)
                continue;
            isExact = false;
            inexactCell = value;
        }
    }

    template <typename Cell>
    void convert(const std::uint8_t *cell, std::size_t step, std::int64_t count, std::int32_t *out) const
    {
        const std::int32_t largest = (1 << bits) - 1;
        for (std::int64_t i = 0; i < count; ++i, cell += step) {
            Cell value;
            std::memcpy(&value, cell, sizeof value);
            out[i] = isInverted ? largest - value : value;
        }
    }

    /// \a count cells from number \a cell of the row on, each \a step after the one before; the highest bit comes first
    /// (TIFF 6.0, section 8).
    void spreadBits(const std::uint8_t *row, std::size_t cell, std::size_t step, std::int64_t count,
                    std::int32_t *out) const
    {
        const std::int32_t largest = (1 << bits) - 1;
        for (std::int64_t i = 0; i < count; ++i, cell += step) {
            std::int32_t value = 0;
            for (std::size_t bit = cell * bits; bit < (cell + 1) * bits; ++bit)
                value = value << 1 | (row[bit / 8] >> (7 - bit % 8) & 1);
            out[i] = isInverted ? largest - value : value;
        }
    }

    void lookUp(std::int64_t count, std::int64_t place, const std::vector<std::int32_t *> &planes) const
    {
        for (std::int64_t i = place; i < place + count; ++i) {
            const std::int32_t index = planes[0][i];
            for (std::size_t colour = 0; colour < 3; ++colour)
                planes[colour][i] = palette[colour][index] >> 8;
        }
    }

    std::string name, message;
    std::vector<TiffPtr> handles; ///< one, or one for each band where they are apart in strips
    ImageDescription image;
    std::uint16_t bits = 1, samples = 1, format = SAMPLEFORMAT_UINT, planar = PLANARCONFIG_CONTIG;
    std::uint16_t photometric = PHOTOMETRIC_MINISBLACK;
    bool isPalette = false;
    bool isInverted = false;                                 ///< white is zero
    mutable bool isExact = true;                             ///< every cell read so far can be handed on
    mutable double inexactCell = 0.0;                        ///< that could not
    std::uint16_t *palette[3] = {nullptr, nullptr, nullptr}; ///< of libtiff
    std::uint32_t tileWidth = 0, tileHeight = 0;
    Bytes buffer; ///< a tile
    std::size_t rowBytes = 0;
    std::uint32_t rowsPerStrip = 1; ///< at most all rows there can be
    std::int64_t keptFirst = 0, keptEnd = 0;
    Bytes kept; ///< rows of each handle
};

} // namespace

CError openTiffSource(const std::string &path, std::unique_ptr<ImageSource> *source, std::vector<std::string> *warnings)
{
    auto made = std::make_unique<TiffSource>();
    CError error = made->open(path, warnings);
    if (error.IsSuccess())
        *source = std::move(made);
    return error;
}
