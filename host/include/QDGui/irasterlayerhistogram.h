#pragma once

#include <QDGui/histogram.h>

#include <QSize>
#include <QVector>

namespace Korvane::Map {

/// Implemented by raster layers that can give histograms of their bands.
class IRasterLayerHistogram
{
public:
    /// One histogram per band, in band order. \a reset drops what was computed earlier; \a visibleOnly asks for the
    /// part inside the world rectangle (x1, y1) top left to (x2, y2) bottom right at \a viewSize pixels. A layer may
    /// ignore everything but \a reset. GUI thread.
    virtual QVector<HistogramT<quint64>> getHistograms(bool reset, bool visibleOnly, QSize viewSize, double x1,
                                                       double y1, double x2, double y2) = 0;

protected:
    ~IRasterLayerHistogram() = default;
};

} // namespace Korvane::Map
