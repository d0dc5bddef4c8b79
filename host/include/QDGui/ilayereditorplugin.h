#pragma once

#include <QList>
#include <QObject>

class QAction;
class QDockWidget;
class QToolBar;
class QWidget;

/// User-interface pieces that belong to a layer type. Every call makes new objects without a parent, which the caller
/// owns; an entry may be null. The order of the functions is part of the interface.
///
/// The host connects what it finds in them by name. To every dock's widget: slots
/// onLayerActivated(Map::Layer*) or onLayerActivated(Korvane::Map::Layer*), and onSubWindowActivated(QMdiSubWindow*).
/// To every preference page: onSavePrefs(), when the person accepts the preferences.
class ILayerEditorPlugin
{
public:
    virtual QList<QDockWidget *> getDockWidgets() = 0;
    /// Pages that implement Korvane::ILayerPropertiesWidget.
    virtual QList<QWidget *> getInfoPages() = 0;
    virtual QList<QToolBar *> getToolBars() = 0;
    virtual QList<QAction *> getActions() = 0;
    virtual QList<QWidget *> getPreferencePages() = 0;

protected:
    ~ILayerEditorPlugin() = default;
};

Q_DECLARE_INTERFACE(ILayerEditorPlugin, "com.korvane.viewer.ILayerEditorPlugin/1.0")
