#include "jp2writer.h"

#include <openjpeg.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <vector>

namespace {

using ByteVector = std::vector<std::uint8_t>;

struct ImageDeleter
{
    void operator()(opj_image_t *image) const { opj_image_destroy(image); }
};
struct CodecDeleter
{
    void operator()(opj_codec_t *codec) const { opj_destroy_codec(codec); }
};
struct StreamDeleter
{
    void operator()(opj_stream_t *stream) const { opj_stream_destroy(stream); }
};
using ImagePtr = std::unique_ptr<opj_image_t, ImageDeleter>;
using CodecPtr = std::unique_ptr<opj_codec_t, CodecDeleter>;
using StreamPtr = std::unique_ptr<opj_stream_t, StreamDeleter>;

constexpr int kGlintEvery = 49999; // cells
constexpr int kGlint = 60000, kDarkest = 400, kStep = 11;

/// What a sensor would count for the cell of colour \a rgb with number \a cell. Plants are bright in the near infrared.
int sensorValue(const std::uint8_t *rgb, std::size_t cell, std::size_t band)
{
    if (cell % kGlintEvery == 0)
        return kGlint;
    const int value = band < 3 ? rgb[band] : std::clamp(3 * rgb[1] - rgb[0] - rgb[2], 0, 255);
    return kDarkest + kStep * value;
}

ImagePtr toImage(const RgbPicture &picture, Bands bands)
{
    const std::size_t count = bands == Bands::Sensor ? 4 : 3;
    opj_image_cmptparm_t parameters[4] = {};
    for (auto &parameter : parameters) {
        parameter.dx = parameter.dy = 1;
        parameter.w = static_cast<OPJ_UINT32>(picture.width);
        parameter.h = static_cast<OPJ_UINT32>(picture.height);
        parameter.prec = bands == Bands::Sensor ? 16 : 8;
    }
    ImagePtr image(opj_image_create(static_cast<OPJ_UINT32>(count), parameters, OPJ_CLRSPC_SRGB));
    if (!image)
        return image;
    image->x1 = parameters[0].w;
    image->y1 = parameters[0].h;
    for (std::size_t cell = 0; cell < picture.bytes.size() / 3; ++cell) {
        const std::uint8_t *rgb = &picture.bytes[cell * 3];
        for (std::size_t band = 0; band < count; ++band)
            image->comps[band].data[cell] = bands == Bands::Sensor ? sensorValue(rgb, cell, band) : rgb[band];
    }
    return image;
}

opj_cparameters_t encoding()
{
    opj_cparameters_t parameters;
    opj_set_default_encoder_parameters(&parameters);
    parameters.tcp_numlayers = 1;
    parameters.tcp_rates[0] = 12;
    parameters.cp_disto_alloc = 1;
    parameters.irreversible = 1;
    parameters.tcp_mct = 1;
    parameters.numresolution = 6;
    parameters.prog_order = OPJ_RPCL;
    parameters.tile_size_on = OPJ_TRUE;
    parameters.cp_tdx = parameters.cp_tdy = 1024;
    return parameters;
}

bool encode(const std::string &path, opj_image_t *image)
{
    opj_cparameters_t parameters = encoding();
    const CodecPtr codec(opj_create_compress(OPJ_CODEC_JP2));
    const StreamPtr stream(opj_stream_create_default_file_stream(path.c_str(), OPJ_FALSE));
    const char *const options[] = {"PLT=YES", "TLM=YES", nullptr};
    return codec && stream && opj_setup_encoder(codec.get(), &parameters, image) &&
           opj_encoder_set_extra_options(codec.get(), options) &&
           opj_start_compress(codec.get(), image, stream.get()) && opj_encode(codec.get(), stream.get()) &&
           opj_end_compress(codec.get(), stream.get());
}

void appendLittleEndian(ByteVector *bytes, std::uint64_t value, int count)
{
    for (int i = 0; i < count; ++i)
        bytes->push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

std::uint64_t bitsOf(double value)
{
    std::uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

/// A TIFF file of one cell that carries only the GeoTIFF tags (OGC 19-008r4, 7.1), as the GeoJP2 box wants it.
class GeoTiffStub
{
public:
    explicit GeoTiffStub(const MapPlace &place)
    {
        addShort(256, 1); // width
        addShort(257, 1); // length
        addShort(258, 8); // bits per sample
        addShort(259, 1); // no compression
        addShort(262, 1); // black is zero
        addLong(273, 0);  // the one cell: any byte will do
        addShort(277, 1); // samples per pixel
        addShort(278, 1); // rows per strip
        addLong(279, 1);  // bytes of the strip
        addDoubles(33550, {place.cellSize, place.cellSize, 0.0});
        addDoubles(33922, {0.0, 0.0, 0.0, place.left, place.top, 0.0});
        // Version 1.1.0 and four keys: projected system, cells are areas, its EPSG number, metres.
        addShorts(34735, {1, 1, 0, 4, 1024, 0, 1, 1, 1025, 0, 1, 1, 3072, 0, 1, place.epsg, 3076, 0, 1, 9001});
    }

    ByteVector bytes() const
    {
        ByteVector result{'I', 'I', 42, 0};
        appendLittleEndian(&result, kHeaderSize, 4);
        appendLittleEndian(&result, static_cast<std::uint64_t>(entryCount), 2);
        result.insert(result.end(), entries.begin(), entries.end());
        appendLittleEndian(&result, 0, 4);
        result.insert(result.end(), values.begin(), values.end());
        return result;
    }

private:
    static constexpr std::size_t kHeaderSize = 8, kEntrySize = 12, kEntries = 12;

    void addEntry(int tag, int type, std::size_t count, std::uint64_t value)
    {
        appendLittleEndian(&entries, static_cast<std::uint64_t>(tag), 2);
        appendLittleEndian(&entries, static_cast<std::uint64_t>(type), 2);
        appendLittleEndian(&entries, count, 4);
        appendLittleEndian(&entries, value, 4);
        ++entryCount;
    }
    std::uint64_t valueOffset() const { return kHeaderSize + 2 + kEntries * kEntrySize + 4 + values.size(); }
    void addShort(int tag, std::uint64_t value) { addEntry(tag, 3, 1, value); }
    void addLong(int tag, std::uint64_t value) { addEntry(tag, 4, 1, value); }
    void addShorts(int tag, const std::vector<int> &numbers)
    {
        addEntry(tag, 3, numbers.size(), valueOffset());
        for (const int number : numbers)
            appendLittleEndian(&values, static_cast<std::uint64_t>(number), 2);
    }
    void addDoubles(int tag, const std::vector<double> &numbers)
    {
        addEntry(tag, 12, numbers.size(), valueOffset());
        for (const double number : numbers)
            appendLittleEndian(&values, bitsOf(number), 8);
    }

    int entryCount = 0;
    ByteVector entries;
    ByteVector values;
};

void appendBigEndian(ByteVector *bytes, std::uint64_t value)
{
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes->push_back(static_cast<std::uint8_t>(value >> shift));
}

ByteVector geoJp2Box(const MapPlace &place)
{
    static constexpr std::uint8_t kUuid[16] = {0xb1, 0x4b, 0xf8, 0xbd, 0x08, 0x3d, 0x4b, 0x43,
                                               0xa5, 0xae, 0x8c, 0xd7, 0xd5, 0xa6, 0xce, 0x03};
    const ByteVector content = GeoTiffStub(place).bytes();
    ByteVector box;
    appendBigEndian(&box, 8 + sizeof kUuid + content.size());
    box.insert(box.end(), {'u', 'u', 'i', 'd'});
    box.insert(box.end(), std::begin(kUuid), std::end(kUuid));
    box.insert(box.end(), content.begin(), content.end());
    return box;
}

/// Start of the codestream box, or the end of the file without one.
std::size_t codestreamBox(const ByteVector &file)
{
    std::size_t offset = 0;
    while (offset + 8 <= file.size() && std::memcmp(&file[offset + 4], "jp2c", 4) != 0) {
        const std::size_t length = static_cast<std::size_t>(file[offset]) << 24 | file[offset + 1] << 16 |
                                   file[offset + 2] << 8 | file[offset + 3];
        offset += std::max<std::size_t>(length, 8);
    }
    return std::min(offset, file.size());
}

bool insertBox(const std::string &path, const ByteVector &box)
{
    std::ifstream in(path, std::ios::binary);
    ByteVector file{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    in.close();
    file.insert(file.begin() + static_cast<std::ptrdiff_t>(codestreamBox(file)), box.begin(), box.end());
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char *>(file.data()), static_cast<std::streamsize>(file.size()));
    return out.flush().good();
}

} // namespace

std::string writeGeoJp2(const std::string &path, const RgbPicture &picture, const MapPlace &place, Bands bands)
{
    const ImagePtr image = toImage(picture, bands);
    if (!image)
        return "There is not enough memory for the picture.";
    if (!encode(path, image.get()))
        return "The picture cannot be encoded to '" + path + "'.";
    if (!insertBox(path, geoJp2Box(place)))
        return "The map position cannot be written to '" + path + "'.";
    return {};
}
