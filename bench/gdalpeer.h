#pragma once

#include "peer.h"

#include <cstdint>
#include <memory>
#include <vector>

/// GDAL in this process, with two threads and its default block cache.
class GdalPeer : public Peer
{
public:
    GdalPeer();
    ~GdalPeer() override;
    void open(const std::string &path) override;
    /// One call for all bands: nearest neighbour, cells in their own type, interleaved by pixel.
    void show(const Window &window) override;
    /// The last picture; \a cellSize bytes for each of \a bands bands of a pixel, rows packed.
    const std::vector<std::uint8_t> &picture() const { return cells; }
    int bands() const;
    int cellSize() const;

private:
    struct Dataset;
    std::unique_ptr<Dataset> dataset;
    std::vector<std::uint8_t> cells;
};
