#include "peerdecoder.h"

#include <openjpeg.h>

#include <algorithm>
#include <cstring>

namespace {

struct Reader
{
    const std::vector<std::uint8_t> *bytes;
    std::size_t position = 0;
};

OPJ_SIZE_T readSome(void *to, OPJ_SIZE_T size, void *user)
{
    auto *reader = static_cast<Reader *>(user);
    const std::size_t count = std::min<std::size_t>(size, reader->bytes->size() - reader->position);
    std::memcpy(to, reader->bytes->data() + reader->position, count);
    reader->position += count;
    return count > 0 ? count : static_cast<OPJ_SIZE_T>(-1);
}

OPJ_OFF_T skipSome(OPJ_OFF_T count, void *user)
{
    static_cast<Reader *>(user)->position += static_cast<std::size_t>(count);
    return count;
}

OPJ_BOOL seekTo(OPJ_OFF_T position, void *user)
{
    static_cast<Reader *>(user)->position = static_cast<std::size_t>(position);
    return OPJ_TRUE;
}

} // namespace

std::vector<PeerComponent> decodeWithPeer(const std::vector<std::uint8_t> &codestream, int discarded, int layers)
{
    Reader reader{&codestream};
    opj_stream_t *stream = opj_stream_create(64 * 1024, OPJ_TRUE);
    opj_stream_set_read_function(stream, readSome);
    opj_stream_set_skip_function(stream, skipSome);
    opj_stream_set_seek_function(stream, seekTo);
    opj_stream_set_user_data(stream, &reader, nullptr);
    opj_stream_set_user_data_length(stream, codestream.size());
    opj_codec_t *codec = opj_create_decompress(OPJ_CODEC_J2K);
    opj_dparameters_t parameters;
    opj_set_default_decoder_parameters(&parameters);
    parameters.cp_reduce = static_cast<OPJ_UINT32>(discarded);
    parameters.cp_layer = static_cast<OPJ_UINT32>(layers);
    opj_image_t *image = nullptr;
    std::vector<PeerComponent> result;
    // Without an area the codec gets the sizes of reduced images with offsets wrong.
    if (opj_setup_decoder(codec, &parameters) && opj_read_header(stream, codec, &image) &&
        opj_set_decode_area(codec, image, 0, 0, 0, 0) && opj_decode(codec, stream, image)) {
        for (OPJ_UINT32 c = 0; c < image->numcomps; ++c) {
            const opj_image_comp_t &from = image->comps[c];
            result.push_back({static_cast<int>(from.w), static_cast<int>(from.h),
                              std::vector<std::int32_t>(from.data, from.data + std::size_t(from.w) * from.h)});
        }
    }
    opj_image_destroy(image);
    opj_destroy_codec(codec);
    opj_stream_destroy(stream);
    return result;
}
