#include "data/dialogwatch.h"
#include "data/lostonpurpose.h"
#include "data/testfolder.h"
#include "plugin/xrvjp2klayerplugin.h"

#include <QDGui/application.h>
#include <QDGui/ilayerpropertieswidget.h>
#include <QDGui/layer.h>
#include <QDGui/mapview.h>
#include <QDGui/xrvpbrowser.h>

#include <QLabel>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QSignalSpy>
#include <QtTest>

#include <memory>

using Korvane::Application;
using Korvane::Gui::XRVPBrowser;
using Korvane::Map::MapView;

/// Identity, layer factory, and addresses arriving in map views. Local files stand in for streams: the slot takes any
/// source.
class TestPluginObject : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void identity();
    void enabledFlagIsSharedByInstances();
    void informationPages();
    void factoryAsksForAnAddress();
    void newMapView();
    void activeMapView();
    void subWindowWithSomethingElse();
    void addressThatCannotBeOpened();
    void withoutAMapArea();
    void browserIsConnectedOnce();

private:
    /// Sends \a address to the plug-in and tells the message box that came up, as "icon|title|text".
    QString add(const QString &address);
    std::unique_ptr<TestFolder> folder;
    std::unique_ptr<XRVJP2kLayerPlugin> plugin;
    std::unique_ptr<QMainWindow> window;
    QMdiArea *area = nullptr;
    QString file;
};

void TestPluginObject::init()
{
    qRegisterMetaType<QMdiSubWindow *>(); // for the signal spies
    folder = std::make_unique<TestFolder>();
    file = folder->makeImage(QStringLiteral("image.jp2"), colourImage(32, 32));
    plugin = std::make_unique<XRVJP2kLayerPlugin>();
    window = std::make_unique<QMainWindow>();
    area = new QMdiArea;
    window->setCentralWidget(area);
    Application::instance()->setMainWindow(window.get());
    window->show();
}

void TestPluginObject::cleanup()
{
    Application::instance()->setMainWindow(nullptr);
    window.reset();
    plugin.reset();
    folder.reset();
}

void TestPluginObject::identity()
{
    QCoreApplication::setOrganizationName(QStringLiteral("Somebody"));
    QCOMPARE(plugin->getVersion(), QStringLiteral("6.0.0.1513"));
    QCOMPARE(plugin->getVendor(), QStringLiteral("Somebody"));
    QCOMPARE(plugin->getDescription(), QStringLiteral("XRV JPEG 2000"));
    QCOMPARE(plugin->getClassName(), QStringLiteral("Korvane::XRVJP2kLayer"));
    QCOMPARE(plugin->getId(), QStringLiteral("18B1BFEA-0F8D-4a6f-9B57-DB14C81B5C93"));
    QCOMPARE(plugin->getFileFilter(), QStringLiteral("XRV Image (*.xrv);;XRVP / JPIP Url(*.url);;JPEG 2000 Image(*.jp2 "
                                                     "*.j2k *.j2c *.jpc *.jpx *.jpf)"));
    QVERIFY(!plugin->getIcon().pixmap(32).isNull());
}

void TestPluginObject::enabledFlagIsSharedByInstances()
{
    QVERIFY(plugin->isEnabled());
    plugin->setEnabled(false);
    QVERIFY(!XRVJP2kLayerPlugin().isEnabled());
    XRVJP2kLayerPlugin().setEnabled(true);
    QVERIFY(plugin->isEnabled());
}

void TestPluginObject::informationPages()
{
    const QStringList classes = {QStringLiteral("XRVJP2kLayerFileInfo"), QStringLiteral("XRVJP2kLayerJP2FileInfo"),
                                 QStringLiteral("XRVJP2kLayerStatistics"), QStringLiteral("XRVJP2kLayerRPCInfo"),
                                 QStringLiteral("XRVJP2kLayerMetaDataBox")};
    const QList<QWidget *> pages = plugin->getInfoPages() + plugin->getInfoPages();
    QCOMPARE(pages.size(), 2 * classes.size());
    QSet<QWidget *> different;
    for (int i = 0; i < pages.size(); ++i) {
        QCOMPARE(QString::fromLatin1(pages[i]->metaObject()->className()), classes[i % classes.size()]);
        QVERIFY(!pages[i]->parent());
        QVERIFY(qobject_cast<Korvane::ILayerPropertiesWidget *>(pages[i]));
        different.insert(pages[i]);
    }
    QCOMPARE(different.size(), pages.size());
    qDeleteAll(different);
}

void TestPluginObject::factoryAsksForAnAddress()
{
    const DialogWatch<XRVPBrowser> watch([&](XRVPBrowser &browser) {
        browser.setAddress(QStringLiteral("xrvp://localhost:1/none.xrv"));
        if (watch.shown == 1)
            browser.reject();
        else
            browser.accept();
    });
    const BoxWatch box;
    QVERIFY(!plugin->createLayer(true));
    QCOMPARE(box.texts, QStringList());
    QVERIFY(!plugin->createLayer(true));
    QCOMPARE(watch.shown, 2);
    QCOMPARE(box.texts.size(), 1);
    QVERIFY2(box.texts[0].startsWith(QLatin1String("XRV JP2 Error:|")) && box.texts[0].size() > 20,
             qPrintable(box.texts[0]));
    QCOMPARE(box.offered, QMessageBox::Ok);
}

QString TestPluginObject::add(const QString &address)
{
    const BoxWatch box;
    QMetaObject::invokeMethod(plugin.get(), "onAddXrvpUrl", Q_ARG(QString, address));
    return box.texts.isEmpty() ? QString() : QStringLiteral("%1|").arg(box.icon) + box.texts.join(QLatin1Char('\n'));
}

void TestPluginObject::newMapView()
{
    QSignalSpy activated(area, &QMdiArea::subWindowActivated);
    QCOMPARE(add(file), QString());
    QCOMPARE(area->subWindowList().size(), 1);
    auto *view = qobject_cast<MapView *>(area->subWindowList()[0]->widget());
    QVERIFY(view);
    QVERIFY(!view->isHidden());
    QCOMPARE(view->getLayerCount(), 1);
    QCOMPARE(view->getLayer(0)->getDataSource(), file);
    QVERIFY(activated.count() >= 1);
    QCOMPARE(activated.last()[0].value<QMdiSubWindow *>(), area->activeSubWindow());
}

void TestPluginObject::activeMapView()
{
    auto *view = new MapView;
    area->addSubWindow(view)->show();
    QVERIFY(area->activeSubWindow());
    QSignalSpy activated(area, &QMdiArea::subWindowActivated);
    QCOMPARE(add(file), QString());
    QCOMPARE(add(file), QString());
    QCOMPARE(area->subWindowList().size(), 1);
    QCOMPARE(view->getLayerCount(), 2);
    QCOMPARE(activated.count(), 2);
}

void TestPluginObject::subWindowWithSomethingElse()
{
    area->addSubWindow(new QLabel)->show();
    QVERIFY(area->activeSubWindow());
    QCOMPARE(add(file),
             QStringLiteral("%1|Map View|Could not get map view from subwindow.").arg(QMessageBox::Critical));
}

void TestPluginObject::addressThatCannotBeOpened()
{
    QString message;
    {
        const LostOnPurpose layer; // it is abandoned
        message = add(QStringLiteral("jpip://server/image.jp2"));
    }
    QCOMPARE(message, QStringLiteral("%1|Map View|JPIP protocol not supported.").arg(QMessageBox::Warning));
    QCOMPARE(area->subWindowList().size(), 1); // the new view stays
}

void TestPluginObject::withoutAMapArea()
{
    window->setCentralWidget(new QLabel);
    QCOMPARE(add(file), QString());
    QMetaObject::invokeMethod(plugin.get(), "onOpenXRVP");
    Application::instance()->setMainWindow(nullptr);
    QCOMPARE(add(file), QString());
    QMetaObject::invokeMethod(plugin.get(), "onOpenXRVP");
    QVERIFY(!QApplication::activeModalWidget());
}

void TestPluginObject::browserIsConnectedOnce()
{
    const DialogWatch<XRVPBrowser> watch([&](XRVPBrowser &browser) {
        if (watch.shown == 2)
            Q_EMIT browser.urlSelected(file);
        browser.reject();
    });
    QMetaObject::invokeMethod(plugin.get(), "onOpenXRVP");
    QMetaObject::invokeMethod(plugin.get(), "onOpenXRVP");
    QCOMPARE(watch.shown, 2);
    QCOMPARE(area->subWindowList().size(), 1);
    QCOMPARE(qobject_cast<MapView *>(area->subWindowList()[0]->widget())->getLayerCount(), 1);
}

QTEST_MAIN(TestPluginObject)
#include "tst_pluginobject.moc"
