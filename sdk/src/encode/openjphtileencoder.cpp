#include "openjphtileencoder.h"

#include <openjph/ojph_arch.h>
// What follows needs the types of the former.
#include <openjph/ojph_codestream.h>
#include <openjph/ojph_file.h>
#include <openjph/ojph_mem.h>
#include <openjph/ojph_message.h>
#include <openjph/ojph_params.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <new>
#include <stdexcept>

namespace xrv {

using PLK::CError;

namespace {

/// What the encoder writes to.
class MemoryFile : public ojph::outfile_base
{
public:
    size_t write(const void *data, size_t count) override
    {
        const auto *first = static_cast<const std::uint8_t *>(data);
        bytes.insert(bytes.end(), first, first + count);
        return count;
    }
    ojph::si64 tell() override { return static_cast<ojph::si64>(bytes.size()); }

    Bytes bytes;
};

/// Of itself the library prints its errors and throws nothing but the fact.
class ThrownError : public ojph::message_error
{
public:
    void operator()(int, const char *, int, const char *format, ...) override
    {
        char text[512];
        va_list arguments;
        va_start(arguments, format);
        std::vsnprintf(text, sizeof text, format, arguments);
        va_end(arguments);
        throw std::runtime_error(text);
    }
};

class UnsaidWarning : public ojph::message_warning
{
public:
    void operator()(int, const char *, int, const char *, ...) override {}
};

class UnsaidInfo : public ojph::message_info
{
public:
    void operator()(int, const char *, int, const char *, ...) override {}
};

/// The library chooses its routines when the first codestream is made, which is not safe in two threads at once.
void prepareLibrary()
{
    static std::once_flag once;
    std::call_once(once, [] {
        static ThrownError error;
        static UnsaidWarning warning;
        static UnsaidInfo info;
        ojph::configure_error(&error);
        ojph::configure_warning(&warning);
        ojph::configure_info(&info);
        const ojph::codestream first;
    });
}

ojph::point cornerOf(std::int64_t x, std::int64_t y)
{
    return ojph::point(static_cast<ojph::ui32>(x), static_cast<ojph::ui32>(y));
}

void setSize(const TileCoding &coding, const IntRect &rect, ojph::param_siz siz)
{
    siz.set_image_extent(cornerOf(rect.x1, rect.y1));
    siz.set_image_offset(cornerOf(rect.x0, rect.y0));
    siz.set_tile_offset(cornerOf(rect.x0, rect.y0));
    siz.set_tile_size(ojph::size(coding.tileSize, coding.tileSize));
    siz.set_num_components(static_cast<ojph::ui32>(coding.bands.size()));
    for (std::size_t i = 0; i < coding.bands.size(); ++i)
        siz.set_component(static_cast<ojph::ui32>(i), ojph::point(1, 1), coding.bands[i].bits,
                          coding.bands[i].isSigned);
}

} // namespace

OpenJphTileEncoder::OpenJphTileEncoder(const TileCoding &coding, const IntRect &rect)
    : TileEncoder(coding, rect)
    , cells(coding.bands.size(), std::vector<std::int32_t>(static_cast<std::size_t>(rect.width() * rect.height())))
{
}

std::vector<std::int32_t *> OpenJphTileEncoder::planes()
{
    std::vector<std::int32_t *> result;
    for (std::vector<std::int32_t> &plane : cells)
        result.push_back(plane.data());
    return result;
}

/// Rows of all bands by turns.
void OpenJphTileEncoder::pushRows(ojph::codestream *encoder) const
{
    const auto width = static_cast<std::size_t>(rect.width());
    ojph::ui32 band = 0;
    ojph::line_buf *line = encoder->exchange(nullptr, band);
    for (std::int64_t i = 0; i < rect.height() * static_cast<std::int64_t>(cells.size()); ++i) {
        const std::size_t row = static_cast<std::size_t>(i) / cells.size();
        const auto first = cells[band].begin() + static_cast<std::ptrdiff_t>(row * width);
        std::copy(first, first + static_cast<std::ptrdiff_t>(width), line->i32);
        line = encoder->exchange(line, band);
    }
}

CError OpenJphTileEncoder::runEncoder(Bytes *codestream)
{
    prepareLibrary();
    MemoryFile file;
    try {
        ojph::codestream encoder;
        setSize(coding, rect, encoder.access_siz());
        ojph::param_cod cod = encoder.access_cod();
        cod.set_num_decomposition(static_cast<ojph::ui32>(coding.levels));
        cod.set_block_dims(kCodeBlockSize, kCodeBlockSize);
        ojph::size precinct(kPrecinctSize, kPrecinctSize); // of all resolutions
        cod.set_precinct_size(1, &precinct);
        cod.set_progression_order("RPCL");
        cod.set_color_transform(coding.hasColourTransform);
        cod.set_reversible(coding.isLossless);
        if (!coding.isLossless)
            encoder.access_qcd().set_irrev_quant(static_cast<float>(coding.step));
        encoder.set_planar(false);
        encoder.write_headers(&file);
        pushRows(&encoder);
        encoder.flush();
        encoder.close();
    } catch (const std::runtime_error &error) {
        return {PLK_ERR_DECODE, std::string("A tile cannot be encoded: ") + error.what() + "."};
    } catch (const char *) {
        throw std::bad_alloc(); // what the library throws when its memory runs out
    }
    *codestream = std::move(file.bytes);
    return {};
}

} // namespace xrv
