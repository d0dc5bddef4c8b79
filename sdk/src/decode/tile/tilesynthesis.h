#pragma once

#include "codeblockset.h"

#include "base/cancelflag.h"
#include "decode/transform/wavelet.h"

#include <xrv60/plkerror.h>

#include <vector>

namespace xrv {

/// Turns decoded code-blocks of a tile into samples: dequantization (ISO/IEC 15444-1 annex E), inverse wavelet
/// transformation (F), inverse component transformation (G.2, G.3) and level shift (G.1).
class TileSynthesis
{
public:
    TileSynthesis(const MainHeader &header, const TileToDecode &tile)
        : header(header)
        , tile(tile)
    {
    }

    /// PLK_ERR_UNSUPPORTED, with the marker segment and its value, where the tile cannot be decoded.
    static PLK::CError check(const MainHeader &header, const TileToDecode &tile);

    /// Makes planes of \a components (ascending; with a component transformation the first three together or not at
    /// all). \a region: cells on the canvas of the level that is left when \a discarded resolutions are left out. Once
    /// \a cancel is raised some may be missing.
    std::vector<Plane> planes(const CodeBlockSet &codeBlocks, const std::vector<int> &components, int discarded,
                              const IntRect &region, const CancelFlag &cancel) const;
    /// What comes of no coefficients but 0. \a rect: cells of the component at any level.
    Plane blank(int component, const IntRect &rect) const;

private:
    template <typename T>
    void loadBand(const CodeBlockSet &codeBlocks, int component, int resolution, int orientation, const IntRect &rect,
                  Grid<T> *band) const;
    /// \a cells then covers \a region, perhaps with rows around it.
    template <typename T>
    void synthesizeComponent(const CodeBlockSet &codeBlocks, int component, int discarded, const IntRect &region,
                             Grid<T> *cells) const;
    template <typename T>
    std::vector<Plane> transformed(const CodeBlockSet &codeBlocks, int discarded, const IntRect &region) const;
    template <typename T>
    Plane single(const CodeBlockSet &codeBlocks, int component, int discarded, const IntRect &region) const;
    template <typename T> Plane toPlane(int component, const IntRect &rect, const Grid<T> &cells) const;
    template <typename Integer, typename Real>
    std::vector<Plane> planesOf(const CodeBlockSet &codeBlocks, const std::vector<int> &components, int discarded,
                                const IntRect &region, const CancelFlag &cancel) const;
    bool isDeep() const;
    bool usesTransform(const std::vector<int> &components) const;

    const MainHeader &header;
    const TileToDecode &tile;
};

} // namespace xrv
