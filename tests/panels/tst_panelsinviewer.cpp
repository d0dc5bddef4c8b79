#include "plugins/preferencesdialog.h"
#include "views/maparea.h"
#include "window/mainactions.h"
#include "window/mainwindow.h"

#include "data/jp2maker.h"

#include <QDGui/application.h>
#include <QDGui/ilayereditorplugin.h>
#include <QDGui/mapview.h>
#include <QDGui/pluginregistry.h>
#include <QDGui/rasterlayer.h>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QColor>
#include <QDialogButtonBox>
#include <QDockWidget>
#include <QImage>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMdiSubWindow>
#include <QMenu>
#include <QProcess>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSettings>
#include <QSlider>
#include <QSpinBox>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTimer>
#include <QToolBar>
#include <QtTest>

#include <memory>

using Korvane::Application;
using Korvane::Map::MapView;
using Korvane::Map::RasterLayer;
using Viewer::MainWindow;

static constexpr int kPatienceMs = 60000;
static const char *const kDockName = "XRV JPEG 2000 Properties";

/// The plug-in's pieces where a person meets them: in the viewer's window, and over a restart of the program.
class TestPanelsInViewer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void startUpReadsTheSettings();
    void contributions();
    void panelFollowsTheActiveLayer();
    void sliderChangesTheMap();
    void remembersPlacesAndSizes();
    void viewMenuShowsAndHides();
    void preferencesWindow_data();
    void preferencesWindow();
    void settingsSurviveARestart();
    void badSettingsLeaveAWorkingProgram();

private:
    QString write(const QString &name, const jp2maker::Options &options) const;
    void openWindow();
    QDockWidget *dock() const { return window->findChild<QDockWidget *>(QLatin1String(kDockName)); }
    QWidget *panel() const { return dock()->widget(); }
    QSlider *transparencySlider() const { return panel()->findChild<QSlider *>(QStringLiteral("transparencySlider")); }
    MapView *view() const { return window->mapArea()->currentView(); }
    static RasterLayer *raster(MapView *view, int position)
    {
        return qobject_cast<RasterLayer *>(view->getLayer(position));
    }
    int runProgram(const QString &settingsFile, const QStringList &arguments, QByteArray *out, QByteArray *err) const;

    QTemporaryDir folder;
    std::unique_ptr<Korvane::PluginRegistry> registry;
    std::unique_ptr<MainWindow> window;
    QString one;
    QString two;
    QString deep;
};

QString TestPanelsInViewer::write(const QString &name, const jp2maker::Options &options) const
{
    const jp2maker::FileBytes bytes = jp2maker::make(options);
    QFile file(folder.filePath(name));
    const auto size = static_cast<qint64>(bytes.size());
    if (!file.open(QIODevice::WriteOnly) || file.write(reinterpret_cast<const char *>(bytes.data()), size) != size)
        qFatal("cannot write %s", qPrintable(file.fileName()));
    return file.fileName();
}

void TestPanelsInViewer::initTestCase()
{
    jp2maker::Options options;
    options.cell = [](int, int, int) { return 40; };
    one = write(QStringLiteral("one.jp2"), options);
    two = write(QStringLiteral("two.jp2"), options);
    options.components[0].bits = 16;
    options.cell = [](int, int x, int y) { return x * 64 + y; };
    deep = write(QStringLiteral("deep.jp2"), options);

    // Written before the plug-in is loaded, by the page that it would bring.
    Application::instance()->setSettingsFile(folder.filePath(QStringLiteral("settings.ini")));
    QSettings *settings = Application::instance()->settings();
    settings->setValue(QStringLiteral("XRVJP2kLayer/CacheMaxMemMb"), 321);
    settings->setValue(QStringLiteral("XRVJP2kLayer/ResilientDecoding"), false);
    settings->setValue(QStringLiteral("XRVJP2kLayer/XRVPUserAgent"), QStringLiteral("Somebody/2"));
    registry = std::make_unique<Korvane::PluginRegistry>();
    QVERIFY(registry->loadFile(QStringLiteral(PLUGIN_FILE)));
}

void TestPanelsInViewer::init()
{
    openWindow();
}

void TestPanelsInViewer::cleanup()
{
    window.reset();
}

void TestPanelsInViewer::openWindow()
{
    window.reset();
    window = std::make_unique<MainWindow>(*registry);
    window->resize(1200, 800);
    window->restoreLayout();
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
}

void TestPanelsInViewer::startUpReadsTheSettings()
{
    QStringList log;
    for (const Application::LogEntry &entry : Application::instance()->getLogHistory())
        log.append(entry.text.trimmed());
    QVERIFY(log.contains(QStringLiteral("Cache max mem (Mb): 321")));
    QVERIFY(log.contains(QStringLiteral("XRVP HTTP User-Agent: Somebody/2")));
    QCOMPARE(log.filter(QStringLiteral("Use resilient decoding")).size(), 1);
    QVERIFY(log.filter(QStringLiteral("No matching signal")).isEmpty());
}

void TestPanelsInViewer::contributions()
{
    ILayerEditorPlugin *editor = registry->getPlugins().first().editor;
    const QList<QDockWidget *> docks = editor->getDockWidgets();
    QCOMPARE(docks.size(), 1);
    QCOMPARE(docks[0]->windowTitle(), QLatin1String(kDockName));
    QCOMPARE(docks[0]->objectName(), QLatin1String(kDockName));
    QCOMPARE(int(docks[0]->features()), 7);
    QCOMPARE(int(docks[0]->allowedAreas()), 15);
    QVERIFY(!docks[0]->parent());
    QCOMPARE(QByteArray(docks[0]->widget()->metaObject()->className()), QByteArray("XRVJP2kProperties"));
    QVERIFY(docks[0]->widget() != panel());

    const QList<QWidget *> pages = editor->getPreferencePages();
    QCOMPARE(pages.size(), 1);
    QCOMPARE(pages[0]->objectName(), QStringLiteral("XRV JP2"));
    QVERIFY(!pages[0]->parent());

    const QList<QToolBar *> bars = editor->getToolBars();
    QCOMPARE(bars.size(), 1);
    QCOMPARE(bars[0]->windowTitle(), QStringLiteral("XRV & JPEG 2000"));
    QCOMPARE(bars[0]->objectName(), QStringLiteral("XRV or JPEG 2000"));
    QCOMPARE(bars[0]->actions().size(), 1);
    QCOMPARE(bars[0]->actions()[0]->text(), QStringLiteral("Add XRVP"));
    const QList<QAction *> actions = editor->getActions();
    QCOMPARE(actions.size(), 1);
    QCOMPARE(actions[0]->text(), QStringLiteral("TANNIS XRVP Image Stream"));
    for (const QAction *action : {bars[0]->actions()[0], actions[0]}) {
        QCOMPARE(action->toolTip(), QStringLiteral("Open an XRVP stream from an MILTO TANNIS Server"));
        QVERIFY(!action->icon().isNull());
    }
    qDeleteAll(docks);
    qDeleteAll(pages);
    qDeleteAll(bars);
    qDeleteAll(actions);
}

void TestPanelsInViewer::panelFollowsTheActiveLayer()
{
    QVERIFY(!panel()->isEnabled());
    QCOMPARE(window->addSources({one, two}, nullptr), QStringList());
    MapView *first = view();
    raster(first, 0)->setTransparency(0.6);
    raster(first, 1)->setTransparency(0.3);
    QVERIFY(panel()->isEnabled());
    first->setActiveLayer(first->getLayer(0));
    QCOMPARE(transparencySlider()->value(), 40);
    first->setActiveLayer(first->getLayer(1));
    QCOMPARE(transparencySlider()->value(), 70);
    first->moveLayer(1, 0);
    QCOMPARE(transparencySlider()->value(), 70);

    // An empty view, and back.
    window->mapArea()->createView();
    QVERIFY(!panel()->isEnabled());
    window->mapArea()->setCurrentView(first);
    QVERIFY(panel()->isEnabled());
    QCOMPARE(transparencySlider()->value(), 70);

    // A window that shows something else.
    QMdiSubWindow *other = window->mapArea()->addSubWindow(new QWidget);
    other->show();
    window->mapArea()->setActiveSubWindow(other);
    QVERIFY(!panel()->isEnabled());
    delete other;
    window->mapArea()->setCurrentView(first);
    QVERIFY(panel()->isEnabled());

    // The layer that takes over from a removed one, and none after one that somebody deleted.
    first->removeLayer(first->getActiveLayer());
    QCOMPARE(transparencySlider()->value(), 40);
    delete first->getLayer(0);
    QVERIFY(!panel()->isEnabled());
    transparencySlider()->setValue(10);
    window->addSources({one}, first);
    QVERIFY(panel()->isEnabled());
    QCOMPARE(transparencySlider()->value(), 0);
    window->mapArea()->closeAllViews();
    QVERIFY(!panel()->isEnabled());
    transparencySlider()->setValue(20);
}

void TestPanelsInViewer::sliderChangesTheMap()
{
    window->addSources({one}, nullptr);
    MapView *map = view();
    map->setBackgroundColor(Qt::white);
    map->zoomToAll();
    QVERIFY(map->waitUntilComplete(kPatienceMs));
    const QPoint middle(map->width() / 2, map->height() / 2);
    QTRY_COMPARE_WITH_TIMEOUT(map->grab().toImage().pixelColor(middle), QColor(40, 40, 40), kPatienceMs);
    auto *box = panel()->findChild<QSpinBox *>(QStringLiteral("transparencySpinBox"));
    box->setFocus();
    box->selectAll();
    QTest::keyClicks(box, QStringLiteral("50"));
    QTRY_VERIFY(std::abs(map->grab().toImage().pixelColor(middle).red() - (255 + 40) / 2) <= 1);
    QTest::mouseClick(panel()->findChild<QWidget *>(QStringLiteral("resetTransparency")), Qt::LeftButton);
    QTRY_COMPARE(map->grab().toImage().pixelColor(middle), QColor(40, 40, 40));
}

void TestPanelsInViewer::remembersPlacesAndSizes()
{
    window->addDockWidget(Qt::RightDockWidgetArea, dock());
    QCoreApplication::processEvents();
    window->resizeDocks({dock()}, {371}, Qt::Horizontal);
    QCoreApplication::processEvents();
    QCOMPARE(dock()->width(), 371);
    auto *bar = window->findChild<QToolBar *>(QStringLiteral("XRV or JPEG 2000"));
    window->addToolBar(Qt::BottomToolBarArea, bar);
    window->close();
    openWindow();
    QCoreApplication::processEvents();
    QCOMPARE(window->dockWidgetArea(dock()), Qt::RightDockWidgetArea);
    QCOMPARE(dock()->width(), 371);
    bar = window->findChild<QToolBar *>(QStringLiteral("XRV or JPEG 2000"));
    QCOMPARE(window->toolBarArea(bar), Qt::BottomToolBarArea);
    Application::instance()->settings()->remove(QStringLiteral("Viewer"));
}

void TestPanelsInViewer::viewMenuShowsAndHides()
{
    QAction *toggle = nullptr;
    QAction *stream = nullptr;
    for (const QMenu *menu : window->findChildren<QMenu *>()) {
        for (QAction *action : menu->actions()) {
            if (action->text() == QLatin1String(kDockName) && menu->title() == QLatin1String("&View"))
                toggle = action;
            if (action->text() == QLatin1String("TANNIS XRVP Image Stream") && menu->title() == QLatin1String("&File"))
                stream = action;
        }
    }
    QVERIFY(toggle && stream);
    const auto *bar = window->findChild<QToolBar *>(QStringLiteral("XRV or JPEG 2000"));
    QCOMPARE(bar->toggleViewAction()->text(), QStringLiteral("XRV && JPEG 2000"));
    QVERIFY(dock()->isVisible());
    toggle->trigger();
    QVERIFY(!dock()->isVisible());
    toggle->trigger();
    QVERIFY(dock()->isVisible());
}

void TestPanelsInViewer::preferencesWindow_data()
{
    QTest::addColumn<int>("button");
    QTest::addColumn<bool>("isSaved");
    QTest::newRow("ok") << int(QDialogButtonBox::Ok) << true;
    QTest::newRow("cancel") << int(QDialogButtonBox::Cancel) << false;
}

void TestPanelsInViewer::preferencesWindow()
{
    QFETCH(int, button);
    QFETCH(bool, isSaved);
    const QString key = QStringLiteral("XRVJP2kLayer/AdaptiveRendering");
    QSettings *settings = Application::instance()->settings();
    settings->remove(key);
    int shown = 0;
    QString title;
    int hiddenWidth = -1;
    QTimer person;
    connect(&person, &QTimer::timeout, this, [&] {
        auto *dialog = qobject_cast<Viewer::PreferencesDialog *>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        ++shown;
        const auto *tabs = dialog->findChild<QTabWidget *>();
        title = tabs->tabText(0);
        hiddenWidth = tabs->widget(0)->findChild<QScrollArea *>()->horizontalScrollBar()->maximum();
        auto *box = dialog->findChild<QCheckBox *>(QStringLiteral("useAdaptiveRendering"));
        box->click();
        dialog->findChild<QDialogButtonBox *>()->button(static_cast<QDialogButtonBox::StandardButton>(button))->click();
    });
    person.start(10);
    window->mainActions()->preferences->trigger();
    QCOMPARE(shown, 1);
    // The ampersand of the title is one, and the page is wide enough for all that is on it.
    QCOMPARE(title, QStringLiteral("XRV && JP2 Preferences"));
    QCOMPARE(hiddenWidth, 0);
    QCOMPARE(settings->contains(key), isSaved);
    QCOMPARE(settings->value(key, false).toBool(), isSaved);
}

int TestPanelsInViewer::runProgram(const QString &settingsFile, const QStringList &arguments, QByteArray *out,
                                   QByteArray *err) const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QDVIEWER_PLUGIN_PATH"), QStringLiteral(PLUGIN_FOLDER));
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(QDVIEWER_PROGRAM),
                  QStringList{QStringLiteral("--settings"), settingsFile} + arguments);
    const bool isDone = process.waitForFinished(kPatienceMs) && process.exitStatus() == QProcess::NormalExit;
    *out = process.readAllStandardOutput();
    *err = process.readAllStandardError();
    return isDone ? process.exitCode() : -1;
}

void TestPanelsInViewer::settingsSurviveARestart()
{
    const QString file = folder.filePath(QString::fromUtf8("Einstellungen für später.ini"));
    Application::instance()->setSettingsFile(file);
    {
        const std::unique_ptr<QWidget> page(registry->getPlugins().first().editor->getPreferencePages().first());
        page->show();
        for (const char *box : {"useOpenProgressive", "useBilinearSampling", "useAdaptiveRendering"})
            page->findChild<QCheckBox *>(QLatin1String(box))->click();
        page->findChild<QSpinBox *>(QStringLiteral("clipPercent"))->setValue(71);
        QVERIFY(QMetaObject::invokeMethod(page.get(), "onSavePrefs"));
    }
    Application::instance()->setSettingsFile(folder.filePath(QStringLiteral("settings.ini")));
    QByteArray out;
    QByteArray err;
    QVERIFY2(runProgram(file, {QStringLiteral("--describe"), deep}, &out, &err) == 0, err.constData());
    const QJsonObject properties = QJsonDocument::fromJson(out).object().value(QStringLiteral("properties")).toObject();
    QCOMPARE(properties.value(QStringLiteral("TransformClip")).toInt(), 71);
    QCOMPARE(properties.value(QStringLiteral("Progressive")).toBool(true), false);
    QCOMPARE(properties.value(QStringLiteral("PixmapSmoothing")).toBool(), true);
    QCOMPARE(properties.value(QStringLiteral("AdaptiveRoam")).toBool(), true);
}

void TestPanelsInViewer::badSettingsLeaveAWorkingProgram()
{
    const QString file = folder.filePath(QStringLiteral("bad.ini"));
    QFile ini(file);
    QVERIFY(ini.open(QIODevice::WriteOnly));
    ini.write("[XRVJP2kLayer]\nCacheMaxMemMb=much\nDiskCacheMaxSizeMb=1000000000000\nDefaultClipTransform=-5\n"
              "XrvpCacheDir=/proc/none/such\nOutlineColor=no colour\nDrawOutline=true\nOpenProgressive=perhaps\n"
              "TextureDither=@Invalid()\nResampleType=nearest\nXRVPUserAgent=\"a\\r\\nb\"\n"
              "[Viewer]\nGeometry=none\nState=@ByteArray(xyz)\n");
    ini.close();
    const QString picture = folder.filePath(QStringLiteral("window.png"));
    QByteArray out;
    QByteArray err;
    QVERIFY2(runProgram(file, {QStringLiteral("--window"), picture, deep}, &out, &err) == 0, err.constData());
    QVERIFY(!QImage(picture).isNull());
    const QString map = folder.filePath(QStringLiteral("map.png"));
    const QStringList exact{QStringLiteral("--screenshot"), map, QStringLiteral("--size"), QStringLiteral("64x64"),
                            one};
    QVERIFY2(runProgram(file, exact, &out, &err) == 0, err.constData());
    QCOMPARE(QImage(map).pixelColor(32, 32), QColor(40, 40, 40));
}

QTEST_MAIN(TestPanelsInViewer)
#include "tst_panelsinviewer.moc"
