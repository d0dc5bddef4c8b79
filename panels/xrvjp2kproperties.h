#pragma once

#include <QDGui/ilayerpropertieswidget.h>

#include <QPointer>
#include <QWidget>

#include <memory>

class QColor;
class QMdiSubWindow;

namespace Korvane {
class XRVJP2kLayer;
namespace Map {
class Layer;
}
} // namespace Korvane

namespace Ui {
class XRVJP2kPropertiesClass;
}

// The host finds the slots below by their signatures, in which the argument is spelled this way.
namespace Map = Korvane::Map;

/// Edits the display of the active layer. What a person changes goes to the layer at once; loading a layer into the
/// widgets sends nothing back. Enabled only while an XRVJP2kLayer is active. GUI thread.
class XRVJP2kProperties : public QWidget, public Korvane::ILayerPropertiesWidget
{
    Q_OBJECT
    Q_INTERFACES(Korvane::ILayerPropertiesWidget)

public:
    explicit XRVJP2kProperties(QWidget *parent = nullptr);
    ~XRVJP2kProperties() override;

    /// The same as onLayerActivated().
    void setLayer(Korvane::Map::Layer *pLayer) override { onLayerActivated(pLayer); }
    /// There is nothing left to apply.
    void apply() override {}

public Q_SLOTS:
    /// Shows \a layer, which stays the caller's; null or a layer of another kind disables the panel.
    void onLayerActivated(Map::Layer *layer);
    /// Disables the panel for a \a window without a map view, and for none at all while the program is in front. A
    /// map view is followed by onLayerActivated().
    void onSubWindowActivated(QMdiSubWindow *window);

private Q_SLOTS:
    void on_redBandComboBox_activated(int index);
    void on_greenBandComboBox_activated(int index);
    void on_blueBandComboBox_activated(int index);
    void on_opacityBandComboBox_activated(int index);
    void on_resetBrightness_clicked();
    void on_resetContrast_clicked();
    void on_resetTransparency_clicked();
    void on_resetDRA_clicked();
    void on_resetJp2Quality_clicked();
    void on_brightnessSpinBox_valueChanged(int value);
    void on_contrastSpinBox_valueChanged(int value);
    void on_draSpinBox_valueChanged(int value);
    void on_transparencySpinBox_valueChanged(int value);
    void on_jp2QualitySpinBox_valueChanged(int value);
    void on_brightnessSlider_valueChanged(int value);
    void on_contrastSlider_valueChanged(int value);
    void on_transparencySlider_valueChanged(int value);
    void on_draSlider_valueChanged(int value);
    void on_jp2QualitySlider_valueChanged(int value);
    void on_progressiveCheckbox_stateChanged(int state);
    void on_adaptiveRoamCheckbox_stateChanged(int state);
    void on_resampleTypeComboBox_currentIndexChanged(int index);
    void on_backingStoreCheckBox_stateChanged(int state);
    void on_textureDitherCheckBox_stateChanged(int state);
    void on_outlineColorButton_clicked(bool checked);
    void on_freeCacheCheckBox_stateChanged(int state);
    void on_drawImageOutlineCheckBox_stateChanged(int state);
    void on_readLineGroupBox_buttonClicked(int id);

private:
    Q_DISABLE_COPY(XRVJP2kProperties)

    void alignSpinBoxes();
    template <typename Change> void changeAndRedraw(Change change);
    void applyBands();
    void loadResetSettings();
    void loadTones();
    void loadQualityLayers();
    void loadDisplay();
    void loadBands();
    void loadOpacityBand();
    void showOutlineColor(const QColor &color);

    std::unique_ptr<Ui::XRVJP2kPropertiesClass> ui;
    QPointer<Korvane::XRVJP2kLayer> currentLayer;
};
