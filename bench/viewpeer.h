#pragma once

#include "peer.h"

#include <xrv60/plkview.h>

#include <cstdint>
#include <vector>

/// Bands of an open file that make its picture: red, green and blue, or the first one.
std::vector<int> pictureBands(const PLK::CView &view);
/// Sets \a window of the file that is open in \a view; throws on an error.
void setWindow(PLK::CView *view, const std::vector<int> &bands, const Window &window);

/// This repository's SDK: a blocking view, read as BGRA lines.
class ViewPeer : public Peer
{
public:
    ViewPeer();
    void open(const std::string &path) override;
    void show(const Window &window) override;
    /// The last picture, BGRA, rows packed.
    const std::vector<std::uint8_t> &picture() const { return pixels; }

private:
    PLK::CView view;
    std::vector<int> bands;
    std::vector<std::uint8_t> pixels;
};
