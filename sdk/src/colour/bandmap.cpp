#include "bandmap.h"

#include "channels.h"
#include "colourmodel.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

namespace xrv {

namespace {

constexpr std::size_t kMaxInputs = 4;
constexpr std::size_t kMaxOutputs = 3;
// Cells that are converted at a time, in buffers on the stack.
constexpr int kChunk = 512;

using Table = std::vector<std::int32_t>;

Table paletteTable(const Palette &palette, int column)
{
    Table table;
    table.reserve(palette.entries);
    for (std::uint32_t entry = 0; entry < palette.entries; ++entry) {
        const std::int64_t value = palette.values[entry * palette.columns.size() + static_cast<std::size_t>(column)];
        table.push_back(static_cast<std::int32_t>(std::clamp<std::int64_t>(
            value, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max())));
    }
    return table;
}

// An index beyond the palette means its last entry.
void lookUp(const Table &table, const std::int32_t *indices, int width, std::int32_t *out)
{
    const auto last = static_cast<std::int32_t>(table.size()) - 1;
    for (int x = 0; x < width; ++x)
        out[x] = table[static_cast<std::size_t>(std::clamp(indices[x], 0, last))];
}

} // namespace

struct BandMap::Private
{
    std::vector<Band> bands;
    std::vector<int> outputOfBand; ///< row of the conversion's output, -1 for bands that go past it
    std::vector<Channel> inputs;   ///< of the conversion
    std::unique_ptr<ColourConversion> conversion;
    std::vector<Table> tables; ///< one per column of the palette that is used, else empty
    std::size_t componentCount = 0;
    PLKColorSpace space = PLK_COLORSPACE_NONE;
    bool hasPalette = false;

    void addBand(const Channel &channel, const char *name, int output);
    void addColours(const std::vector<Channel> &colours, ColourModel &model);
    void addTables(const Palette &palette);
    template <typename Visitor> void visitComponents(const std::vector<int> &bandNumbers, Visitor visit) const;
    bool needsConversion(const std::vector<int> &bandNumbers) const;
    void convertColours(const std::vector<int> &bandNumbers, const std::int32_t *const *inputRows, int width,
                        std::int32_t *const *bandRows) const;
};

void BandMap::Private::addBand(const Channel &channel, const char *name, int output)
{
    Band band;
    band.description = name ? std::string(name) : "Band #" + std::to_string(bands.size() + 1);
    band.bits = output >= 0 ? static_cast<std::uint8_t>(conversion->outputBits()) : channel.bits;
    band.isSigned = output < 0 && channel.isSigned;
    band.kind = output < 0 ? channel.kind : CellKind::Whole;
    band.component = channel.component;
    band.paletteColumn = channel.paletteColumn;
    bands.push_back(std::move(band));
    outputOfBand.push_back(output);
    hasPalette = hasPalette || channel.paletteColumn >= 0;
}

void BandMap::Private::addColours(const std::vector<Channel> &colours, ColourModel &model)
{
    static const char *const kRgb[] = {"Red", "Green", "Blue"};
    static const char *const kGrey[] = {"Greyscale"};
    conversion = std::move(model.conversion);
    if (conversion)
        inputs.assign(colours.begin(), colours.begin() + static_cast<std::ptrdiff_t>(model.inputs));
    const bool isRgb = model.meaning == ColourModel::Meaning::Rgb;
    if (model.meaning != ColourModel::Meaning::None) {
        for (std::size_t i = 0; i < (isRgb ? 3u : 1u); ++i)
            addBand(colours[i], isRgb ? kRgb[i] : kGrey[i], conversion ? static_cast<int>(i) : -1);
    }
    for (std::size_t i = model.inputs; i < colours.size(); ++i)
        addBand(colours[i], nullptr, -1);
}

void BandMap::Private::addTables(const Palette &palette)
{
    tables.resize(palette.columns.size());
    const auto add = [&](int column) {
        if (column >= 0 && tables[static_cast<std::size_t>(column)].empty())
            tables[static_cast<std::size_t>(column)] = paletteTable(palette, column);
    };
    for (const Band &band : bands)
        add(band.paletteColumn);
    for (const Channel &input : inputs)
        add(input.paletteColumn);
}

BandMap::BandMap()
    : d(std::make_unique<Private>())
{
}

BandMap::~BandMap() = default;
BandMap::BandMap(BandMap &&) noexcept = default;
BandMap &BandMap::operator=(BandMap &&) noexcept = default;

BandMap BandMap::make(const RasterInfo &raster, const Jp2Structure &structure, std::vector<std::string> *sentences)
{
    WarningList warnings(sentences);
    const std::vector<Channel> channels = makeChannels(raster, structure, warnings);
    const ChannelUse use = findChannelUse(structure.definitions, static_cast<int>(channels.size()), warnings);
    std::vector<Channel> colours;
    for (const int channel : use.colours)
        colours.push_back(channels[static_cast<std::size_t>(channel)]);

    BandMap map;
    Private &p = *map.d;
    p.componentCount = raster.components.size();
    ColourModel model = chooseColourModel(structure.colour, colours, use.isDefined, raster, warnings);
    const ColourModel::Meaning meaning = model.meaning;
    p.addColours(colours, model);
    for (const int channel : use.others)
        p.addBand(channels[static_cast<std::size_t>(channel)], nullptr, -1);
    const bool isOneGrey = meaning == ColourModel::Meaning::Grey && p.bands.size() == 1;
    p.space = meaning == ColourModel::Meaning::Rgb ? PLK_COLORSPACE_SRGB
              : isOneGrey                          ? PLK_COLORSPACE_GREYSCALE
                                                   : PLK_COLORSPACE_MULTIBAND;
    if (use.opacity >= 0) {
        p.addBand(channels[static_cast<std::size_t>(use.opacity)], "AllOpacity", -1);
        p.bands.back().isOpacity = true;
        p.bands.back().isPremultiplied = use.isPremultiplied;
    }
    if (structure.palette)
        p.addTables(*structure.palette);
    return map;
}

const std::vector<Band> &BandMap::bands() const
{
    return d->bands;
}

PLKColorSpace BandMap::colourSpace() const
{
    return d->space;
}

PLKCellType BandMap::cellType() const
{
    if (std::any_of(d->bands.begin(), d->bands.end(), [](const Band &band) { return band.kind == CellKind::Float; }))
        return PLKCT_FLOAT;
    int bits = 1, signedBits = 0;
    for (const Band &band : d->bands)
        (band.isSigned ? signedBits : bits) = std::max<int>(band.isSigned ? signedBits : bits, band.bits);
    if (signedBits == 0)
        return bits <= 8 ? PLKCT_UINT8 : bits <= 16 ? PLKCT_UINT16 : PLKCT_UINT32;
    const int needed = std::max(signedBits, bits + 1);
    return needed <= 8 ? PLKCT_INT8 : needed <= 16 ? PLKCT_INT16 : PLKCT_INT32;
}

bool BandMap::hasPalette() const
{
    return d->hasPalette;
}

bool BandMap::isDirect(int band) const
{
    const auto index = static_cast<std::size_t>(band);
    return d->outputOfBand[index] < 0 && d->bands[index].paletteColumn < 0;
}

std::vector<int> BandMap::rgbaBands() const
{
    std::vector<int> colours, opacity, found;
    for (std::size_t i = 0; i < d->bands.size(); ++i)
        (d->bands[i].isOpacity ? opacity : colours).push_back(static_cast<int>(i));
    if (colours.size() < 3)
        return {};
    for (const char *name : {"Red", "Green", "Blue"}) {
        const auto isNamed = [&](int band) { return d->bands[static_cast<std::size_t>(band)].description == name; };
        const auto named = std::find_if(colours.begin(), colours.end(), isNamed);
        if (named != colours.end())
            found.push_back(*named);
    }
    if (found.size() < 3)
        found.assign(colours.begin(), colours.begin() + 3);
    if (!opacity.empty())
        found.push_back(opacity.back());
    return found;
}

bool BandMap::Private::needsConversion(const std::vector<int> &bandNumbers) const
{
    return std::any_of(bandNumbers.begin(), bandNumbers.end(),
                       [this](int band) { return outputOfBand[static_cast<std::size_t>(band)] >= 0; });
}

// Calls visit(component) for everything that the bands are made of, in a fixed order, some more than once.
template <typename Visitor>
void BandMap::Private::visitComponents(const std::vector<int> &bandNumbers, Visitor visit) const
{
    if (needsConversion(bandNumbers)) {
        for (const Channel &input : inputs)
            visit(input.component);
    }
    for (const int band : bandNumbers) {
        if (outputOfBand[static_cast<std::size_t>(band)] < 0)
            visit(bands[static_cast<std::size_t>(band)].component);
    }
}

std::vector<int> BandMap::componentsFor(const std::vector<int> &bands) const
{
    std::vector<bool> isListed(d->componentCount, false);
    std::vector<int> components;
    d->visitComponents(bands, [&](int component) {
        const auto index = static_cast<std::size_t>(component);
        if (!isListed[index])
            components.push_back(component);
        isListed[index] = true;
    });
    return components;
}

void BandMap::Private::convertColours(const std::vector<int> &bandNumbers, const std::int32_t *const *inputRows,
                                      int width, std::int32_t *const *bandRows) const
{
    std::int32_t looked[kMaxInputs][kChunk], made[kMaxOutputs][kChunk];
    const std::int32_t *in[kMaxInputs];
    std::int32_t *const out[kMaxOutputs] = {made[0], made[1], made[2]};
    for (int x0 = 0; x0 < width; x0 += kChunk) {
        const int count = std::min(kChunk, width - x0);
        for (std::size_t i = 0; i < inputs.size(); ++i) {
            in[i] = inputRows[i] + x0;
            if (inputs[i].paletteColumn < 0)
                continue;
            lookUp(tables[static_cast<std::size_t>(inputs[i].paletteColumn)], in[i], count, looked[i]);
            in[i] = looked[i];
        }
        conversion->convert(in, count, out);
        for (std::size_t i = 0; i < bandNumbers.size(); ++i) {
            const int output = outputOfBand[static_cast<std::size_t>(bandNumbers[i])];
            if (output >= 0)
                std::memcpy(bandRows[i] + x0, made[output], static_cast<std::size_t>(count) * sizeof(std::int32_t));
        }
    }
}

void BandMap::convertRow(const std::vector<int> &bands, const std::int32_t *const *componentRows, int width,
                         std::int32_t *const *bandRows) const
{
    std::vector<const std::int32_t *> rowOfComponent(d->componentCount, nullptr);
    d->visitComponents(bands, [&, next = componentRows](int component) mutable {
        const std::int32_t *&row = rowOfComponent[static_cast<std::size_t>(component)];
        if (!row)
            row = *next++;
    });
    if (d->needsConversion(bands)) {
        const std::int32_t *inputRows[kMaxInputs] = {};
        for (std::size_t i = 0; i < d->inputs.size(); ++i)
            inputRows[i] = rowOfComponent[static_cast<std::size_t>(d->inputs[i].component)];
        d->convertColours(bands, inputRows, width, bandRows);
    }
    for (std::size_t i = 0; i < bands.size(); ++i) {
        const auto index = static_cast<std::size_t>(bands[i]);
        if (d->outputOfBand[index] >= 0)
            continue;
        const Band &band = d->bands[index];
        const std::int32_t *row = rowOfComponent[static_cast<std::size_t>(band.component)];
        if (band.paletteColumn >= 0)
            lookUp(d->tables[static_cast<std::size_t>(band.paletteColumn)], row, width, bandRows[i]);
        else
            std::memcpy(bandRows[i], row, static_cast<std::size_t>(width) * sizeof(std::int32_t));
    }
}

} // namespace xrv
