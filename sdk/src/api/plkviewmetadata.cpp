#include "viewmetadatavalues.h"

#include <xrv60/plkviewparameters.h>

namespace PLK::ViewMetadata {

namespace {

using Size = std::pair<std::uint32_t, std::uint32_t>;

std::uint32_t powerOfTwo(int exponent)
{
    return std::uint32_t(1) << exponent;
}

std::vector<Size> precinctSizes(const xrv::ComponentStyle &style)
{
    std::vector<Size> sizes;
    for (int resolution = 0; resolution <= style.decompositionLevels; ++resolution)
        sizes.emplace_back(powerOfTwo(style.precinctWidthExponent(resolution)),
                           powerOfTwo(style.precinctHeightExponent(resolution)));
    return sizes;
}

std::string joinedLines(const std::vector<std::string> &lines)
{
    std::string text;
    for (std::size_t i = 0; i < lines.size(); ++i)
        text += (i > 0 ? "\n" : "") + lines[i];
    return text;
}

} // namespace

std::shared_ptr<const ViewMetadataJp2::Values> ViewMetadataJp2::Values::of(const xrv::MainHeader &header, bool hasGml)
{
    auto values = std::make_shared<Values>();
    values->profile = header.capabilities == 1 || header.capabilities == 2 ? header.capabilities : 0;
    values->comments = joinedLines(header.comments);
    values->tiles = {header.tilesAcross, header.tilesDown};
    values->tileSize = {header.tileWidth, header.tileHeight};
    for (const xrv::MainHeader::Component &component : header.components)
        values->bitDepths.push_back(component.bits);
    if (!header.style.components.empty()) {
        const xrv::ComponentStyle &style = header.style.components.front();
        values->precincts = precinctSizes(style);
        values->codeBlock = {powerOfTwo(style.codeBlockWidthExponent), powerOfTwo(style.codeBlockHeightExponent)};
        values->isHighThroughput = style.codeBlockStyle & xrv::CodeBlockStyle::kHighThroughput;
        values->levels = style.decompositionLevels + 1;
        values->transformation = style.isReversible ? 1 : 0;
    }
    values->layers = header.style.layers;
    values->progression = header.style.progression;
    values->hasSop = header.style.usesSop();
    values->hasEph = header.style.usesEph();
    values->hasGml = hasGml;
    return values;
}

ViewMetadataJp2::ViewMetadataJp2()
    : values(std::make_shared<Values>())
{
}

ViewMetadataJp2::~ViewMetadataJp2() = default;

void ViewMetadataJp2::Assign(std::shared_ptr<const Values> newValues)
{
    values = newValues ? std::move(newValues) : std::make_shared<Values>();
}

int ViewMetadataJp2::ComplianceProfileType() const
{
    return values->profile;
}

std::string ViewMetadataJp2::Comments() const
{
    return values->comments;
}

Size ViewMetadataJp2::NumberOfTiles() const
{
    return values->tiles;
}

Size ViewMetadataJp2::TileSize() const
{
    return values->tileSize;
}

std::vector<Size> ViewMetadataJp2::PrecinctSize() const
{
    return values->precincts;
}

Size ViewMetadataJp2::CodeBlock() const
{
    return values->codeBlock;
}

bool ViewMetadataJp2::IsHighThroughput() const
{
    return values->isHighThroughput;
}

std::vector<std::uint8_t> ViewMetadataJp2::BitDepth() const
{
    return values->bitDepths;
}

int ViewMetadataJp2::Levels() const
{
    return values->levels;
}

int ViewMetadataJp2::Layers() const
{
    return values->layers;
}

int ViewMetadataJp2::PrecinctProgressionOrder() const
{
    return values->progression;
}

int ViewMetadataJp2::TransformationType() const
{
    return values->transformation;
}

bool ViewMetadataJp2::SOPExists() const
{
    return values->hasSop;
}

bool ViewMetadataJp2::EPHExists() const
{
    return values->hasEph;
}

bool ViewMetadataJp2::GMLJP2BoxExists() const
{
    return values->hasGml;
}

} // namespace PLK::ViewMetadata

namespace PLK::ViewParameters {

void ViewParametersJp2Decompress::SetLayersToDecode(int layers)
{
    layersToDecode = layers < 0 ? 0 : layers;
}

} // namespace PLK::ViewParameters
