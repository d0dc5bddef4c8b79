#include "quadlayer.h"

#include <QDGui/application.h>
#include <QDGui/ilayereditorplugin.h>
#include <QDGui/ilayerplugin.h>
#include <QDGui/ilayerplugininfo.h>
#include <QDGui/ilayerpropertieswidget.h>

#include <QAction>
#include <QClipboard>
#include <QDockWidget>
#include <QGuiApplication>
#include <QLabel>
#include <QMdiSubWindow>
#include <QSettings>
#include <QToolBar>

namespace Map = Korvane::Map;

/// Dock content: says in its text which layer it was told of last, in "activeText".
class QuadPanel : public QLabel
{
    Q_OBJECT

public Q_SLOTS:
    void onLayerActivated(Map::Layer *layer) { setText(layer ? layer->getDescription() : QStringLiteral("none")); }
    void onSubWindowActivated(QMdiSubWindow *window)
    {
        setProperty("windowTitleSeen", window ? window->windowTitle() : QStringLiteral("none"));
    }
};

/// Information page with a clipboard text.
class QuadPage : public QWidget, public Korvane::ILayerPropertiesWidget
{
    Q_OBJECT
    Q_INTERFACES(Korvane::ILayerPropertiesWidget)

public:
    QuadPage() { setWindowTitle(QStringLiteral("Quad Info")); }
    void setLayer(Map::Layer *newLayer) override { layer = newLayer; }
    void apply() override { layer->setComments(QStringLiteral("applied")); }

public Q_SLOTS:
    void copyToClipboard()
    {
        QGuiApplication::clipboard()->setText(QStringLiteral("page of ") + layer->getDescription());
    }

private:
    Map::Layer *layer = nullptr;
};

/// Preference page that writes "Quad/Saved".
class QuadPreferences : public QWidget
{
    Q_OBJECT

public:
    QuadPreferences() { setObjectName(QStringLiteral("Quad Preferences")); }

public Q_SLOTS:
    void onSavePrefs() { Korvane::Application::instance()->settings()->setValue(QStringLiteral("Quad/Saved"), true); }
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

    Map::Layer *createLayer(bool askForUrl) override { return askForUrl ? nullptr : new QuadLayer; }

    QList<QDockWidget *> getDockWidgets() override
    {
        auto *dock = new QDockWidget(QStringLiteral("Quad Properties"));
        dock->setObjectName(QStringLiteral("QuadDock"));
        dock->setWidget(new QuadPanel);
        return {dock, nullptr};
    }
    QList<QWidget *> getInfoPages() override { return {new QuadPage, nullptr}; }
    QList<QToolBar *> getToolBars() override
    {
        auto *bar = new QToolBar(QStringLiteral("Quad Bar"));
        bar->setObjectName(QStringLiteral("QuadBar"));
        return {bar};
    }
    QList<QAction *> getActions() override { return {new QAction(QStringLiteral("Quad Action"))}; }
    QList<QWidget *> getPreferencePages() override { return {new QuadPreferences}; }
};

#include "quadplugin.moc"
