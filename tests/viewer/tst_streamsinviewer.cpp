#include "project/project.h"
#include "project/projectcontroller.h"
#include "views/maparea.h"
#include "window/mainwindow.h"

#include "data/dialogwatch.h"
#include "data/lostonpurpose.h"
#include "data/testfolder.h"
#include "sdk/stream/nginxserver.h"
#include "viewerprogram.h"

#include <QDGui/application.h>
#include <QDGui/mapview.h>
#include <QDGui/pluginregistry.h>
#include <QDGui/xrvpbrowser.h>

#include <QAction>
#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QMenuBar>
#include <QPushButton>
#include <QToolBar>
#include <QTreeView>
#include <QtTest>

#include <functional>
#include <memory>

using Korvane::Application;
using Korvane::Gui::XRVPBrowser;
using Korvane::Map::MapView;
using Viewer::MainWindow;

/// Streams of a real web server, from the buttons that a person clicks to the colours on the map.
class TestStreamsInViewer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

    void opensFromTheBrowser_data();
    void opensFromTheBrowser();
    void opensSeveralFromTheBrowser();
    void opensUrlFiles();
    void browsesSecurely();
    void passwordsStayOut();

private:
    QString at(const QString &path) const { return QString::fromStdString(server->address(path)); }
    QString withUser(QString address) const
    {
        return address.replace(QLatin1String("://"), QLatin1String("://me:sesame@"));
    }
    QAction *actionOf(const QString &place) const;
    /// Does \a work with the browser that comes up while \a start runs; notes the texts of message boxes.
    void withBrowser(const std::function<void()> &start, const std::function<void(XRVPBrowser &)> &work);
    void pickFromTree(XRVPBrowser &browser, const QString &address, const QString &name) const;
    MapView *view() const { return window->mapArea()->currentView(); }
    void verifyPainted(MapView *shown) const;

    TestFolder folder;
    std::unique_ptr<NginxServer> server;
    std::unique_ptr<Korvane::PluginRegistry> registry;
    std::unique_ptr<MainWindow> window;
    QStringList messages;
};

static constexpr int kWidth = 120;
static constexpr int kHeight = 90;
static constexpr int kPatienceMs = 60000;
static const QRectF kWholeImage(0, 0, kWidth, -kHeight);

void TestStreamsInViewer::initTestCase()
{
    if (!NginxServer::isInstalled())
        QSKIP("nginx is not installed");
    for (const char *path : {"www/scenes 2024", "www/guarded"})
        QVERIFY(QDir(folder.path()).mkpath(QLatin1String(path)));
    folder.makeImage(QStringLiteral("www/plain.jp2"), colourImage(kWidth, kHeight));
    folder.makeImage(QStringLiteral("www/scenes 2024/site plan.jp2"), colourImage(kWidth, kHeight));
    folder.makeImage(QString::fromUtf8("www/scenes 2024/Übersicht.jp2"), colourImage(kWidth, kHeight));
    folder.makeImage(QStringLiteral("www/guarded/secret.jp2"), colourImage(kWidth, kHeight));
    const QString passwords = folder.writeText(QStringLiteral("passwords"), "me:{PLAIN}sesame\n");
    server = std::make_unique<NginxServer>();
    server->configure(QStringLiteral("autoindex on; autoindex_format json; location /guarded/ { auth_basic x; "
                                     "auth_basic_user_file %1; }")
                          .arg(passwords));
    QVERIFY(server->start(folder.path(QStringLiteral("www"))));
    TestFolder::setSetting("XrvpCacheDir", folder.path(QStringLiteral("cache")));
    registry = std::make_unique<Korvane::PluginRegistry>();
    QCOMPARE(registry->loadFolder(QStringLiteral(PLUGIN_FOLDER)), 1);
}

void TestStreamsInViewer::init()
{
    if (!registry)
        QSKIP("nginx is not installed");
    messages.clear();
    window = std::make_unique<MainWindow>(*registry);
    window->show();
}

void TestStreamsInViewer::cleanup()
{
    window.reset();
}

void TestStreamsInViewer::cleanupTestCase()
{
    registry.reset();
    server.reset();
}

QAction *TestStreamsInViewer::actionOf(const QString &place) const
{
    if (place == QLatin1String("tool bar")) {
        const auto *bar = window->findChild<QToolBar *>(QStringLiteral("XRV or JPEG 2000"));
        return bar ? bar->actions().value(0) : nullptr;
    }
    const QMenu *file = window->menuBar()->actions().value(0)->menu();
    for (QAction *action : file->actions()) {
        if (action->text() == QLatin1String("TANNIS XRVP Image Stream"))
            return action;
    }
    return nullptr;
}

void TestStreamsInViewer::withBrowser(const std::function<void()> &start,
                                      const std::function<void(XRVPBrowser &)> &work)
{
    const DialogWatch<XRVPBrowser> watch([&](XRVPBrowser &browser) {
        work(browser);
        if (browser.isVisible()) // left so by a check that failed
            browser.reject();
    });
    const BoxWatch boxes;
    start();
    messages = boxes.texts;
    QCOMPARE(watch.shown, 1);
}

void TestStreamsInViewer::pickFromTree(XRVPBrowser &browser, const QString &address, const QString &name) const
{
    browser.setAddress(address);
    browser.browse();
    auto *tree = browser.findChild<QTreeView *>();
    const auto find = [&] {
        const QModelIndex start = tree->model()->index(0, 0);
        return start.isValid() ? tree->model()->match(start, Qt::DisplayRole, name, 1, Qt::MatchExactly).value(0)
                               : QModelIndex();
    };
    QTRY_VERIFY(find().isValid());
    tree->setCurrentIndex(find());
}

/// The image's columns and rows are its red and green.
void TestStreamsInViewer::verifyPainted(MapView *shown) const
{
    bool isComplete = false;
    const QImage image = shown->renderToImage(QSize(kWidth, kHeight), kWholeImage, kPatienceMs, &isComplete);
    QVERIFY(isComplete);
    for (const QPoint &cell : {QPoint(0, 0), QPoint(119, 89), QPoint(60, 30)})
        QCOMPARE(image.pixelColor(cell), QColor(cell.x(), cell.y(), 50));
}

void TestStreamsInViewer::opensFromTheBrowser_data()
{
    QTest::addColumn<QString>("place");
    QTest::addColumn<QString>("image");
    QTest::addColumn<QString>("source");
    QTest::newRow("tool bar") << "tool bar"
                              << "site plan.jp2"
                              << "scenes%202024/site%20plan.jp2";
    QTest::newRow("menu") << "menu" << QString::fromUtf8("Übersicht.jp2") << "scenes%202024/%C3%9Cbersicht.jp2";
}

void TestStreamsInViewer::opensFromTheBrowser()
{
    QFETCH(QString, place);
    QFETCH(QString, image);
    QAction *action = actionOf(place);
    QVERIFY(action);
    withBrowser([action] { action->trigger(); },
                [&](XRVPBrowser &browser) {
                    pickFromTree(browser, at(QStringLiteral("scenes 2024/")), image);
                    QTest::keyClick(browser.findChild<QTreeView *>(), Qt::Key_Return);
                });
    QCOMPARE(messages, QStringList());
    QVERIFY(view());
    QCOMPARE(view()->getLayerCount(), 1);
    verifyPainted(view());
}

void TestStreamsInViewer::opensSeveralFromTheBrowser()
{
    QAction *action = actionOf(QStringLiteral("tool bar"));
    withBrowser([action] { action->trigger(); },
                [&](XRVPBrowser &browser) {
                    auto *add = browser.findChild<QPushButton *>(QStringLiteral("addButton"));
                    browser.setAddress(at(QStringLiteral("plain.jp2")));
                    add->click();
                    browser.setAddress(at(QStringLiteral("missing.jp2")));
                    {
                        const LostOnPurpose layer; // the plug-in abandons it
                        add->click();
                    }
                    pickFromTree(browser, at(QStringLiteral("scenes 2024/")), QStringLiteral("site plan.jp2"));
                    browser.accept();
                });
    QCOMPARE(messages.size(), 1);
    QVERIFY2(messages[0].contains(QStringLiteral("missing.jp2")), qPrintable(messages[0]));
    QVERIFY(view());
    QCOMPARE(view()->getLayerCount(), 2);
    verifyPainted(view());
}

void TestStreamsInViewer::opensUrlFiles()
{
    const QString file = folder.writeText(
        QStringLiteral("site.url"), "[InternetShortcut]\r\nURL=" + at(QStringLiteral("plain.jp2")).toUtf8() + "\r\n");
    QCOMPARE(window->addSources({file}, nullptr), QStringList());
    QCOMPARE(view()->getLayer(0)->getDataSource(), at(QStringLiteral("plain.jp2")));
    verifyPainted(view());
}

void TestStreamsInViewer::browsesSecurely()
{
    NginxServer secure;
    if (!secure.makeSecure())
        QSKIP("openssl makes no certificate here");
    secure.configure(QStringLiteral("autoindex on;"));
    QVERIFY(secure.start(folder.path(QStringLiteral("www"))));
    const QString address = QString::fromStdString(secure.address(QString()));
    XRVPBrowser browser;
    auto *status = browser.findChild<QLabel *>(QStringLiteral("statusLabel"));
    browser.setAddress(address);
    browser.browse();
    QTRY_VERIFY2(status->text().contains(QStringLiteral("cannot prove")), qPrintable(status->text()));

    qputenv("SSL_CERT_FILE", secure.certificateFile().toLocal8Bit());
    pickFromTree(browser, address, QStringLiteral("plain.jp2"));
    QCOMPARE(browser.getAddress(), address + QStringLiteral("plain.jp2"));
    browser.setAddress(address + QStringLiteral("away/"));
    browser.browse();
    QTRY_VERIFY2(status->text().contains(QStringLiteral("without encryption")), qPrintable(status->text()));
    qunsetenv("SSL_CERT_FILE");
}

void TestStreamsInViewer::passwordsStayOut()
{
    const QString source = at(QStringLiteral("guarded/secret.jp2"));
    const QString project = folder.path(QStringLiteral("guarded") + Viewer::kProjectSuffix);
    QCOMPARE(window->addSources({withUser(source)}, nullptr), QStringList());
    verifyPainted(view());
    Viewer::ProjectController *controller = window->findChild<Viewer::ProjectController *>();
    QCOMPARE(controller->save(project), QString());
    QVERIFY(!folder.read(QFileInfo(project).fileName()).contains("sesame"));
    QVERIFY(folder.read(QFileInfo(project).fileName()).contains(source.toUtf8()));
    Application::instance()->settings()->sync();
    QVERIFY(folder.read(QStringLiteral("settings.ini")).contains("secret.jp2"));
    QVERIFY(!folder.read(QStringLiteral("settings.ini")).contains("sesame"));
    QVERIFY(!window->windowTitle().contains(QStringLiteral("sesame")));

    // In this process, the server has taken the password; another one has to be given it.
    QStringList warnings;
    QCOMPARE(controller->open(project, &warnings), QString());
    QCOMPARE(warnings, QStringList());
    verifyPainted(view());
    const ProgramRun fresh = runViewer({QStringLiteral("--describe"), project});
    QVERIFY(fresh.status != 0);
    QVERIFY2(fresh.err.contains("user name and password"), fresh.err.constData());

    const ProgramRun described = runViewer({QStringLiteral("--describe"), withUser(source)});
    QVERIFY2(described.status == 0, described.err.constData());
    QVERIFY2(!described.out.contains("sesame") && !described.err.contains("sesame"), described.out.constData());
    const QJsonObject object = QJsonDocument::fromJson(described.out).object();
    QCOMPARE(object.value(QStringLiteral("dataSource")).toString(), source);
    const ProgramRun refused =
        runViewer({QStringLiteral("--describe"), withUser(at(QStringLiteral("guarded/none.jp2")))});
    QVERIFY(refused.status != 0);
    QVERIFY(!refused.out.contains("sesame") && !refused.err.contains("sesame"));
}

QTEST_MAIN(TestStreamsInViewer)
#include "tst_streamsinviewer.moc"
