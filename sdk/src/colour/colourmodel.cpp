#include "colourmodel.h"

#include "arithmeticconversions.h"
#include "iccconversion.h"
#include "labconversion.h"

#include <algorithm>

namespace xrv {

namespace {

using Kind = ColourSpecification::Kind;
using Meaning = ColourModel::Meaning;

// Enumerated spaces, ISO/IEC 15444-2 table M.25.
constexpr std::uint32_t kBiLevelReversed = 0;
constexpr std::uint32_t kYCbCr1 = 1;
constexpr std::uint32_t kYCbCr3 = 4;
constexpr std::uint32_t kCmy = 11;
constexpr std::uint32_t kESRgb = 20;
constexpr std::uint32_t kRommRgb = 21;

std::size_t channelsOf(const ColourSpecification &specification)
{
    switch (specification.kind) {
    case Kind::Greyscale:
        return 1;
    case Kind::SRgb:
    case Kind::SYcc:
    case Kind::CieLab:
        return 3;
    case Kind::Cmyk:
        return specification.enumeratedSpace == kCmy ? 3 : 4;
    case Kind::Icc:
        return static_cast<std::size_t>(IccConversion::channelCount(specification.iccProfile));
    case Kind::Unknown:
        break;
    }
    return 0;
}

ColourModel guess(const std::vector<Channel> &colours, bool isDefined, const RasterInfo &raster)
{
    if (colours.size() == 1)
        return {Meaning::Grey, 1, nullptr};
    if (colours.size() != 3)
        return {};
    const bool isPlain = std::all_of(colours.begin(), colours.end(), [](const Channel &channel) {
        return channel.bits == 8 && !channel.isSigned && channel.paletteColumn < 0;
    });
    const auto steps = [&](std::size_t channel) {
        const ComponentInfo &info = raster.components[static_cast<std::size_t>(colours[channel].component)];
        return std::make_pair(info.stepX, info.stepY);
    };
    const bool isChromaCoarser = steps(1) == steps(2) && steps(1) != steps(0);
    if (isPlain && isChromaCoarser)
        return {Meaning::Rgb, 3, std::make_unique<YccConversion>(colours, YccConversion::Range::Full)};
    const bool is8Bit = std::all_of(colours.begin(), colours.end(),
                                    [](const Channel &channel) { return channel.bits == 8 && !channel.isSigned; });
    return is8Bit || isDefined ? ColourModel{Meaning::Rgb, 3, nullptr} : ColourModel{};
}

ColourModel enumerated(const ColourSpecification &specification, const std::vector<Channel> &colours)
{
    const std::uint32_t space = specification.enumeratedSpace;
    switch (specification.kind) {
    case Kind::Greyscale:
        // Number 0 is also what encoders write that were told no colour space.
        if (space == kBiLevelReversed && colours[0].bits == 1)
            return {Meaning::Grey, 1, LinearConversion::reversed(colours[0])};
        return {Meaning::Grey, 1, nullptr};
    case Kind::SYcc: {
        const bool isLimited = space == kYCbCr1 || space == kYCbCr3;
        const auto range = isLimited ? YccConversion::Range::Limited : YccConversion::Range::Full;
        return {Meaning::Rgb, 3, std::make_unique<YccConversion>(colours, range)};
    }
    case Kind::Cmyk:
        return {Meaning::Rgb, colours.size(), std::make_unique<CmykConversion>(colours)};
    default:
        if (space == kESRgb && colours[0].bits >= 10)
            return {Meaning::Rgb, 3, LinearConversion::extendedSRgb(colours)};
        return {Meaning::Rgb, 3, nullptr};
    }
}

ColourModel profiled(const Bytes &profile, const std::vector<Channel> &colours)
{
    std::unique_ptr<IccConversion> conversion = IccConversion::fromProfile(profile, colours);
    if (!conversion)
        return {};
    ColourModel model{colours.size() == 1 ? Meaning::Grey : Meaning::Rgb, colours.size(), nullptr};
    const bool hasSign =
        std::any_of(colours.begin(), colours.end(), [](const Channel &channel) { return channel.isSigned; });
    // Cells that stay what they are keep their depth and cost nothing.
    if (hasSign || !conversion->isIdentity())
        model.conversion = std::move(conversion);
    return model;
}

ColourModel cieLab(const Bytes &parameters, const std::vector<Channel> &colours)
{
    std::unique_ptr<LabConversion> conversion = LabConversion::make(parameters, colours);
    return conversion ? ColourModel{Meaning::Rgb, 3, std::move(conversion)} : ColourModel{};
}

} // namespace

ColourModel chooseColourModel(const std::optional<ColourSpecification> &specification,
                              const std::vector<Channel> &colours, bool isDefined, const RasterInfo &raster,
                              WarningList &warnings)
{
    if (!specification || specification->kind == Kind::Unknown) {
        const bool isRomm = specification && specification->enumeratedSpace == kRommRgb;
        return guess(colours, isDefined || isRomm, raster);
    }
    const std::size_t needed = channelsOf(*specification);
    if (needed == 0 || needed > colours.size()) {
        warnings.add("The colour specification is ignored: it does not fit the number of channels.");
        return guess(colours, isDefined, raster);
    }
    const std::vector<Channel> inputs(colours.begin(), colours.begin() + static_cast<std::ptrdiff_t>(needed));
    ColourModel model;
    if (specification->kind == Kind::Icc)
        model = profiled(specification->iccProfile, inputs);
    else if (specification->kind == Kind::CieLab)
        model = cieLab(specification->enumParameters, inputs);
    else
        model = enumerated(*specification, inputs);
    if (model.meaning != Meaning::None)
        return model;
    warnings.add("The colour specification is ignored: its colour profile or its parameters cannot be used.");
    return guess(colours, isDefined, raster);
}

} // namespace xrv
