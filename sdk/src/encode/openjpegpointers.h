#pragma once

#include <openjpeg.h>

#include <memory>

namespace xrv {

// Owners of what OpenJPEG hands out. One deleter each: codecs and streams are the same type to the compiler.

struct OpenJpegCodecDeleter
{
    void operator()(opj_codec_t *codec) const { opj_destroy_codec(codec); }
};
struct OpenJpegStreamDeleter
{
    void operator()(opj_stream_t *stream) const { opj_stream_destroy(stream); }
};
struct OpenJpegImageDeleter
{
    void operator()(opj_image_t *image) const { opj_image_destroy(image); }
};
using OpenJpegCodecPtr = std::unique_ptr<opj_codec_t, OpenJpegCodecDeleter>;
using OpenJpegStreamPtr = std::unique_ptr<opj_stream_t, OpenJpegStreamDeleter>;
using OpenJpegImagePtr = std::unique_ptr<opj_image_t, OpenJpegImageDeleter>;

} // namespace xrv
