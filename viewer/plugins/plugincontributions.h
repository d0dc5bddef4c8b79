#pragma once

#include <QList>
#include <QObject>
#include <QVector>

class QAction;
class QDockWidget;
class QMainWindow;
class QMdiSubWindow;
class QToolBar;
class QWidget;

namespace Korvane {
class PluginRegistry;
namespace Map {
class Layer;
}
} // namespace Korvane

namespace Viewer {

/// The user-interface pieces that the plug-ins bring. Docks, tool bars and actions are collected once and belong to the
/// main window; pages are made anew whenever they are asked for.
class PluginContributions : public QObject
{
    Q_OBJECT

public:
    /// The registry must outlive it. Docks and tool bars get \a window as their parent, but are not placed in it.
    PluginContributions(const Korvane::PluginRegistry &registry, QMainWindow *window);

    QList<QDockWidget *> docks() const { return dockWidgets; }
    QList<QToolBar *> toolBars() const { return bars; }
    QList<QAction *> actions() const { return menuActions; }

    /// New information pages for \a layer, of the plug-in that makes layers of its class. The caller owns them.
    QVector<QWidget *> makeInfoPages(const Korvane::Map::Layer &layer) const;
    /// New preference pages of all plug-ins. The caller owns them.
    QVector<QWidget *> makePreferencePages() const;

    /// Calls the docks' slot onLayerActivated(Map::Layer*), in whatever spelling, where they have one.
    void activateLayer(Korvane::Map::Layer *layer);
    /// Calls the docks' slot onSubWindowActivated(QMdiSubWindow*) where they have one.
    void activateSubWindow(QMdiSubWindow *window);

    /// What a person calls \a widget: its window title, else its object name.
    static QString titleOf(const QWidget &widget);
    /// Calls \a receiver's method \a name with one pointer argument whose type's name, without its namespaces, is
    /// \a typeName. False when there is no such method.
    static bool invokeWithPointer(QObject *receiver, const char *name, const char *typeName, void *argument);

private:
    void invokeDocks(const char *name, const char *typeName, void *argument);

    const Korvane::PluginRegistry &registry;
    QList<QDockWidget *> dockWidgets;
    QList<QToolBar *> bars;
    QList<QAction *> menuActions;
};

} // namespace Viewer
