#include "jp2maker.h"

#include "boxbuilder.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <stdexcept>

#include <openjpeg.h>

namespace jp2maker {

namespace {

struct StreamDeleter
{
    void operator()(opj_stream_t *stream) const { opj_stream_destroy(stream); }
};
struct CodecDeleter
{
    void operator()(opj_codec_t *codec) const { opj_destroy_codec(codec); }
};
struct ImageDeleter
{
    void operator()(opj_image_t *image) const { opj_image_destroy(image); }
};
using StreamPtr = std::unique_ptr<opj_stream_t, StreamDeleter>;
using CodecPtr = std::unique_ptr<opj_codec_t, CodecDeleter>;
using ImagePtr = std::unique_ptr<opj_image_t, ImageDeleter>;

struct Output
{
    FileBytes bytes;
    std::size_t position = 0;
};

OPJ_SIZE_T writeBytes(void *buffer, OPJ_SIZE_T count, void *user)
{
    auto *output = static_cast<Output *>(user);
    output->bytes.resize(std::max(output->bytes.size(), output->position + count));
    std::memcpy(output->bytes.data() + output->position, buffer, count);
    output->position += count;
    return count;
}

OPJ_OFF_T skipBytes(OPJ_OFF_T count, void *user)
{
    auto *output = static_cast<Output *>(user);
    output->position += static_cast<std::size_t>(count);
    output->bytes.resize(std::max(output->bytes.size(), output->position));
    return count;
}

OPJ_BOOL seekBytes(OPJ_OFF_T position, void *user)
{
    static_cast<Output *>(user)->position = static_cast<std::size_t>(position);
    return OPJ_TRUE;
}

void keepMessage(const char *message, void *user)
{
    static_cast<std::string *>(user)->append(message);
}

void ignoreMessage(const char *, void *)
{
}

int ceilDivided(int value, int step)
{
    return (value + step - 1) / step;
}

int cellsAcross(int offset, int size, int step)
{
    return ceilDivided(offset + size, step) - ceilDivided(offset, step);
}

OPJ_COLOR_SPACE colourSpaceOf(const Options &options)
{
    if (options.colourSpace != 0)
        return static_cast<OPJ_COLOR_SPACE>(options.colourSpace);
    const std::size_t colours = options.components.size() - (options.opacityLast ? 1 : 0);
    return colours >= 3 ? OPJ_CLRSPC_SRGB : OPJ_CLRSPC_GRAY;
}

ImagePtr makeImage(const Options &options)
{
    std::vector<opj_image_cmptparm_t> parameters;
    for (const Component &component : options.components) {
        opj_image_cmptparm_t parameter{};
        parameter.dx = static_cast<OPJ_UINT32>(component.stepX);
        parameter.dy = static_cast<OPJ_UINT32>(component.stepY);
        parameter.w = static_cast<OPJ_UINT32>(cellsAcross(options.offsetX, options.width, component.stepX));
        parameter.h = static_cast<OPJ_UINT32>(cellsAcross(options.offsetY, options.height, component.stepY));
        parameter.prec = static_cast<OPJ_UINT32>(component.bits);
        parameter.sgnd = component.isSigned ? 1 : 0;
        parameters.push_back(parameter);
    }
    ImagePtr image(
        opj_image_create(static_cast<OPJ_UINT32>(parameters.size()), parameters.data(), colourSpaceOf(options)));
    if (!image)
        throw std::runtime_error("no image");
    image->x0 = static_cast<OPJ_UINT32>(options.offsetX);
    image->y0 = static_cast<OPJ_UINT32>(options.offsetY);
    image->x1 = static_cast<OPJ_UINT32>(options.offsetX + options.width);
    image->y1 = static_cast<OPJ_UINT32>(options.offsetY + options.height);
    if (options.opacityLast)
        image->comps[image->numcomps - 1].alpha = 1;
    return image;
}

void fillImage(const Options &options, opj_image_t *image)
{
    const CellFunction cell = options.cell ? options.cell : gradient(options);
    for (OPJ_UINT32 c = 0; c < image->numcomps; ++c) {
        opj_image_comp_t &component = image->comps[c];
        OPJ_INT32 *target = component.data;
        for (OPJ_UINT32 y = 0; y < component.h; ++y)
            for (OPJ_UINT32 x = 0; x < component.w; ++x)
                *target++ = cell(static_cast<int>(c), static_cast<int>(x), static_cast<int>(y));
    }
}

OPJ_PROG_ORDER progressionOf(const std::string &name)
{
    const std::pair<const char *, OPJ_PROG_ORDER> orders[] = {
        {"LRCP", OPJ_LRCP}, {"RLCP", OPJ_RLCP}, {"RPCL", OPJ_RPCL}, {"PCRL", OPJ_PCRL}, {"CPRL", OPJ_CPRL}};
    for (const auto &order : orders)
        if (name == order.first)
            return order.second;
    throw std::runtime_error("no such progression: " + name);
}

void setCoding(const Options &options, opj_cparameters_t *parameters)
{
    parameters->numresolution = options.levels + 1;
    parameters->irreversible = options.reversible ? 0 : 1;
    parameters->tcp_mct = options.componentTransform ? 1 : 0;
    parameters->prog_order = progressionOf(options.progression);
    parameters->cblockw_init = options.codeBlockWidth;
    parameters->cblockh_init = options.codeBlockHeight;
    parameters->mode = options.codeBlockStyle;
    if (options.regionOfInterestShift > 0) {
        parameters->roi_compno = 0;
        parameters->roi_shift = options.regionOfInterestShift;
    }
    parameters->cp_disto_alloc = 1;
    parameters->tcp_numlayers = static_cast<int>(options.layerRates.size());
    std::copy(options.layerRates.begin(), options.layerRates.end(), parameters->tcp_rates);
    if (!options.precincts.empty())
        parameters->csty |= 0x01;
    if (options.sop)
        parameters->csty |= 0x02;
    if (options.eph)
        parameters->csty |= 0x04;
    parameters->res_spec = static_cast<int>(options.precincts.size());
    for (std::size_t i = 0; i < options.precincts.size(); ++i) {
        parameters->prcw_init[i] = options.precincts[i].first;
        parameters->prch_init[i] = options.precincts[i].second;
    }
}

void setTiles(const Options &options, opj_cparameters_t *parameters)
{
    if (options.tileWidth > 0) {
        parameters->tile_size_on = OPJ_TRUE;
        parameters->cp_tdx = options.tileWidth;
        parameters->cp_tdy = options.tileHeight;
    }
    parameters->cp_tx0 = options.tileOffsetX;
    parameters->cp_ty0 = options.tileOffsetY;
    if (options.tilePartsPer != 0) {
        parameters->tp_on = 1;
        parameters->tp_flag = options.tilePartsPer;
    }
}

void setUp(const Options &options, opj_codec_t *codec, opj_image_t *image)
{
    opj_cparameters_t parameters;
    opj_set_default_encoder_parameters(&parameters);
    setCoding(options, &parameters);
    setTiles(options, &parameters);
    std::string comment = options.comment;
    if (!comment.empty())
        parameters.cp_comment = comment.data();
    if (!opj_setup_encoder(codec, &parameters, image))
        throw std::runtime_error("the encoder does not take the options");
    std::vector<const char *> extras;
    if (options.plt)
        extras.push_back("PLT=YES");
    if (options.tlm)
        extras.push_back("TLM=YES");
    extras.push_back(nullptr);
    if (!opj_encoder_set_extra_options(codec, extras.data()))
        throw std::runtime_error("the encoder does not take the extra options");
}

StreamPtr makeStream(Output *output)
{
    StreamPtr stream(opj_stream_create(1 << 16, OPJ_FALSE));
    opj_stream_set_user_data(stream.get(), output, nullptr);
    opj_stream_set_write_function(stream.get(), writeBytes);
    opj_stream_set_skip_function(stream.get(), skipBytes);
    opj_stream_set_seek_function(stream.get(), seekBytes);
    return stream;
}

} // namespace

CellFunction gradient(const Options &options)
{
    const std::vector<Component> components = options.components;
    const std::int64_t span = std::max(1, options.width + options.height - 2);
    return [components, span](int c, int x, int y) {
        const Component &component = components[static_cast<std::size_t>(c)];
        const std::int64_t largest = (std::int64_t(1) << component.bits) - 1;
        const std::int64_t along =
            std::min(span, std::int64_t(x) * component.stepX + std::int64_t(y) * component.stepY);
        const std::int64_t value = (c % 2 == 0 ? along : span - along) * largest / span;
        return static_cast<std::int32_t>(component.isSigned ? value - (largest + 1) / 2 : value);
    };
}

FileBytes make(const Options &options)
{
    const ImagePtr image = makeImage(options);
    fillImage(options, image.get());
    const CodecPtr codec(opj_create_compress(options.bareCodestream ? OPJ_CODEC_J2K : OPJ_CODEC_JP2));
    std::string messages;
    opj_set_error_handler(codec.get(), keepMessage, &messages);
    opj_set_warning_handler(codec.get(), ignoreMessage, nullptr);
    setUp(options, codec.get(), image.get());
    Output output;
    {
        const StreamPtr stream = makeStream(&output);
        if (!opj_start_compress(codec.get(), image.get(), stream.get()) || !opj_encode(codec.get(), stream.get()) ||
            !opj_end_compress(codec.get(), stream.get()))
            throw std::runtime_error("the encoder failed: " + messages);
    }
    return output.bytes;
}

FileBytes withBox(const FileBytes &file, const std::string &type, const FileBytes &content)
{
    const FileBytes box = boxbuilder::box(type, content);
    FileBytes result = file;
    result.insert(result.begin() + static_cast<std::ptrdiff_t>(boxbuilder::findBox(file, "jp2c").start), box.begin(),
                  box.end());
    return result;
}

} // namespace jp2maker
