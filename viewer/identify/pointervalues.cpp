#include "pointervalues.h"

#include "valuetexts.h"

#include <QDGui/ilayervalues.h>
#include <QDGui/layervaluereader.h>
#include <QDGui/mapview.h>
#include <QDGui/rasterlayer.h>

#include <QLabel>

namespace Viewer {

using Korvane::Map::CellValues;
using Korvane::Map::ILayerValues;
using Korvane::Map::Layer;
using Korvane::Map::MapView;
using Korvane::Map::RasterLayer;
using Korvane::Map::ValueQuestion;

namespace {

constexpr int kRestMs = 40;

} // namespace

PointerValues::PointerValues(QLabel *label)
    : QObject(label)
    , label(label)
{
    rest.setSingleShot(true);
    rest.setInterval(kRestMs);
    connect(&rest, &QTimer::timeout, this, &PointerValues::ask);
}

PointerValues::~PointerValues() = default;

void PointerValues::setView(MapView *newView)
{
    if (view)
        view->disconnect(this);
    view = newView;
    clear();
    takeReader(nullptr);
    if (!view)
        return;
    connect(view, &MapView::cursorMoved, this, &PointerValues::moveTo);
    connect(view, &MapView::cursorLeft, this, &PointerValues::clear);
    connect(view, &MapView::activeLayerChanged, this, [this] {
        clear();
        takeReader(nullptr);
    });
}

void PointerValues::moveTo(const QPointF &worldPoint)
{
    isOver = true;
    place = worldPoint;
    if (!rest.isActive())
        rest.start();
}

void PointerValues::clear()
{
    isOver = false;
    rest.stop();
    label->clear();
}

void PointerValues::ask()
{
    const auto *layer = view ? qobject_cast<const RasterLayer *>(view->getActiveLayer()) : nullptr;
    takeReader(layer && layer->isVisible() ? layer : nullptr);
    if (!reader)
        return label->clear();
    ValueQuestion question;
    question.world = place;
    question.unitsPerPixel = view->getUnitsPerPixel();
    question.bands = layer->getBandList().mid(0, 3);
    if (question.bands == QVector<int>(3, question.bands.value(0)))
        question.bands.resize(1); // shown as grey
    reader->ask(question);
}

/// A reader of the layer, if it is another one or shows something else; none of null.
void PointerValues::takeReader(const Layer *layer)
{
    const QString source = layer ? layer->getDataSource() : QString();
    if (layer == readLayer && source == readSource)
        return;
    readLayer = layer;
    readSource = source;
    const auto *values = dynamic_cast<const ILayerValues *>(layer);
    reader = values ? values->makeValueReader() : nullptr;
    if (reader)
        connect(reader.get(), &Korvane::Map::LayerValueReader::answered, this, &PointerValues::show);
}

void PointerValues::show(const CellValues &values)
{
    if (isOver)
        label->setText(ValueTexts::list(values));
}

} // namespace Viewer
