#pragma once

#include "codestream/mainheader.h"

#include <xrv60/plkviewmetadata.h>

#include <memory>

namespace PLK::ViewMetadata {

/// What ViewMetadataJp2 tells.
struct ViewMetadataJp2::Values
{
    int profile = 0;
    std::string comments;
    std::pair<std::uint32_t, std::uint32_t> tiles{0, 0};
    std::pair<std::uint32_t, std::uint32_t> tileSize{0, 0};
    std::vector<std::pair<std::uint32_t, std::uint32_t>> precincts;
    std::pair<std::uint32_t, std::uint32_t> codeBlock{0, 0};
    bool isHighThroughput = false;
    std::vector<std::uint8_t> bitDepths;
    int levels = 0;
    int layers = 0;
    int progression = 0;
    int transformation = 0;
    bool hasSop = false;
    bool hasEph = false;
    bool hasGml = false;

    /// Of what the main header says for the first component; tiles and components with a style of their own are left
    /// out.
    static std::shared_ptr<const Values> of(const xrv::MainHeader &header, bool hasGml);
};

} // namespace PLK::ViewMetadata
