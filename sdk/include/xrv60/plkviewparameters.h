#pragma once

#include "plkexport.h"
#include "plktypes.h"

#include <atomic>
#include <functional>

namespace PLK::ViewParameters {

/// JPEG 2000 decoding parameters of one view.
class PLK_EXPORT ViewParametersJp2Decompress
{
public:
    /// Quality layers to decode, 1 and up; more than the file has means all. 0 means all. Takes effect at the next
    /// SetView.
    void SetLayersToDecode(int layers);
    int GetLayersToDecode() const { return layersToDecode; }

private:
    std::atomic<int> layersToDecode{0};
};

/// JPEG 2000 parameters of one view.
class PLK_EXPORT ViewParametersJp2
{
public:
    using ViewParametersJp2Decompress = ViewParameters::ViewParametersJp2Decompress;
    ViewParametersJp2Decompress &Decompress() { return decompress; }

private:
    ViewParametersJp2Decompress decompress;
};

/// Decoding parameters of one view, whatever its format. They take effect at the next SetView.
class PLK_EXPORT ViewParametersDecompress
{
public:
    void SetResampleMethod(PLKResampleMethod method) { resampleMethod = method; }
    PLKResampleMethod GetResampleMethod() const { return resampleMethod; }
    /// A grain of at most one 256th of the range in smooth areas of lossily compressed XRV images, the same whenever
    /// the same cells are decoded; other images are left alone. What the configuration says when a view is made is what
    /// this begins with.
    void SetReaderDitherEnabled(bool enabled) { readerDither = enabled; }
    bool IsReaderDitherEnabled() const { return readerDither; }
    /// Opacity cells of less than 8 bits are scaled up to 0..255. Takes effect with the first line of the next picture,
    /// so it may still be set after SetView.
    void SetAutoscaleOpacitybandUpEnabled(bool enabled) { autoscaleOpacity = enabled; }
    bool IsAutoscaleOpacitybandUpEnabled() const { return autoscaleOpacity; }

private:
    std::atomic<PLKResampleMethod> resampleMethod{PLK_RESAMPLE_NEAREST};
    std::atomic<bool> readerDither{false};
    std::atomic<bool> autoscaleOpacity{false};
};

} // namespace PLK::ViewParameters
