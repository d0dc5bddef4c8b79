#include "viewstatus.h"

#include "viewtexts.h"

#include <QDGui/mapview.h>
#include <QDGui/rasterlayer.h>

#include <QLabel>
#include <QProgressBar>
#include <QStatusBar>

namespace Viewer {

using Korvane::Map::Layer;
using Korvane::Map::MapView;
using Korvane::Map::RasterLayer;

namespace {

constexpr int kComplete = 100;

QLabel *addField(QStatusBar *bar, const QString &toolTip)
{
    auto *label = new QLabel;
    label->setToolTip(toolTip);
    label->setContentsMargins(4, 0, 4, 0);
    bar->addPermanentWidget(label);
    return label;
}

} // namespace

ViewStatus::ViewStatus(QStatusBar *bar)
    : QObject(bar)
    , progress(new QProgressBar)
{
    // Where it comes and goes, it moves nothing else.
    progress->setRange(0, kComplete);
    progress->setFixedWidth(progress->fontMetrics().horizontalAdvance(QLatin1Char('0')) * 16);
    progress->setMaximumHeight(progress->fontMetrics().height() + 2);
    progress->setToolTip(tr("How much of the view is decoded"));
    bar->addPermanentWidget(progress);
    progress->hide();
    coordinates = addField(bar, tr("World coordinates under the pointer"));
    values = addField(bar, tr("Values of the shown bands under the pointer"));
    system = addField(bar, tr("Coordinate system of the active layer"));
    scale = addField(bar, tr("Screen pixels per cell of the active layer, and world units per screen pixel"));
}

void ViewStatus::setView(MapView *newView)
{
    if (view)
        view->disconnect(this);
    view = newView;
    coordinates->clear();
    if (view) {
        connect(view, &MapView::cursorMoved, this, &ViewStatus::showCursor);
        connect(view, &MapView::cursorLeft, coordinates, &QLabel::clear);
        connect(view, &MapView::viewChanged, this, &ViewStatus::showScale);
        connect(view, &MapView::activeLayerChanged, this, &ViewStatus::showScale);
        connect(view, &MapView::progressChanged, this, &ViewStatus::showProgress);
    }
    showScale();
    showProgress(view && view->getLayerCount() > 0 ? view->getPercentComplete() : kComplete);
}

void ViewStatus::showCursor(const QPointF &worldPoint)
{
    coordinates->setText(ViewTexts::coordinates(worldPoint, view->getUnitsPerPixel()));
}

void ViewStatus::showScale()
{
    const Layer *layer = view ? view->getActiveLayer() : nullptr;
    system->setText(layer ? layer->getCoordSysName() : QString());
    if (!layer) {
        scale->clear();
        return;
    }
    const double units = view->getUnitsPerPixel();
    const auto *raster = qobject_cast<const RasterLayer *>(layer);
    QStringList texts{raster ? ViewTexts::zoomPercent(raster->getCellSizeX(), units) : QString(),
                      ViewTexts::unitsPerPixel(units)};
    texts.removeAll(QString());
    scale->setText(texts.join(QStringLiteral("  ·  ")));
}

void ViewStatus::showProgress(int percent)
{
    progress->setValue(percent);
    progress->setVisible(percent < kComplete);
}

} // namespace Viewer
