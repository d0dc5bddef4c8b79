#include "identifydock.h"

#include "geographic.h"
#include "sources/sources.h"
#include "valuetexts.h"

#include <QDGui/ilayervalues.h>
#include <QDGui/layervaluereader.h>
#include <QDGui/mapview.h>
#include <QDGui/rasterlayer.h>

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QTreeWidget>

#include <algorithm>

namespace Viewer {

using Korvane::Map::CellValues;
using Korvane::Map::ILayerValues;
using Korvane::Map::Layer;
using Korvane::Map::LayerValueReader;
using Korvane::Map::MapView;
using Korvane::Map::RasterLayer;
using Korvane::Map::ValueQuestion;

namespace {

constexpr int kCoordinateDigits = 10; // a millimetre in most systems

QTreeWidgetItem *addRow(QTreeWidgetItem *parent, const QString &name, const QString &value)
{
    auto *row = new QTreeWidgetItem(parent, {name, value});
    row->setToolTip(1, value);
    return row;
}

/// Without separators, so that it can be pasted elsewhere.
QString coordinate(double value)
{
    return QString::number(value, 'g', kCoordinateDigits);
}

} // namespace

IdentifyDock::IdentifyDock(QWidget *parent)
    : QDockWidget(tr("Identify"), parent)
    , tree(new QTreeWidget)
{
    setObjectName(QStringLiteral("IdentifyDock"));
    tree->setColumnCount(2);
    tree->setHeaderLabels({tr("Name"), tr("Value")});
    tree->header()->setSectionResizeMode(QHeaderView::Stretch);
    tree->setTextElideMode(Qt::ElideMiddle);
    tree->setAlternatingRowColors(true);
    tree->setSelectionMode(QAbstractItemView::ExtendedSelection);
    tree->setWhatsThis(tr("Click on the map to see what lies there."));
    auto *copyAction = new QAction(tr("&Copy"), tree);
    copyAction->setShortcut(QKeySequence::Copy);
    copyAction->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    connect(copyAction, &QAction::triggered, this, &IdentifyDock::copy);
    tree->addAction(copyAction);
    tree->setContextMenuPolicy(Qt::ActionsContextMenu);
    setWidget(tree);
    toggleViewAction()->setShortcut(QStringLiteral("Ctrl+I"));
    new QTreeWidgetItem(tree, {tree->whatsThis(), QString()});
}

IdentifyDock::~IdentifyDock() = default;

void IdentifyDock::setView(MapView *newView)
{
    if (view)
        view->disconnect(this);
    view = newView;
    if (view)
        connect(view, &MapView::clicked, this, [this](const QPointF &worldPoint) {
            if (isVisible())
                look(worldPoint);
        });
}

void IdentifyDock::identify(const QPointF &worldPoint)
{
    show();
    raise();
    look(worldPoint);
}

void IdentifyDock::look(const QPointF &worldPoint)
{
    readers.clear(); // what the rows below are filled by
    tree->clear();
    if (!view)
        return;
    addPlace(worldPoint);
    const QList<Layer *> layers = view->getLayers();
    std::for_each(layers.crbegin(), layers.crend(), [&](const Layer *layer) {
        if (layer->isVisible())
            addLayer(*layer, worldPoint);
    });
    tree->expandAll();
}

void IdentifyDock::addPlace(const QPointF &worldPoint)
{
    auto *top = new QTreeWidgetItem(tree, {tr("Place"), QString()});
    addRow(top, tr("X"), coordinate(worldPoint.x()));
    addRow(top, tr("Y"), coordinate(worldPoint.y()));
    if (const auto degrees = Geographic::fromWorld(worldPoint, codeOf(*view))) {
        addRow(top, tr("Longitude"), Geographic::longitudeText(degrees->x()));
        addRow(top, tr("Latitude"), Geographic::latitudeText(degrees->y()));
    }
}

void IdentifyDock::addLayer(const Layer &layer, const QPointF &worldPoint)
{
    const auto *source = dynamic_cast<const ILayerValues *>(&layer);
    std::unique_ptr<LayerValueReader> reader = source ? source->makeValueReader() : nullptr;
    if (!reader)
        return;
    auto *item = new QTreeWidgetItem(tree, {Sources::nameOfLayer(layer), tr("reading...")});
    item->setToolTip(0, item->text(0));
    connect(reader.get(), &LayerValueReader::answered, this,
            [this, item, names = source->getBandNames()](const CellValues &values) { fill(item, names, values); });
    ValueQuestion question;
    question.world = worldPoint;
    reader->ask(question);
    readers.push_back(std::move(reader));
}

void IdentifyDock::fill(QTreeWidgetItem *item, const QStringList &names, const CellValues &values)
{
    if (!values.isInside) {
        item->setText(1, tr("lies elsewhere"));
        return;
    }
    item->setText(1, values.error);
    addRow(item, tr("Column, row"), QStringLiteral("%1, %2").arg(values.column).arg(values.row));
    for (int band = 0; band < values.values.size(); ++band) {
        const QString name = names.value(band);
        addRow(item, name.isEmpty() ? tr("Band %1").arg(band + 1) : name, ValueTexts::number(values.values[band]));
    }
    item->setExpanded(true);
}

int IdentifyDock::codeOf(const MapView &view)
{
    QList<Layer *> layers = view.getLayers();
    layers.prepend(view.getActiveLayer());
    for (const Layer *layer : qAsConst(layers)) {
        const auto *raster = qobject_cast<const RasterLayer *>(layer);
        if (raster && raster->getEpsgCode() > 0)
            return raster->getEpsgCode();
    }
    return 0;
}

QString IdentifyDock::text() const
{
    QString lines;
    for (QTreeWidgetItemIterator it(tree); *it; ++it)
        lines += (*it)->text(0) + QLatin1Char('\t') + (*it)->text(1) + QLatin1Char('\n');
    return lines;
}

void IdentifyDock::copy() const
{
    QGuiApplication::clipboard()->setText(text());
}

} // namespace Viewer
