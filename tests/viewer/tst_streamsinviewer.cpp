#include "data/lostonpurpose.h"
#include "project/project.h"
#include "project/projectcontroller.h"
#include "views/maparea.h"
#include "window/mainwindow.h"

#include "data/jp2maker.h"
#include "sdk/stream/nginxserver.h"

#include <QDGui/application.h>
#include <QDGui/ilayerplugin.h>
#include <QDGui/mapview.h>
#include <QDGui/pluginregistry.h>
#include <QDGui/rasterlayer.h>
#include <QDGui/xrvpbrowser.h>

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QSettings>
#include <QTemporaryDir>
#include <QTimer>
#include <QToolBar>
#include <QTreeView>
#include <QtTest>

#include <functional>
#include <memory>

using Korvane::Application;
using Korvane::Gui::XRVPBrowser;
using Korvane::Map::Layer;
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
    void factoryAsksForAnAddress_data();
    void factoryAsksForAnAddress();
    void opensUrlFiles();
    void browsesSecurely();
    void passwordsStayOut();
    void namesBeyondAsciiComeBack();

private:
    struct Outcome
    {
        int status = -1;
        QByteArray out, err;
    };
    QString at(const QString &path) const { return QString::fromStdString(server->address(path)); }
    QString withUser(QString address) const
    {
        return address.replace(QLatin1String("://"), QLatin1String("://me:sesame@"));
    }
    void writeImage(const QString &name) const;
    QAction *actionOf(const QString &place) const;
    /// Does \a work with the browser that comes up while \a start runs; notes the texts of message boxes.
    void withBrowser(const std::function<void()> &start, const std::function<void(XRVPBrowser &)> &work);
    void pickFromTree(XRVPBrowser &browser, const QString &address, const QString &name) const;
    MapView *view() const { return window->mapArea()->currentView(); }
    void verifyPainted(MapView *shown) const;
    Outcome run(const QStringList &arguments) const;
    QByteArray fileBytes(const QString &name) const;

    QTemporaryDir folder;
    std::unique_ptr<NginxServer> server;
    std::unique_ptr<Korvane::PluginRegistry> registry;
    std::unique_ptr<MainWindow> window;
    QStringList messages;
};

static constexpr int kWidth = 120;
static constexpr int kHeight = 90;
static constexpr int kPatienceMs = 60000;
static const QRectF kWholeImage(0, 0, kWidth, -kHeight);

void TestStreamsInViewer::writeImage(const QString &name) const
{
    jp2maker::Options options;
    options.width = kWidth;
    options.height = kHeight;
    options.components.resize(3);
    options.cell = [](int component, int x, int y) { return component == 0 ? x : component == 1 ? y : 50; };
    const jp2maker::FileBytes bytes = jp2maker::make(options);
    QFile file(folder.filePath(name));
    const auto size = static_cast<qint64>(bytes.size());
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(reinterpret_cast<const char *>(bytes.data()), size) == size);
}

void TestStreamsInViewer::initTestCase()
{
    if (!NginxServer::isInstalled())
        QSKIP("nginx is not installed");
    for (const char *path : {"www/scenes 2024", "www/guarded"})
        QVERIFY(QDir(folder.path()).mkpath(QLatin1String(path)));
    writeImage(QStringLiteral("www/plain.jp2"));
    writeImage(QStringLiteral("www/scenes 2024/site plan.jp2"));
    writeImage(QString::fromUtf8("www/scenes 2024/Übersicht.jp2"));
    writeImage(QStringLiteral("www/guarded/secret.jp2"));
    QFile passwords(folder.filePath(QStringLiteral("passwords")));
    QVERIFY(passwords.open(QIODevice::WriteOnly) && passwords.write("me:{PLAIN}sesame\n") > 0);
    passwords.close();

    server = std::make_unique<NginxServer>();
    server->configure(QStringLiteral("autoindex on; autoindex_format json; location /guarded/ { auth_basic x; "
                                     "auth_basic_user_file %1; }")
                          .arg(passwords.fileName()));
    QVERIFY(server->start(folder.filePath(QStringLiteral("www"))));
    Application::instance()->setSettingsFile(folder.filePath(QStringLiteral("settings.ini")));
    QSettings *settings = Application::instance()->settings();
    settings->setValue(QStringLiteral("XRVJP2kLayer/XrvpCacheDir"), folder.filePath(QStringLiteral("cache")));
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
    // Two timers: one that is at work does not fire again, and a box may come up while the browser is worked with.
    bool wasShown = false;
    QTimer answer;
    connect(&answer, &QTimer::timeout, this, [&] {
        if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
            messages.append(box->windowTitle() + QLatin1Char('|') + box->text());
            box->accept();
        }
    });
    QTimer watch;
    connect(&watch, &QTimer::timeout, this, [&] {
        if (auto *browser = qobject_cast<XRVPBrowser *>(QApplication::activeModalWidget())) {
            wasShown = true;
            watch.stop();
            work(*browser);
            if (browser->isVisible()) // left so by a check that failed
                browser->reject();
        }
    });
    answer.start(20);
    watch.start(20);
    start();
    QVERIFY(wasShown);
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

TestStreamsInViewer::Outcome TestStreamsInViewer::run(const QStringList &arguments) const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QDVIEWER_PLUGIN_PATH"), QStringLiteral(PLUGIN_FOLDER));
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(QDVIEWER_PROGRAM),
                  QStringList{QStringLiteral("--settings"), folder.filePath(QStringLiteral("own.ini"))} + arguments);
    Outcome outcome;
    if (process.waitForFinished(kPatienceMs) && process.exitStatus() == QProcess::NormalExit)
        outcome.status = process.exitCode();
    outcome.out = process.readAllStandardOutput();
    outcome.err = process.readAllStandardError();
    return outcome;
}

QByteArray TestStreamsInViewer::fileBytes(const QString &name) const
{
    QFile file(folder.filePath(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
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

void TestStreamsInViewer::factoryAsksForAnAddress_data()
{
    QTest::addColumn<QString>("image"); // empty: the dialog is cancelled
    QTest::addColumn<QString>("message");
    QTest::newRow("image") << "plain.jp2"
                           << "";
    QTest::newRow("no such image") << "missing.jp2"
                                   << "XRV JP2 Error:|";
    QTest::newRow("cancelled") << ""
                               << "";
}

void TestStreamsInViewer::factoryAsksForAnAddress()
{
    QFETCH(QString, image);
    QFETCH(QString, message);
    ILayerPlugin *factory = registry->getPlugins().constFirst().factory;
    std::unique_ptr<Layer> layer;
    withBrowser([&] { layer.reset(factory->createLayer(true)); },
                [&](XRVPBrowser &browser) {
                    browser.setAddress(at(image));
                    if (image.isEmpty())
                        browser.reject();
                    else
                        browser.accept();
                });
    QCOMPARE(messages.join(QLatin1Char('\n')).left(message.size()), message);
    QCOMPARE(messages.isEmpty(), message.isEmpty());
    QCOMPARE(bool(layer), image == QLatin1String("plain.jp2"));
    if (layer)
        QVERIFY(layer->isValid());
}

void TestStreamsInViewer::opensUrlFiles()
{
    QFile file(folder.filePath(QStringLiteral("site.url")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.write("[InternetShortcut]\r\nURL=" + at(QStringLiteral("plain.jp2")).toUtf8() + "\r\n") > 0);
    file.close();
    QCOMPARE(window->addSources({file.fileName()}, nullptr), QStringList());
    QCOMPARE(view()->getLayer(0)->getDataSource(), at(QStringLiteral("plain.jp2")));
    verifyPainted(view());
}

void TestStreamsInViewer::browsesSecurely()
{
    NginxServer secure;
    if (!secure.makeSecure())
        QSKIP("openssl makes no certificate here");
    secure.configure(QStringLiteral("autoindex on;"));
    QVERIFY(secure.start(folder.filePath(QStringLiteral("www"))));
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
    const QString project = folder.filePath(QStringLiteral("guarded") + Viewer::kProjectSuffix);
    QCOMPARE(window->addSources({withUser(source)}, nullptr), QStringList());
    verifyPainted(view());
    Viewer::ProjectController *controller = window->findChild<Viewer::ProjectController *>();
    QCOMPARE(controller->save(project), QString());
    QVERIFY(!fileBytes(QFileInfo(project).fileName()).contains("sesame"));
    QVERIFY(fileBytes(QFileInfo(project).fileName()).contains(source.toUtf8()));
    Application::instance()->settings()->sync();
    QVERIFY(fileBytes(QStringLiteral("settings.ini")).contains("secret.jp2"));
    QVERIFY(!fileBytes(QStringLiteral("settings.ini")).contains("sesame"));
    QVERIFY(!window->windowTitle().contains(QStringLiteral("sesame")));

    // In this process, the server has taken the password; another one has to be given it.
    QStringList warnings;
    QCOMPARE(controller->open(project, &warnings), QString());
    QCOMPARE(warnings, QStringList());
    verifyPainted(view());
    const Outcome fresh = run({QStringLiteral("--describe"), project});
    QVERIFY(fresh.status != 0);
    QVERIFY2(fresh.err.contains("user name and password"), fresh.err.constData());

    const Outcome described = run({QStringLiteral("--describe"), withUser(source)});
    QVERIFY2(described.status == 0, described.err.constData());
    QVERIFY2(!described.out.contains("sesame") && !described.err.contains("sesame"), described.out.constData());
    const QJsonObject object = QJsonDocument::fromJson(described.out).object();
    QCOMPARE(object.value(QStringLiteral("dataSource")).toString(), source);
    const Outcome refused = run({QStringLiteral("--describe"), withUser(at(QStringLiteral("guarded/none.jp2")))});
    QVERIFY(refused.status != 0);
    QVERIFY(!refused.out.contains("sesame") && !refused.err.contains("sesame"));
}

void TestStreamsInViewer::namesBeyondAsciiComeBack()
{
    const QString source = at(QString::fromUtf8("scenes 2024/Übersicht.jp2"));
    QCOMPARE(window->addSources({source}, nullptr), QStringList());
    const QString project = folder.filePath(QStringLiteral("umlaut") + Viewer::kProjectSuffix);
    Viewer::ProjectController *controller = window->findChild<Viewer::ProjectController *>();
    QCOMPARE(controller->save(project), QString());
    QStringList warnings;
    QCOMPARE(controller->open(project, &warnings), QString());
    QCOMPARE(warnings, QStringList());
    QCOMPARE(view()->getLayerCount(), 1);
    verifyPainted(view());
}

QTEST_MAIN(TestStreamsInViewer)
#include "tst_streamsinviewer.moc"
