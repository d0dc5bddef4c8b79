#include "htmaker.h"

#include <openjph/ojph_arch.h>
#include <openjph/ojph_base.h>
#include <openjph/ojph_codestream.h>
#include <openjph/ojph_file.h>
#include <openjph/ojph_mem.h>
#include <openjph/ojph_params.h>

#include <algorithm>

namespace htmaker {

namespace {

using jp2maker::Options;

ojph::ui32 whole(int number)
{
    return static_cast<ojph::ui32>(number);
}

void setSize(const Options &options, ojph::param_siz siz)
{
    const int right = options.offsetX + options.width, bottom = options.offsetY + options.height;
    siz.set_image_extent(ojph::point(whole(right), whole(bottom)));
    siz.set_image_offset(ojph::point(whole(options.offsetX), whole(options.offsetY)));
    siz.set_tile_offset(ojph::point(whole(options.tileOffsetX), whole(options.tileOffsetY)));
    if (options.tileWidth > 0)
        siz.set_tile_size(ojph::size(whole(options.tileWidth), whole(options.tileHeight)));
    siz.set_num_components(whole(int(options.components.size())));
    for (std::size_t c = 0; c < options.components.size(); ++c) {
        const jp2maker::Component &component = options.components[c];
        siz.set_component(whole(int(c)), ojph::point(whole(component.stepX), whole(component.stepY)),
                          whole(component.bits), component.isSigned);
    }
}

void setCoding(const Options &options, ojph::param_cod cod)
{
    cod.set_num_decomposition(whole(options.levels));
    cod.set_block_dims(whole(options.codeBlockWidth), whole(options.codeBlockHeight));
    cod.set_progression_order(options.progression);
    cod.set_color_transform(options.componentTransform);
    cod.set_reversible(options.reversible);
    // From the lowest resolution on here, while the options begin with the highest.
    std::vector<ojph::size> precincts;
    for (int resolution = 0; resolution <= options.levels && !options.precincts.empty(); ++resolution) {
        const auto fromTop = std::size_t(options.levels - resolution);
        const std::size_t given = std::min(fromTop, options.precincts.size() - 1);
        const auto [width, height] = options.precincts[given];
        precincts.emplace_back(whole(width >> (fromTop - given)), whole(height >> (fromTop - given)));
    }
    if (!precincts.empty())
        cod.set_precinct_size(int(precincts.size()), precincts.data());
}

} // namespace

jp2maker::FileBytes make(const Options &options)
{
    const jp2maker::CellFunction cell = options.cell ? options.cell : jp2maker::gradient(options);
    ojph::codestream codestream;
    setSize(options, codestream.access_siz());
    setCoding(options, codestream.access_cod());
    if (!options.reversible)
        codestream.access_qcd().set_irrev_quant(1.0f / 512.0f);
    codestream.set_planar(!options.componentTransform);
    ojph::mem_outfile file;
    file.open();
    codestream.write_headers(&file);
    std::vector<int> rows(options.components.size(), 0);
    ojph::ui32 component = 0;
    ojph::line_buf *line = codestream.exchange(nullptr, component);
    for (; line; line = codestream.exchange(line, component)) {
        const int y = rows[component]++;
        for (std::size_t x = 0; x < line->size; ++x)
            line->i32[x] = cell(int(component), int(x), y);
    }
    codestream.flush();
    const auto length = static_cast<std::size_t>(file.tell());
    jp2maker::FileBytes bytes(file.get_data(), file.get_data() + length);
    codestream.close();
    return bytes;
}

} // namespace htmaker
