#pragma once

#include "sdksettings.h"

#include <QDGui/ilayereditorplugin.h>
#include <QDGui/ilayerplugin.h>
#include <QDGui/ilayerplugininfo.h>

#include <QList>
#include <QObject>
#include <QSharedPointer>

class QTranslator;

namespace Korvane {
namespace Gui {
class XRVPBrowser;
}
namespace Map {
class MapView;
}
} // namespace Korvane

/// The one object that the host gets from this library: says what the plug-in is and opens, makes layers, and brings
/// the user interface that belongs to them. Its life is the format SDK's: made, the SDK is started and configured;
/// destroyed, it is shut down. All layers must be gone before. GUI thread.
class XRVJP2kLayerPlugin : public QObject, public ILayerPluginInfo, public ILayerPlugin, public ILayerEditorPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.korvane.viewer.plugin.XRVJP2kLayerPlugin")
    Q_CLASSINFO("FurtherFilePatterns", "*.jph *.jhc")
    Q_INTERFACES(ILayerPluginInfo ILayerPlugin ILayerEditorPlugin)

public:
    explicit XRVJP2kLayerPlugin(QObject *parent = nullptr);
    ~XRVJP2kLayerPlugin() override;

    QString getVersion() const override;
    QString getVendor() const override;
    QString getDescription() const override;
    QString getClassName() const override;
    QString getId() const override;
    QIcon getIcon() const override;
    QString getFileFilter() const override;
    /// One flag for the process. It is the host's to act upon.
    void setEnabled(bool enabled) override;
    bool isEnabled() const override;

    Korvane::Map::Layer *createLayer(bool askForUrl) override;

    QList<QDockWidget *> getDockWidgets() override;
    QList<QWidget *> getInfoPages() override;
    QList<QToolBar *> getToolBars() override;
    QList<QAction *> getActions() override;
    QList<QWidget *> getPreferencePages() override;

private Q_SLOTS:
    /// Shows the stream browser; what a person chooses there arrives at onAddXrvpUrl().
    void onOpenXRVP();
    /// Opens \a address in the active map view, or in a new one when no sub-window is active.
    void onAddXrvpUrl(const QString &address);

private:
    Q_DISABLE_COPY(XRVJP2kLayerPlugin)

    void logStartUp(const SdkSettings &settings) const;
    void startSdk(const SdkSettings &settings);
    void endSdk();
    void createBrowser();
    QAction *makeOpenAction(const QIcon &icon, const QString &text);

    QSharedPointer<Korvane::Gui::XRVPBrowser> xrvpBrowser;
    QList<QSharedPointer<QTranslator>> translators; // kept only so that they live as long as the plug-in
    bool isSdkStarted = false;
};
