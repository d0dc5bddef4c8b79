#pragma once

#include <QPointer>
#include <QWidget>

#include <memory>

class QMdiSubWindow;

namespace Korvane {
class XRVJP2kLayer;
namespace Map {
class Layer;
}
} // namespace Korvane

namespace Ui {
class XRVJP2kSunshadeClass;
}

// The host finds the slots below by their signatures, in which the argument is spelled this way.
namespace Map = Korvane::Map;

/// For hosts to show; this plug-in does not.
///
/// Switches the active layer's hill shading and sets the sun's place. Whoever shows the panel tells it of the active
/// layer and map window. GUI thread.
class Q_DECL_EXPORT XRVJP2kSunshade : public QWidget
{
    Q_OBJECT

public:
    explicit XRVJP2kSunshade(QWidget *parent = nullptr);
    ~XRVJP2kSunshade() override;

public Q_SLOTS:
    /// Shows \a activated, which stays the caller's; null or a layer of another kind disables the panel.
    void onLayerActivated(Map::Layer *activated);
    /// Enables the panel for a \a window with a map view, disables it otherwise.
    void onSubWindowActivated(QMdiSubWindow *window);
    void on_elevationSpinBox_valueChanged(int degrees);
    void on_azumithSpinBox_valueChanged(int degrees);
    void on_hillShadeCheckBox_stateChanged(int state);

private:
    Q_DISABLE_COPY(XRVJP2kSunshade)

    template <typename Change> void changeAndRedraw(Change change);

    std::unique_ptr<Ui::XRVJP2kSunshadeClass> ui;
    QPointer<Korvane::XRVJP2kLayer> layer;
};
