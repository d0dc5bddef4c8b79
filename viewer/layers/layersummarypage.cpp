#include "layersummarypage.h"

#include "sources/sources.h"

#include <QDGui/rasterlayer.h>

#include <QDir>
#include <QFormLayout>
#include <QLineEdit>
#include <QLocale>
#include <QPalette>

namespace Viewer {

using Korvane::Map::Layer;
using Korvane::Map::RasterLayer;

namespace {

/// As many digits as coordinates can have, no zeros at the end.
QString numberText(double value)
{
    return QLocale().toString(value, 'g', 15);
}

QString pairText(double x, double y)
{
    //: Two numbers, which must be told apart where the comma is the decimal point.
    return LayerSummaryPage::tr("%1, %2").arg(numberText(x), numberText(y));
}

} // namespace

LayerSummaryPage::LayerSummaryPage(const Layer &layer, QWidget *parent)
    : QWidget(parent)
    , form(new QFormLayout(this))
{
    setWindowTitle(tr("General"));
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    const QString source = Sources::shown(Sources::ofLayer(layer));
    addRow(tr("Source:"), Sources::isAddress(source) ? source : QDir::toNativeSeparators(source));
    addRow(tr("Format:"), layer.getFormat());
    addRow(tr("Access:"), layer.getProtocol());
    addRow(tr("Coordinate system:"), layer.getCoordSysName());
    const QRectF bounds = layer.getBounds();
    addRow(tr("First corner:"), pairText(bounds.x(), bounds.y()));
    addRow(tr("Opposite corner:"), pairText(bounds.x() + bounds.width(), bounds.y() + bounds.height()));
    if (const auto *raster = qobject_cast<const RasterLayer *>(&layer))
        addRasterRows(*raster);
    addRow(tr("Comments:"), layer.getComments());
}

void LayerSummaryPage::addRasterRows(const RasterLayer &layer)
{
    const QLocale locale;
    const QSize size = layer.getSize();
    if (size.isValid())
        addRow(tr("Size in cells:"),
               QStringLiteral("%1 × %2").arg(locale.toString(size.width()), locale.toString(size.height())));
    addRow(tr("Cell size:"), pairText(layer.getCellSizeX(), layer.getCellSizeY()));
    addRow(tr("Cell type:"), layer.getCellType());
    addRow(tr("Bands:"), locale.toString(layer.getNumberOfBands()));
    if (layer.getRotation() != 0.0)
        addRow(tr("Rotation:"), tr("%1° clockwise").arg(numberText(layer.getRotation())));
}

void LayerSummaryPage::addRow(const QString &name, const QString &value)
{
    if (value.isEmpty())
        return;
    // A line that can be selected and scrolled: paths are long and have no place to be broken at.
    auto *field = new QLineEdit(value);
    field->setReadOnly(true);
    field->setFrame(false);
    field->setCursorPosition(0);
    QPalette transparent = field->palette();
    transparent.setColor(QPalette::Base, Qt::transparent);
    field->setPalette(transparent);
    form->addRow(name, field);
}

} // namespace Viewer
