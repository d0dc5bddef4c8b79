#include "openjpegdecoder.h"

#include "base/planerow.h"
#include "decode/transform/planeops.h"
#include "openjpeg/openjpegpointers.h"

#include <algorithm>
#include <cstring>

using PLK::CError;

namespace xrv {

namespace {

/// The bytes that OpenJPEG reads, with its reading position.
struct MemoryReader
{
    const Bytes *bytes;
    std::size_t position = 0;
};

OPJ_SIZE_T readBytes(void *buffer, OPJ_SIZE_T size, void *user)
{
    auto *reader = static_cast<MemoryReader *>(user);
    const std::size_t available = reader->bytes->size() - reader->position;
    if (available == 0)
        return static_cast<OPJ_SIZE_T>(-1);
    const std::size_t count = std::min<std::size_t>(size, available);
    std::memcpy(buffer, reader->bytes->data() + reader->position, count);
    reader->position += count;
    return count;
}

OPJ_OFF_T skipBytes(OPJ_OFF_T count, void *user)
{
    auto *reader = static_cast<MemoryReader *>(user);
    const std::size_t available = reader->bytes->size() - reader->position;
    if (count < 0 || static_cast<std::uint64_t>(count) > available)
        return -1;
    reader->position += static_cast<std::size_t>(count);
    return count;
}

OPJ_BOOL seekTo(OPJ_OFF_T position, void *user)
{
    auto *reader = static_cast<MemoryReader *>(user);
    if (position < 0 || static_cast<std::uint64_t>(position) > reader->bytes->size())
        return OPJ_FALSE;
    reader->position = static_cast<std::size_t>(position);
    return OPJ_TRUE;
}

std::string trimmed(const char *text)
{
    std::string result = text;
    while (!result.empty() && (result.back() == '\n' || result.back() == ' ' || result.back() == '.'))
        result.pop_back();
    return result;
}

/// Keeps the first error.
void keepError(const char *text, void *user)
{
    auto *error = static_cast<std::string *>(user);
    if (error->empty())
        *error = trimmed(text);
}

/// One decode from header to cells.
class Decode
{
public:
    explicit Decode(const OpenJpegRequest &request)
        : request(request)
        , reader{&request.codestream->bytes}
    {
    }

    CError run(std::vector<DecodedComponent> *components)
    {
        const bool decoded = open() && select() && opj_decode(codec.get(), stream.get(), image.get());
        if (!decoded)
            return {PLK_ERR_DECODE, errorText.empty() ? "The tile cannot be decoded." : errorText + "."};
        return takeCells(components);
    }

private:
    bool open()
    {
        stream.reset(opj_stream_create(std::size_t(64) * 1024, OPJ_TRUE));
        codec.reset(opj_create_decompress(OPJ_CODEC_J2K));
        if (!stream || !codec)
            return false;
        opj_stream_set_read_function(stream.get(), readBytes);
        opj_stream_set_skip_function(stream.get(), skipBytes);
        opj_stream_set_seek_function(stream.get(), seekTo);
        opj_stream_set_user_data(stream.get(), &reader, nullptr);
        opj_stream_set_user_data_length(stream.get(), request.codestream->bytes.size());
        opj_set_error_handler(codec.get(), keepError, &errorText);
        opj_dparameters_t parameters;
        opj_set_default_decoder_parameters(&parameters);
        parameters.cp_reduce = static_cast<OPJ_UINT32>(request.codestream->levelsToDiscard);
        parameters.cp_layer = static_cast<OPJ_UINT32>(request.codestream->layersToDecode);
        if (!opj_setup_decoder(codec.get(), &parameters))
            return false;
        opj_decoder_set_strict_mode(codec.get(), OPJ_TRUE);
        opj_image_t *header = nullptr;
        const bool read = opj_read_header(stream.get(), codec.get(), &header);
        image.reset(header);
        return read;
    }

    bool select()
    {
        if (!request.components.empty()) {
            const std::vector<OPJ_UINT32> wanted(request.components.begin(), request.components.end());
            if (!opj_set_decoded_components(codec.get(), static_cast<OPJ_UINT32>(wanted.size()), wanted.data(),
                                            OPJ_FALSE))
                return false;
        }
        if (request.isWholeTile)
            return true;
        return opj_set_decode_area(codec.get(), image.get(), static_cast<OPJ_INT32>(request.area.x0),
                                   static_cast<OPJ_INT32>(request.area.y0), static_cast<OPJ_INT32>(request.area.x1),
                                   static_cast<OPJ_INT32>(request.area.y1));
    }

    CError takeCells(std::vector<DecodedComponent> *components)
    {
        // With components selected, the codec's image has only these left.
        components->clear();
        for (OPJ_UINT32 i = 0; i < image->numcomps; ++i) {
            const opj_image_comp_t &from = image->comps[i];
            DecodedComponent to;
            to.width = from.w;
            to.height = from.h;
            const std::size_t count = std::size_t(from.w) * from.h;
            if (!from.data && count > 0)
                return {PLK_ERR_DECODE, "The codec gave no cells."};
            if (count > 0)
                to.cells.assign(from.data, from.data + count);
            components->push_back(std::move(to));
        }
        return {};
    }

    const OpenJpegRequest &request;
    MemoryReader reader;
    std::string errorText; ///< what the codec said first
    OpenJpegStreamPtr stream;
    OpenJpegCodecPtr codec;
    OpenJpegImagePtr image;
};

} // namespace

CError decodeWithOpenJpeg(const OpenJpegRequest &request, std::vector<DecodedComponent> *components)
{
    try {
        return Decode(request).run(components);
    } catch (const std::bad_alloc &) {
        return {PLK_ERR_OUT_OF_MEMORY, "There is not enough memory to decode a tile."};
    }
}

Plane planeFromCells(int component, const IntRect &decodedRect, SampleType type, const DecodedComponent &decoded)
{
    Plane plane = makePlane(component, decodedRect, type);
    withSampleType(type, [&](auto sample) {
        using T = decltype(sample);
        T *out = reinterpret_cast<T *>(plane.bytes.data());
        for (std::size_t i = 0; i < decoded.cells.size(); ++i)
            out[i] = static_cast<T>(decoded.cells[i]);
    });
    return plane;
}

} // namespace xrv
