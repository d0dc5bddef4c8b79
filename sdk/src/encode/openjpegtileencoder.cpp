#include "openjpegtileencoder.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>

namespace xrv {

using PLK::CError;

namespace {

/// What the encoder writes to. It goes back to fill in lengths.
struct MemoryFile
{
    Bytes bytes;
    std::size_t position = 0;

    static MemoryFile *self(void *data) { return static_cast<MemoryFile *>(data); }
    static OPJ_SIZE_T write(void *buffer, OPJ_SIZE_T count, void *data)
    {
        MemoryFile *file = self(data);
        try {
            if (file->position + count > file->bytes.size())
                file->bytes.resize(file->position + count);
        } catch (const std::bad_alloc &) {
            return static_cast<OPJ_SIZE_T>(-1);
        }
        std::memcpy(file->bytes.data() + file->position, buffer, count);
        file->position += count;
        return count;
    }
    static OPJ_OFF_T skip(OPJ_OFF_T count, void *data)
    {
        return seek(static_cast<OPJ_OFF_T>(self(data)->position) + count, data) ? count : -1;
    }
    static OPJ_BOOL seek(OPJ_OFF_T position, void *data)
    {
        MemoryFile *file = self(data);
        if (position < 0 || static_cast<std::size_t>(position) > file->bytes.size())
            return OPJ_FALSE;
        file->position = static_cast<std::size_t>(position);
        return OPJ_TRUE;
    }
};

void keepFirstMessage(const char *message, void *data)
{
    auto *text = static_cast<std::string *>(data);
    if (text->empty())
        *text = message;
}

/// OpenJPEG counts rates by the bit, people by the byte of a stored cell.
double ratePerBit(const TileCoding &coding)
{
    double bits = 0.0, bytes = 0.0;
    for (const XrvBand &band : coding.bands) {
        const int bytesPerCell = (band.bits + 7) / 8;
        bits += band.bits;
        bytes += bytesPerCell;
    }
    return std::max(1.0, coding.rate * bits / (8.0 * bytes));
}

void setRates(const TileCoding &coding, opj_cparameters_t *parameters)
{
    constexpr double kFirstLossyRate = 4.0; // of the best layer below the lossless one
    const double best = coding.isLossless ? kFirstLossyRate / 2.0 : ratePerBit(coding);
    parameters->tcp_numlayers = coding.layers;
    parameters->cp_disto_alloc = 1;
    for (int layer = 0; layer < coding.layers; ++layer)
        parameters->tcp_rates[layer] = static_cast<float>(std::ldexp(best, coding.layers - 1 - layer));
    if (coding.isLossless)
        parameters->tcp_rates[coding.layers - 1] = 0.0f; // all that is left
}

opj_cparameters_t makeParameters(const TileCoding &coding, const IntRect &rect)
{
    opj_cparameters_t parameters;
    opj_set_default_encoder_parameters(&parameters);
    setRates(coding, &parameters);
    parameters.irreversible = coding.isLossless ? 0 : 1;
    parameters.tcp_mct = coding.hasColourTransform ? 1 : 0;
    parameters.prog_order = OPJ_RPCL;
    parameters.numresolution = coding.levels + 1;
    parameters.cblockw_init = parameters.cblockh_init = kCodeBlockSize;
    parameters.csty |= 1;
    parameters.res_spec = parameters.numresolution;
    for (int i = 0; i < parameters.res_spec; ++i)
        parameters.prcw_init[i] = parameters.prch_init[i] = kPrecinctSize;
    parameters.tile_size_on = OPJ_TRUE;
    parameters.cp_tx0 = static_cast<int>(rect.x0);
    parameters.cp_ty0 = static_cast<int>(rect.y0);
    // The tile is the first of a grid of its own. The encoder wants tiles to be large enough for the resolutions,
    // though the standard does not; the image clips them all the same.
    parameters.cp_tdx = parameters.cp_tdy = static_cast<int>(coding.tileSize);
    return parameters;
}

OpenJpegImagePtr makeImage(const TileCoding &coding, const IntRect &rect)
{
    std::vector<opj_image_cmptparm_t> components;
    for (const XrvBand &band : coding.bands) {
        opj_image_cmptparm_t component{};
        component.dx = component.dy = 1;
        component.w = static_cast<OPJ_UINT32>(rect.width());
        component.h = static_cast<OPJ_UINT32>(rect.height());
        component.x0 = static_cast<OPJ_UINT32>(rect.x0);
        component.y0 = static_cast<OPJ_UINT32>(rect.y0);
        component.prec = band.bits;
        component.sgnd = band.isSigned ? 1 : 0;
        components.push_back(component);
    }
    OpenJpegImagePtr image(opj_image_create(static_cast<OPJ_UINT32>(components.size()), components.data(),
                                            coding.hasColourTransform ? OPJ_CLRSPC_SRGB : OPJ_CLRSPC_UNSPECIFIED));
    if (!image)
        throw std::bad_alloc();
    image->x0 = static_cast<OPJ_UINT32>(rect.x0);
    image->y0 = static_cast<OPJ_UINT32>(rect.y0);
    image->x1 = static_cast<OPJ_UINT32>(rect.x1);
    image->y1 = static_cast<OPJ_UINT32>(rect.y1);
    return image;
}

} // namespace

OpenJpegTileEncoder::OpenJpegTileEncoder(const TileCoding &coding, const IntRect &rect)
    : TileEncoder(coding, rect)
    , image(makeImage(coding, rect))
{
}

std::vector<std::int32_t *> OpenJpegTileEncoder::planes()
{
    std::vector<std::int32_t *> result;
    for (OPJ_UINT32 c = 0; c < image->numcomps; ++c)
        result.push_back(image->comps[c].data);
    return result;
}

CError OpenJpegTileEncoder::runEncoder(Bytes *codestream)
{
    opj_cparameters_t parameters = makeParameters(coding, rect);
    const OpenJpegCodecPtr codec(opj_create_compress(OPJ_CODEC_J2K));
    const OpenJpegStreamPtr stream(opj_stream_create(1 << 20, OPJ_FALSE));
    if (!codec || !stream)
        throw std::bad_alloc();
    MemoryFile file;
    opj_stream_set_user_data(stream.get(), &file, nullptr);
    opj_stream_set_write_function(stream.get(), MemoryFile::write);
    opj_stream_set_skip_function(stream.get(), MemoryFile::skip);
    opj_stream_set_seek_function(stream.get(), MemoryFile::seek);
    std::string message;
    opj_set_error_handler(codec.get(), keepFirstMessage, &message);
    const char *const options[] = {"PLT=YES", nullptr};
    const bool isEncoded = opj_setup_encoder(codec.get(), &parameters, image.get()) &&
                           opj_encoder_set_extra_options(codec.get(), options) &&
                           opj_start_compress(codec.get(), image.get(), stream.get()) &&
                           opj_encode(codec.get(), stream.get()) && opj_end_compress(codec.get(), stream.get());
    if (!isEncoded)
        return {PLK_ERR_DECODE, "A tile cannot be encoded: " + (message.empty() ? "no reason given." : message)};
    *codestream = std::move(file.bytes);
    return {};
}

} // namespace xrv
