#pragma once

#include <QTimer>
#include <QWidget>

class QLabel;
class QPushButton;

namespace Korvane::Map {
class ILayerStatistics;
class Layer;
} // namespace Korvane::Map

namespace Viewer {

/// A line that tells when a layer's statistics are an estimate, and how far the count of all cells is; hidden
/// otherwise. Local images are counted without being asked to; of streams, which have to be transferred for it, and
/// after a cancel only when the button is pressed.
class StatisticsBar : public QWidget
{
    Q_OBJECT

public:
    explicit StatisticsBar(QWidget *parent = nullptr);

    /// The layer to watch, which must outlive that; null for none.
    void setLayer(Korvane::Map::Layer *layer);
    /// To be called after a page has read the layer: it may have asked for statistics.
    void pageWasLoaded();

Q_SIGNALS:
    /// The statistics have become exact: what was read before is an estimate.
    void counted();

private:
    void follow();
    void startOrCancel();

    Korvane::Map::ILayerStatistics *statistics = nullptr;
    QLabel *text;
    QPushButton *button;
    QTimer timer;
    bool wasEstimated = false;
    bool countsUnasked = true;
};

} // namespace Viewer
