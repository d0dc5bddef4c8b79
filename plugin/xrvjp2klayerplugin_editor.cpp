// User interface that the plug-in brings to the host, and the opening of streams.

#include "layer/xrvjp2klayer.h"
#include "pages/xrvjp2klayerfileinfo.h"
#include "pages/xrvjp2klayerjp2fileinfo.h"
#include "pages/xrvjp2klayermetadatabox.h"
#include "pages/xrvjp2klayerrpcinfo.h"
#include "pages/xrvjp2klayerstatistics.h"
#include "panels/xrvjp2kpreferences.h"
#include "panels/xrvjp2kproperties.h"
#include "xrvjp2klayerplugin.h"

#include <QDGui/application.h>
#include <QDGui/mapview.h>
#include <QDGui/xrvpbrowser.h>

#include <QAction>
#include <QDockWidget>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMessageBox>
#include <QPointer>
#include <QToolBar>

using Korvane::Application;
using Korvane::XRVJP2kLayer;
using Korvane::Gui::XRVPBrowser;
using Korvane::Map::MapView;

namespace {

/// The multi-document area of the main window; null while the window shows something else.
QMdiArea *mapArea()
{
    QMainWindow *mainWindow = Application::instance()->getMainWindow();
    return mainWindow ? qobject_cast<QMdiArea *>(mainWindow->centralWidget()) : nullptr;
}

/// Null when the active sub-window shows something else.
MapView *activeOrNewMapView(QMdiArea &area)
{
    if (const QMdiSubWindow *active = area.activeSubWindow())
        return qobject_cast<MapView *>(active->widget());
    auto *view = new MapView(nullptr, {});
    area.addSubWindow(view)->show();
    return view;
}

} // namespace

QList<QDockWidget *> XRVJP2kLayerPlugin::getDockWidgets()
{
    auto *dock = new QDockWidget(tr("XRV JPEG 2000 Properties"));
    dock->setObjectName(QStringLiteral("XRV JPEG 2000 Properties"));
    dock->setFeatures(QDockWidget::DockWidgetClosable | QDockWidget::DockWidgetMovable |
                      QDockWidget::DockWidgetFloatable);
    dock->setAllowedAreas(Qt::AllDockWidgetAreas);
    dock->setWidget(new XRVJP2kProperties);
    return {dock};
}

QList<QWidget *> XRVJP2kLayerPlugin::getInfoPages()
{
    return {new XRVJP2kLayerFileInfo, new XRVJP2kLayerJP2FileInfo, new XRVJP2kLayerStatistics, new XRVJP2kLayerRPCInfo,
            new XRVJP2kLayerMetaDataBox};
}

QList<QToolBar *> XRVJP2kLayerPlugin::getToolBars()
{
    auto *toolBar = new QToolBar(QStringLiteral("XRV & JPEG 2000"));
    toolBar->setObjectName(QStringLiteral("XRV or JPEG 2000"));
    QAction *action = makeOpenAction(QIcon(QStringLiteral(":/Resources/pnxlogo.png")), tr("Add XRVP"));
    action->setParent(toolBar); // a tool bar does not own the actions added to it
    toolBar->addAction(action);
    return {toolBar};
}

QList<QAction *> XRVJP2kLayerPlugin::getActions()
{
    return {makeOpenAction(getIcon(), tr("TANNIS XRVP Image Stream"))};
}

QList<QWidget *> XRVJP2kLayerPlugin::getPreferencePages()
{
    return {new XRVJP2kPreferences};
}

QAction *XRVJP2kLayerPlugin::makeOpenAction(const QIcon &icon, const QString &text)
{
    auto *action = new QAction(icon, text, nullptr);
    action->setToolTip(tr("Open an XRVP stream from an MILTO TANNIS Server"));
    connect(action, &QAction::triggered, this, &XRVJP2kLayerPlugin::onOpenXRVP);
    return action;
}

void XRVJP2kLayerPlugin::onOpenXRVP()
{
    if (!mapArea())
        return;
    connect(xrvpBrowser.data(), &XRVPBrowser::urlSelected, this, &XRVJP2kLayerPlugin::onAddXrvpUrl,
            Qt::UniqueConnection);
    xrvpBrowser->exec();
}

void XRVJP2kLayerPlugin::onAddXrvpUrl(const QString &address)
{
    QMdiArea *area = mapArea();
    if (!area)
        return;
    QMainWindow *mainWindow = Application::instance()->getMainWindow();
    const bool isNewView = !area->activeSubWindow();
    const QPointer<MapView> view(activeOrNewMapView(*area));
    if (!view) {
        QMessageBox::critical(mainWindow, tr("Map View"), tr("Could not get map view from subwindow."));
        return;
    }
    // A layer that cannot be opened or added is left alone, not deleted.
    auto *layer = new XRVJP2kLayer(nullptr);
    const bool isOpen = layer->setDataSource(address);
    // Events have been handled meanwhile.
    mainWindow = Application::instance()->getMainWindow();
    if (!isOpen && layer->isOpeningCancelled()) {
        // Whoever cancels knows, and wants no window that was made for what does not come.
        if (view && isNewView && view->getLayerCount() == 0)
            view->parentWidget()->close();
        return;
    }
    if (!isOpen) {
        QMessageBox::warning(mainWindow, tr("Map View"), layer->getLastError());
        return;
    }
    if (!view || view->addLayer(layer, -1) == -1) {
        QMessageBox::warning(mainWindow, tr("Map View"), tr("Error adding layer to view."));
        return;
    }
    if ((area = mapArea()))
        Q_EMIT area->subWindowActivated(area->activeSubWindow());
}
