#include "plugins/preferencesdialog.h"
#include "views/maparea.h"
#include "window/mainactions.h"
#include "window/mainwindow.h"

#include "data/dialogwatch.h"
#include "data/testfolder.h"

#include <QDGui/application.h>
#include <QDGui/mapview.h>
#include <QDGui/pluginregistry.h>
#include <QDGui/rasterlayer.h>

#include <QAction>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QDockWidget>
#include <QMdiSubWindow>
#include <QMenu>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSettings>
#include <QSlider>
#include <QSpinBox>
#include <QTabWidget>
#include <QToolBar>
#include <QtTest>

#include <memory>

using Korvane::Application;
using Korvane::Map::MapView;
using Korvane::Map::RasterLayer;
using Viewer::MainWindow;

static constexpr int kPatienceMs = 60000;
static const char *const kDockName = "XRV JPEG 2000 Properties";

/// The plug-in's pieces where a person meets them: in the viewer's window.
class TestPanelsInViewer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void panelFollowsTheActiveLayer();
    void sliderChangesTheMap();
    void viewMenuShowsAndHides();
    void preferencesWindow_data();
    void preferencesWindow();

private:
    QDockWidget *dock() const { return window->findChild<QDockWidget *>(QLatin1String(kDockName)); }
    QWidget *panel() const { return dock()->widget(); }
    QSlider *transparencySlider() const { return panel()->findChild<QSlider *>(QStringLiteral("transparencySlider")); }
    MapView *view() const { return window->mapArea()->currentView(); }
    static RasterLayer *raster(MapView *view, int position)
    {
        return qobject_cast<RasterLayer *>(view->getLayer(position));
    }

    TestFolder folder;
    std::unique_ptr<Korvane::PluginRegistry> registry;
    std::unique_ptr<MainWindow> window;
    QString one;
    QString two;
};

void TestPanelsInViewer::initTestCase()
{
    jp2maker::Options options;
    options.cell = [](int, int, int) { return 40; };
    one = folder.makeImage(QStringLiteral("one.jp2"), options);
    two = folder.makeImage(QStringLiteral("two.jp2"), options);
    registry = std::make_unique<Korvane::PluginRegistry>();
    QVERIFY(registry->loadFile(QStringLiteral(PLUGIN_FILE)));
}

void TestPanelsInViewer::init()
{
    window = std::make_unique<MainWindow>(*registry);
    window->resize(1200, 800);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
}

void TestPanelsInViewer::cleanup()
{
    window.reset();
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
    Application::instance()->settings()->clear();
    QString title;
    int hiddenWidth = -1;
    const DialogWatch<Viewer::PreferencesDialog> person([&](Viewer::PreferencesDialog &dialog) {
        const auto *tabs = dialog.findChild<QTabWidget *>();
        title = tabs->tabText(0);
        hiddenWidth = tabs->widget(0)->findChild<QScrollArea *>()->horizontalScrollBar()->maximum();
        dialog.findChild<QCheckBox *>(QStringLiteral("useAdaptiveRendering"))->click();
        dialog.findChild<QDialogButtonBox *>()->button(static_cast<QDialogButtonBox::StandardButton>(button))->click();
    });
    window->mainActions()->preferences->trigger();
    QCOMPARE(person.shown, 1);
    // The ampersand of the title is one, and the page is wide enough for all that is on it.
    QCOMPARE(title, QStringLiteral("XRV && JP2 Preferences"));
    QCOMPARE(hiddenWidth, 0);
    QCOMPARE(TestFolder::storedSetting("AdaptiveRendering"), isSaved ? QVariant(QStringLiteral("true")) : QVariant());
}

QTEST_MAIN(TestPanelsInViewer)
#include "tst_panelsinviewer.moc"
