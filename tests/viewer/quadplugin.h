#pragma once

#include <QDGui/ilayereditorplugin.h>
#include <QDGui/ilayerplugin.h>
#include <QDGui/ilayerplugininfo.h>
#include <QDGui/ilayerpropertieswidget.h>

#include <QLabel>
#include <QWidget>

class QMdiSubWindow;

namespace Map = Korvane::Map;

/// Dock content: says in its text which layer it was told of last, in "activeText".
class QuadPanel : public QLabel
{
    Q_OBJECT

public Q_SLOTS:
    void onLayerActivated(Map::Layer *layer);
    void onSubWindowActivated(QMdiSubWindow *window);
};

/// Information page with a clipboard text.
class QuadPage : public QWidget, public Korvane::ILayerPropertiesWidget
{
    Q_OBJECT
    Q_INTERFACES(Korvane::ILayerPropertiesWidget)

public:
    QuadPage();
    void setLayer(Map::Layer *layer) override;
    void apply() override;

public Q_SLOTS:
    void copyToClipboard();

private:
    Map::Layer *layer = nullptr;
};

/// Preference page that writes "Quad/Saved".
class QuadPreferences : public QWidget
{
    Q_OBJECT

public:
    QuadPreferences();

public Q_SLOTS:
    void onSavePrefs();
};

class QuadPlugin : public QObject, public ILayerPluginInfo, public ILayerPlugin, public ILayerEditorPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.korvane.viewer.plugin.QuadPlugin")
    Q_INTERFACES(ILayerPluginInfo ILayerPlugin ILayerEditorPlugin)

public:
    QString getVersion() const override { return QStringLiteral("1.2"); }
    QString getVendor() const override { return QStringLiteral("Tests"); }
    QString getDescription() const override { return QStringLiteral("Quads"); }
    QString getClassName() const override { return QStringLiteral("QuadLayer"); }
    QString getId() const override { return QStringLiteral("quad"); }
    QIcon getIcon() const override { return QIcon(); }
    QString getFileFilter() const override { return QStringLiteral("Quads (*.quad)"); }
    void setEnabled(bool) override {}
    bool isEnabled() const override { return true; }

    Map::Layer *createLayer(bool askForUrl) override;

    QList<QDockWidget *> getDockWidgets() override;
    QList<QWidget *> getInfoPages() override;
    QList<QToolBar *> getToolBars() override;
    QList<QAction *> getActions() override;
    QList<QWidget *> getPreferencePages() override;
};
