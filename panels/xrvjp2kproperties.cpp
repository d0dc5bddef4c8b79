#include "xrvjp2kproperties.h"

#include "layer/xrvjp2klayer.h"
#include "settings/pluginsettings.h"
#include "ui_xrvjp2kproperties.h"

#include <QDGui/mapview.h>
#include <xrv60/plkconfig.h>
#include <xrv60/plkfile.h>

#include <QApplication>
#include <QButtonGroup>
#include <QColorDialog>
#include <QMdiSubWindow>
#include <QSignalBlocker>
#include <QVariant>

#include <algorithm>
#include <cmath>

using Korvane::XRVJP2kLayer;

namespace {

constexpr int kContentsMargin = 3;
constexpr int kReadLineRGBA = 0;
constexpr int kReadLineBIL = 1;
constexpr int kAllOpacity = 1; // item of the opacity combo box
/// Dynamic property of a layer: the band list for which a person chose no opacity. Its last band may be the opacity
/// band all the same, as a colour.
constexpr const char *kBandsWithoutOpacity = "bandsWithoutOpacity";

/// The whole part of \a share in per cent; 0 for a NaN, which a layer may hold.
int percentOf(double share)
{
    return std::isnan(share) ? 0 : static_cast<int>(share * 100.0);
}

template <typename Widget> void setQuietly(Widget &widget, int value)
{
    const QSignalBlocker blocker(widget);
    widget.setValue(value);
}

void setChecked(QCheckBox &box, bool on)
{
    const QSignalBlocker blocker(box);
    box.setChecked(on);
}

template <typename Widget> void setRangeQuietly(Widget &widget, int maximum, int value)
{
    const QSignalBlocker blocker(widget);
    widget.setRange(1, maximum);
    widget.setValue(value);
}

void fill(QComboBox &box, const QStringList &items, int index)
{
    const QSignalBlocker blocker(box);
    box.clear();
    box.addItems(items);
    box.setCurrentIndex(index);
}

} // namespace

XRVJP2kProperties::XRVJP2kProperties(QWidget *parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::XRVJP2kPropertiesClass>())
{
    // Before the form is set up, which connects the slots by the names of the panel's children.
    auto *readLineMethods = new QButtonGroup(this);
    readLineMethods->setObjectName(QStringLiteral("readLineGroupBox"));
    ui->setupUi(this);
    ui->draSpinBox->setSuffix(QStringLiteral(" %"));
    ui->scrollAreaWidgetContents->layout()->setContentsMargins(kContentsMargin, kContentsMargin, kContentsMargin,
                                                               kContentsMargin);
    const PLK::SDK::CConfig &config = PLK::SDK::CFileBase::sFilesHelper().Get()->Config();
    ui->resampleTypeComboBox->setCurrentIndex(config.GetOptimizeUseNearestNeighbour() ? 0 : 1);
    ui->draSlider->setRange(1, 100);
    alignSpinBoxes();
    readLineMethods->addButton(ui->readLineRGBA, kReadLineRGBA);
    readLineMethods->addButton(ui->readLineBIL, kReadLineBIL);
    // Never offered. Hidden too, as the panel may be shown before the event loop gets to delete the group.
    ui->groupBoxAdvanced->hide();
    ui->groupBoxAdvanced->deleteLater();
    setEnabled(false);
}

XRVJP2kProperties::~XRVJP2kProperties() = default;

/// One width for all, so that the sliders beside them are of one length too.
void XRVJP2kProperties::alignSpinBoxes()
{
    QSpinBox *const boxes[] = {ui->transparencySpinBox, ui->contrastSpinBox, ui->brightnessSpinBox, ui->draSpinBox,
                               ui->jp2QualitySpinBox};
    int width = 0;
    for (const QSpinBox *box : boxes)
        width = std::max(width, box->sizeHint().width());
    for (QSpinBox *box : boxes)
        box->setMinimumWidth(width);
}

void XRVJP2kProperties::onLayerActivated(Map::Layer *layer)
{
    currentLayer = qobject_cast<XRVJP2kLayer *>(layer);
    setEnabled(currentLayer);
    if (!currentLayer)
        return;
    loadTones();
    loadQualityLayers();
    loadDisplay();
    loadBands();
    setChecked(*ui->drawImageOutlineCheckBox, currentLayer->getDrawOutline());
    showOutlineColor(currentLayer->getOutlineColor());
}

void XRVJP2kProperties::onSubWindowActivated(QMdiSubWindow *window)
{
    const bool isElsewhere =
        window ? !qobject_cast<Map::MapView *>(window->widget()) : QApplication::activeWindow() != nullptr;
    if (isElsewhere)
        setEnabled(false);
}

void XRVJP2kProperties::loadTones()
{
    const int transparency = percentOf(1.0 - currentLayer->getTransparency());
    setQuietly(*ui->transparencySlider, transparency);
    setQuietly(*ui->transparencySpinBox, transparency);
    const int contrast = percentOf(currentLayer->getContrast());
    setQuietly(*ui->contrastSlider, contrast);
    setQuietly(*ui->contrastSpinBox, contrast);
    const int brightness = percentOf(currentLayer->getBrightness());
    setQuietly(*ui->brightnessSlider, brightness);
    setQuietly(*ui->brightnessSpinBox, brightness);
    const int clip = currentLayer->getTransformClip();
    setQuietly(*ui->draSlider, clip);
    setQuietly(*ui->draSpinBox, clip);
}

/// What a source that is opened again in another mode does not take over, and the modes themselves, for they may not
/// have been had.
void XRVJP2kProperties::loadResetSettings()
{
    if (!currentLayer)
        return;
    loadQualityLayers();
    loadDisplay();
}

void XRVJP2kProperties::loadQualityLayers()
{
    XRVJP2kLayer::Jp2FileInfo info;
    const bool isJp2 = currentLayer->getJp2FileInfo(info);
    ui->groupBoxQuality->setEnabled(isJp2);
    if (!isJp2)
        return;
    const int layers = currentLayer->getJp2QualityLayers();
    setRangeQuietly(*ui->jp2QualitySlider, info.qualityLayers, layers);
    setRangeQuietly(*ui->jp2QualitySpinBox, info.qualityLayers, layers);
}

void XRVJP2kProperties::loadDisplay()
{
    {
        const QSignalBlocker blocker(ui->resampleTypeComboBox);
        ui->resampleTypeComboBox->setCurrentIndex(currentLayer->getResampleType());
    }
    setChecked(*ui->progressiveCheckbox, currentLayer->getProgressive());
    setChecked(*ui->adaptiveRoamCheckbox, currentLayer->getAdaptiveRoam());
    setChecked(*ui->backingStoreCheckBox, currentLayer->getBackingStore());
    setChecked(*ui->textureDitherCheckBox, currentLayer->getTextureDither());
}

void XRVJP2kProperties::loadBands()
{
    const QStringList descriptions = currentLayer->getBandDescriptions();
    const QVector<int> bands = currentLayer->getBandList();
    QComboBox *const boxes[] = {ui->redBandComboBox, ui->greenBandComboBox, ui->blueBandComboBox};
    for (int i = 0; i < 3; ++i)
        fill(*boxes[i], descriptions, bands.value(i, -1));
    loadOpacityBand();
}

void XRVJP2kProperties::loadOpacityBand()
{
    const QVector<int> bands = currentLayer->getBandList();
    const bool hasOpacity = currentLayer->hasOpacity();
    const bool isChosenAway = currentLayer->property(kBandsWithoutOpacity) == QVariant::fromValue(bands);
    const bool isShown =
        hasOpacity && !isChosenAway && !bands.isEmpty() && bands.last() == currentLayer->getOpacityBandNumber();
    fill(*ui->opacityBandComboBox, {QStringLiteral("None"), QStringLiteral("AllOpacity")}, isShown ? kAllOpacity : 0);
    ui->opacityBandComboBox->setEnabled(hasOpacity);
}

void XRVJP2kProperties::showOutlineColor(const QColor &color)
{
    ui->colorFrame->setStyleSheet(
        QStringLiteral("background-color: rgb(%1, %2, %3);").arg(color.red()).arg(color.green()).arg(color.blue()));
}

void XRVJP2kProperties::applyBands()
{
    if (!currentLayer)
        return;
    QVector<int> bands{ui->redBandComboBox->currentIndex(), ui->greenBandComboBox->currentIndex(),
                       ui->blueBandComboBox->currentIndex()};
    if (currentLayer->hasOpacity() && ui->opacityBandComboBox->currentIndex() == kAllOpacity)
        bands.append(currentLayer->getOpacityBandNumber());
    else
        currentLayer->setProperty(kBandsWithoutOpacity, QVariant::fromValue(bands));
    currentLayer->setBandList(bands);
}

/// For setters that leave the redraw to their caller.
template <typename Change> void XRVJP2kProperties::changeAndRedraw(Change change)
{
    if (!currentLayer)
        return;
    change(*currentLayer);
    currentLayer->refresh(0, 0, 0, 0);
}

void XRVJP2kProperties::on_redBandComboBox_activated(int)
{
    applyBands();
}

void XRVJP2kProperties::on_greenBandComboBox_activated(int)
{
    applyBands();
}

void XRVJP2kProperties::on_blueBandComboBox_activated(int)
{
    applyBands();
}

void XRVJP2kProperties::on_opacityBandComboBox_activated(int)
{
    applyBands();
}

void XRVJP2kProperties::on_resetBrightness_clicked()
{
    ui->brightnessSlider->setValue(100);
}

void XRVJP2kProperties::on_resetContrast_clicked()
{
    ui->contrastSlider->setValue(100);
}

void XRVJP2kProperties::on_resetTransparency_clicked()
{
    ui->transparencySlider->setValue(0);
}

void XRVJP2kProperties::on_resetDRA_clicked()
{
    ui->draSlider->setValue(PluginSettings::read(PluginSettings::kDefaultClipTransform));
}

void XRVJP2kProperties::on_resetJp2Quality_clicked()
{
    XRVJP2kLayer::Jp2FileInfo info;
    if (currentLayer && currentLayer->getJp2FileInfo(info))
        ui->jp2QualitySlider->setValue(info.qualityLayers);
}

void XRVJP2kProperties::on_brightnessSpinBox_valueChanged(int value)
{
    ui->brightnessSlider->setValue(value);
}

void XRVJP2kProperties::on_contrastSpinBox_valueChanged(int value)
{
    ui->contrastSlider->setValue(value);
}

void XRVJP2kProperties::on_draSpinBox_valueChanged(int value)
{
    ui->draSlider->setValue(value);
    setQuietly(*ui->draSpinBox, ui->draSlider->value()); // the slider has no 0
}

void XRVJP2kProperties::on_transparencySpinBox_valueChanged(int value)
{
    ui->transparencySlider->setValue(value);
}

void XRVJP2kProperties::on_jp2QualitySpinBox_valueChanged(int value)
{
    ui->jp2QualitySlider->setValue(value);
}

void XRVJP2kProperties::on_brightnessSlider_valueChanged(int value)
{
    changeAndRedraw([value](XRVJP2kLayer &layer) { layer.setBrightness(value / 100.0); });
    ui->brightnessSpinBox->setValue(value);
}

void XRVJP2kProperties::on_contrastSlider_valueChanged(int value)
{
    changeAndRedraw([value](XRVJP2kLayer &layer) { layer.setContrast(value / 100.0); });
    ui->contrastSpinBox->setValue(value);
}

void XRVJP2kProperties::on_transparencySlider_valueChanged(int value)
{
    changeAndRedraw([value](XRVJP2kLayer &layer) { layer.setTransparency((100 - value) / 100.0); });
    ui->transparencySpinBox->setValue(value);
}

void XRVJP2kProperties::on_draSlider_valueChanged(int value)
{
    const unsigned percent = std::min(static_cast<unsigned>(value), 100U);
    changeAndRedraw([percent](XRVJP2kLayer &layer) { layer.setTransformClip(static_cast<int>(percent)); });
    ui->draSpinBox->setValue(value);
}

void XRVJP2kProperties::on_jp2QualitySlider_valueChanged(int value)
{
    changeAndRedraw([value](XRVJP2kLayer &layer) { layer.setJp2QualityLayers(value); });
    ui->jp2QualitySpinBox->setValue(value);
}

void XRVJP2kProperties::on_progressiveCheckbox_stateChanged(int state)
{
    if (currentLayer)
        currentLayer->setProgressive(state != 0);
    loadResetSettings();
}

void XRVJP2kProperties::on_adaptiveRoamCheckbox_stateChanged(int state)
{
    if (currentLayer)
        currentLayer->setAdaptiveRoam(state != 0);
}

void XRVJP2kProperties::on_resampleTypeComboBox_currentIndexChanged(int index)
{
    if (!currentLayer)
        return;
    currentLayer->setResampleType(static_cast<XRVJP2kLayer::ResampleType>(ui->resampleTypeComboBox->currentIndex()));
    currentLayer->setPixmapSmoothing(index != 0);
}

void XRVJP2kProperties::on_backingStoreCheckBox_stateChanged(int state)
{
    if (currentLayer)
        currentLayer->setBackingStore(state != 0);
    loadResetSettings();
}

void XRVJP2kProperties::on_textureDitherCheckBox_stateChanged(int state)
{
    if (currentLayer)
        currentLayer->setTextureDither(state != 0);
}

void XRVJP2kProperties::on_outlineColorButton_clicked(bool)
{
    if (!currentLayer)
        return;
    const QColor color = QColorDialog::getColor(currentLayer->getOutlineColor(), this, QString());
    // The layer may have gone while the dialog was open.
    if (!color.isValid() || !currentLayer)
        return;
    currentLayer->setOutlineColor(color);
    showOutlineColor(color);
}

void XRVJP2kProperties::on_freeCacheCheckBox_stateChanged(int state)
{
    if (currentLayer)
        currentLayer->setFreeCache(state != 0);
}

void XRVJP2kProperties::on_drawImageOutlineCheckBox_stateChanged(int state)
{
    if (currentLayer)
        currentLayer->setDrawOutline(state != 0);
}

void XRVJP2kProperties::on_readLineGroupBox_buttonClicked(int id)
{
    if (currentLayer && (id == kReadLineRGBA || id == kReadLineBIL))
        currentLayer->setReadRGBA(id == kReadLineRGBA);
}
