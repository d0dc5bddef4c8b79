#include "xrvjp2ksunshade.h"

#include "layer/xrvjp2klayer.h"
#include "sunshadewidget.h"
#include "ui_xrvjp2ksunshade.h"

#include <QDGui/mapview.h>

#include <QMdiSubWindow>
#include <QSignalBlocker>

#include <cmath>

using Korvane::XRVJP2kLayer;

namespace {

/// The whole part; 0 for a NaN, which a layer may hold.
int wholeDegrees(double degrees)
{
    return std::isnan(degrees) ? 0 : static_cast<int>(degrees);
}

} // namespace

XRVJP2kSunshade::XRVJP2kSunshade(QWidget *parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::XRVJP2kSunshadeClass>())
{
    ui->setupUi(this);
    QLayout *frameLayout = ui->hillShadeFrame->layout();
    frameLayout->addWidget(new SunShadeWidget(this));
    frameLayout->setContentsMargins(0, 0, 0, 0);
    frameLayout->setSpacing(0);
}

XRVJP2kSunshade::~XRVJP2kSunshade() = default;

void XRVJP2kSunshade::onLayerActivated(Map::Layer *activated)
{
    layer = qobject_cast<XRVJP2kLayer *>(activated);
    setEnabled(layer);
    if (!layer)
        return;
    const QSignalBlocker checkBoxBlocker(ui->hillShadeCheckBox);
    const QSignalBlocker azimuthBlocker(ui->azumithSpinBox);
    const QSignalBlocker elevationBlocker(ui->elevationSpinBox);
    ui->hillShadeCheckBox->setChecked(layer->getHillShade());
    ui->azumithSpinBox->setValue(wholeDegrees(layer->getAzumith()));
    ui->elevationSpinBox->setValue(wholeDegrees(layer->getElevation()));
}

void XRVJP2kSunshade::onSubWindowActivated(QMdiSubWindow *window)
{
    setEnabled(window && qobject_cast<Map::MapView *>(window->widget()));
}

template <typename Change> void XRVJP2kSunshade::changeAndRedraw(Change change)
{
    if (!layer)
        return;
    change(*layer);
    layer->refresh(0, 0, 0, 0);
}

void XRVJP2kSunshade::on_elevationSpinBox_valueChanged(int degrees)
{
    changeAndRedraw([degrees](XRVJP2kLayer &target) { target.setElevation(degrees); });
}

void XRVJP2kSunshade::on_azumithSpinBox_valueChanged(int degrees)
{
    changeAndRedraw([degrees](XRVJP2kLayer &target) { target.setAzumith(degrees); });
}

void XRVJP2kSunshade::on_hillShadeCheckBox_stateChanged(int state)
{
    changeAndRedraw([state](XRVJP2kLayer &target) { target.setHillShade(state != 0); });
}
