#include "data/lostonpurpose.h"
#include "data/testfolder.h"
#include "plugin/xrvjp2klayerplugin.h"

#include <QDGui/application.h>
#include <QDGui/layer.h>
#include <QDGui/mapview.h>
#include <QDGui/xrvpbrowser.h>

#include <QLabel>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMessageBox>
#include <QSignalSpy>
#include <QTimer>
#include <QtTest>

#include <memory>

using Korvane::Application;
using Korvane::Gui::XRVPBrowser;
using Korvane::Map::MapView;

/// Addresses arriving in map views. Local files stand in for streams: the slot takes any source.
class TestStreamOpening : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
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

void TestStreamOpening::init()
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

void TestStreamOpening::cleanup()
{
    Application::instance()->setMainWindow(nullptr);
    window.reset();
    plugin.reset();
    folder.reset();
}

QString TestStreamOpening::add(const QString &address)
{
    QString message;
    QTimer answer;
    connect(&answer, &QTimer::timeout, &answer, [&] {
        if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
            message = QStringLiteral("%1|%2|%3").arg(box->icon()).arg(box->windowTitle(), box->text());
            box->accept();
        }
    });
    answer.start(10);
    QMetaObject::invokeMethod(plugin.get(), "onAddXrvpUrl", Q_ARG(QString, address));
    return message;
}

void TestStreamOpening::newMapView()
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

void TestStreamOpening::activeMapView()
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

void TestStreamOpening::subWindowWithSomethingElse()
{
    area->addSubWindow(new QLabel)->show();
    QVERIFY(area->activeSubWindow());
    QCOMPARE(add(file),
             QStringLiteral("%1|Map View|Could not get map view from subwindow.").arg(QMessageBox::Critical));
}

void TestStreamOpening::addressThatCannotBeOpened()
{
    QString message;
    {
        const LostOnPurpose layer; // it is abandoned
        message = add(QStringLiteral("jpip://server/image.jp2"));
    }
    QCOMPARE(message, QStringLiteral("%1|Map View|JPIP protocol not supported.").arg(QMessageBox::Warning));
    QCOMPARE(area->subWindowList().size(), 1); // the new view stays
}

void TestStreamOpening::withoutAMapArea()
{
    window->setCentralWidget(new QLabel);
    QCOMPARE(add(file), QString());
    QMetaObject::invokeMethod(plugin.get(), "onOpenXRVP");
    Application::instance()->setMainWindow(nullptr);
    QCOMPARE(add(file), QString());
    QMetaObject::invokeMethod(plugin.get(), "onOpenXRVP");
    QVERIFY(!QApplication::activeModalWidget());
}

void TestStreamOpening::browserIsConnectedOnce()
{
    int shown = 0;
    QTimer answer;
    connect(&answer, &QTimer::timeout, &answer, [&] {
        if (auto *browser = qobject_cast<XRVPBrowser *>(QApplication::activeModalWidget())) {
            if (++shown == 2)
                Q_EMIT browser->urlSelected(file);
            browser->reject();
        }
    });
    answer.start(10);
    QMetaObject::invokeMethod(plugin.get(), "onOpenXRVP");
    QMetaObject::invokeMethod(plugin.get(), "onOpenXRVP");
    QCOMPARE(shown, 2);
    QCOMPARE(area->subWindowList().size(), 1);
    QCOMPARE(qobject_cast<MapView *>(area->subWindowList()[0]->widget())->getLayerCount(), 1);
}

QTEST_MAIN(TestStreamOpening)
#include "tst_streamopening.moc"
