#pragma once

#include <cstdint>
#include <vector>

/// A component as OpenJPEG gives it.
struct PeerComponent
{
    int width = 0, height = 0;
    std::vector<std::int32_t> cells;
};

/// Decodes a bare codestream with OpenJPEG alone, all of it at once, \a discarded resolutions left out, \a layers
/// quality layers (0 = all). Empty on failure.
std::vector<PeerComponent> decodeWithPeer(const std::vector<std::uint8_t> &codestream, int discarded, int layers);
