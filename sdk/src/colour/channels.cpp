#include "channels.h"

#include <algorithm>
#include <map>
#include <string>

namespace xrv {

namespace {

// Types and associations of ISO/IEC 15444-1 tables I.16 and I.17.
constexpr int kColour = 0;
constexpr int kOpacity = 1;
constexpr int kPremultipliedOpacity = 2;
constexpr int kWholeImage = 0;
constexpr int kNoAssociation = 65535;
constexpr std::size_t kMaxChannels = 16384; ///< as many as components (ISO/IEC 15444-1 table A.9)

// Cells are handled in 32 bits with a sign, but for those of a kind of their own.
std::uint8_t limitedBits(int bits, bool isSigned)
{
    return static_cast<std::uint8_t>(std::clamp(bits, 1, isSigned ? 32 : 31));
}

Channel directChannel(const RasterInfo &raster, int component)
{
    const ComponentInfo &info = raster.components[static_cast<std::size_t>(component)];
    const CellKind kind = cellKindOf(info.sampleType);
    const std::uint8_t bits = kind == CellKind::Whole ? limitedBits(info.bits, info.isSigned) : info.bits;
    return {component, -1, bits, info.isSigned, kind};
}

std::vector<Channel> directChannels(const RasterInfo &raster)
{
    std::vector<Channel> channels;
    for (int component = 0; component < static_cast<int>(raster.components.size()); ++component)
        channels.push_back(directChannel(raster, component));
    return channels;
}

Channel paletteChannel(const Palette &palette, int component, int column)
{
    const BitDepth depth = palette.columns[static_cast<std::size_t>(column)];
    return {component, column, limitedBits(depth.bits, depth.isSigned), depth.isSigned, CellKind::Whole};
}

// A palette without a mapping is against the standard, yet there is only one sense in it where there is one component.
std::vector<Channel> unmappedPalette(const RasterInfo &raster, const Palette &palette, WarningList &warnings)
{
    if (raster.components.size() != 1) {
        warnings.add("The palette is ignored: nothing tells which component goes through it.");
        return directChannels(raster);
    }
    warnings.add("The palette has no component mapping; the only component goes through all of it.");
    std::vector<Channel> channels;
    for (int column = 0; column < static_cast<int>(palette.columns.size()); ++column)
        channels.push_back(paletteChannel(palette, 0, column));
    return channels;
}

} // namespace

std::vector<Channel> makeChannels(const RasterInfo &raster, const Jp2Structure &structure, WarningList &warnings)
{
    if (structure.mapping.empty())
        return structure.palette ? unmappedPalette(raster, *structure.palette, warnings) : directChannels(raster);
    // Components as they are or through a palette column: more of them can only be the same ones again.
    const std::size_t columns = structure.palette ? structure.palette->columns.size() : 0;
    const std::size_t most = std::min(raster.components.size() * (columns + 1), kMaxChannels);
    if (structure.mapping.size() > most) {
        warnings.add("The component mapping makes " + std::to_string(structure.mapping.size()) +
                     " channels, but there can be no more than " + std::to_string(most) + "; it is ignored.");
        return directChannels(raster);
    }
    std::vector<Channel> channels;
    for (const ChannelMapping &mapping : structure.mapping) {
        const bool isColumnThere = structure.palette && mapping.paletteColumn < structure.palette->columns.size();
        if (mapping.component >= raster.components.size() || (mapping.usesPalette && !isColumnThere)) {
            warnings.add("The component mapping names a component or palette column that is not there; it is ignored.");
            return directChannels(raster);
        }
        channels.push_back(mapping.usesPalette
                               ? paletteChannel(*structure.palette, mapping.component, mapping.paletteColumn)
                               : directChannel(raster, mapping.component));
    }
    return channels;
}

namespace {

// Sorts the channels by use, each definition once.
class UseFinder
{
public:
    UseFinder(int channelCount, WarningList &warnings)
        : isKnown(static_cast<std::size_t>(channelCount), false)
        , warnings(warnings)
    {
    }

    void add(const ChannelDefinition &definition)
    {
        if (definition.channel >= isKnown.size() || isKnown[definition.channel]) {
            warnings.add("A channel definition is ignored: its channel is not there or is defined twice.");
            return;
        }
        isKnown[definition.channel] = true;
        if (definition.type == kOpacity || definition.type == kPremultipliedOpacity)
            addOpacity(definition);
        else if (definition.type == kColour && definition.association != kWholeImage &&
                 definition.association != kNoAssociation)
            addColour(definition);
        else
            others.push_back(definition.channel);
    }

    ChannelUse result()
    {
        ChannelUse use;
        for (const auto &[association, channel] : colours)
            use.colours.push_back(channel);
        for (std::size_t channel = 0; channel < isKnown.size(); ++channel) {
            if (!isKnown[channel])
                others.push_back(static_cast<int>(channel));
        }
        std::sort(others.begin(), others.end());
        use.others = std::move(others);
        use.opacity = opacity;
        use.isPremultiplied = isPremultiplied;
        use.isDefined = true;
        return use;
    }

private:
    void addColour(const ChannelDefinition &definition)
    {
        if (colours.emplace(definition.association, definition.channel).second)
            return;
        warnings.add("Two channels are defined as the same colour; the first one counts.");
        others.push_back(definition.channel);
    }

    // The opacity of the whole image goes before that of a single colour.
    void addOpacity(const ChannelDefinition &definition)
    {
        const bool isWhole = definition.association == kWholeImage;
        if (opacity >= 0 && (isWholeOpacity || !isWhole)) {
            others.push_back(definition.channel);
            return;
        }
        if (opacity >= 0)
            others.push_back(opacity);
        opacity = definition.channel;
        isWholeOpacity = isWhole;
        isPremultiplied = definition.type == kPremultipliedOpacity;
    }

    std::vector<bool> isKnown;
    std::map<int, int> colours; ///< by association
    std::vector<int> others;
    int opacity = -1;
    bool isWholeOpacity = false;
    bool isPremultiplied = false;
    WarningList &warnings;
};

} // namespace

ChannelUse findChannelUse(const std::vector<ChannelDefinition> &definitions, int channelCount, WarningList &warnings)
{
    UseFinder finder(channelCount, warnings);
    for (const ChannelDefinition &definition : definitions)
        finder.add(definition);
    ChannelUse use = finder.result();
    if (!definitions.empty() && (!use.colours.empty() || !use.others.empty()))
        return use;
    if (!definitions.empty())
        warnings.add("The channel definitions leave nothing to show and are ignored.");
    ChannelUse all;
    for (int channel = 0; channel < channelCount; ++channel)
        all.colours.push_back(channel);
    return all;
}

} // namespace xrv
