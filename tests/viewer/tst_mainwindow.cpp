#include "plugins/propertieswindow.h"
#include "viewertest.h"

#include "data/dialogwatch.h"
#include "views/maparea.h"
#include "window/mainactions.h"
#include "window/mainwindow.h"

#include <QDGui/ilayerplugin.h>
#include <QDGui/mapview.h>

#include <QAction>
#include <QDockWidget>
#include <QDropEvent>
#include <QLabel>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMimeData>
#include <QScrollArea>
#include <QScrollBar>
#include <QSpinBox>
#include <QTabWidget>
#include <QToolBar>
#include <QTreeView>
#include <QUrl>

#include <memory>

using Korvane::Map::Layer;
using Korvane::Map::MapView;
using Viewer::MainWindow;
using Viewer::MapArea;

class TestMainWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void bringsPluginPieces();
    void opensSourcesInOneView();
    void summarizesFailures();
    void adoptsForeignSubWindows();
    void takesDrops();
    void remembersDocks();
    void propertiesFollowLayer();
    void propertiesWindowIsRemembered();
    void switchesArrangement();
    void wheelLeavesValuesAlone();
    void goesBackAndForward();
    void keyboardLeavesTheMap();
    void asksForEdits();

private:
    QLabel *panel() const
    {
        return window->findChild<QDockWidget *>(QStringLiteral("QuadDock"))->findChild<QLabel *>();
    }
    bool drop(const QMimeData &data, const QPoint &position);

    ViewerTest test;
    std::unique_ptr<MainWindow> window;
};

void TestMainWindow::init()
{
    window = std::make_unique<MainWindow>(test.registry);
    window->resize(1000, 700);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
}

void TestMainWindow::cleanup()
{
    window.reset();
}

void TestMainWindow::bringsPluginPieces()
{
    const auto *dock = window->findChild<QDockWidget *>(QStringLiteral("QuadDock"));
    QVERIFY(dock && dock->isVisible());
    QVERIFY(window->findChild<QToolBar *>(QStringLiteral("QuadBar"))->isVisible());
    QStringList menuTexts;
    for (const QMenu *menu : window->findChildren<QMenu *>())
        for (const QAction *action : menu->actions())
            menuTexts.append(action->text());
    QVERIFY(menuTexts.contains(QStringLiteral("Quad Action")));
    QVERIFY(menuTexts.contains(QStringLiteral("Quad Properties")));
    QCOMPARE(Korvane::Application::instance()->getMainWindow(), window.get());
}

void TestMainWindow::opensSourcesInOneView()
{
    const QStringList failures =
        window->addSources({test.path(QStringLiteral("missing")), test.quad(QStringLiteral("a.quad")),
                            test.quad(QStringLiteral("b.quad"))},
                           nullptr);
    QCOMPARE(failures.size(), 1);
    QCOMPARE(window->mapArea()->views().size(), 1);
    QCOMPARE(window->mapArea()->currentView()->getLayerCount(), 2);
    QVERIFY(window->mainActions()->zoomToLayer->isEnabled());
    // Where nothing can be opened, no empty view is left behind.
    window->mapArea()->closeAllViews();
    QCOMPARE(window->addSources({test.path(QStringLiteral("missing"))}, nullptr).size(), 1);
    QVERIFY(window->mapArea()->views().isEmpty());
    QVERIFY(!window->mainActions()->zoomToLayer->isEnabled());
}

void TestMainWindow::summarizesFailures()
{
    const BoxWatch boxes;
    window->openSources(
        {test.path(QStringLiteral("x1")), test.quad(QStringLiteral("a.quad")), test.path(QStringLiteral("x2"))});
    window->openSources({test.path(QStringLiteral("x3"))});
    const QStringList &texts = boxes.texts;
    QCOMPARE(texts.size(), 2);
    QVERIFY2(texts[0].contains(QLatin1String("2 of 3")) && texts[0].contains(QLatin1String("x2")),
             qPrintable(texts[0]));
    QVERIFY2(texts[1].contains(QLatin1String("x3 does not exist")), qPrintable(texts[1]));
}

void TestMainWindow::adoptsForeignSubWindows()
{
    // As a plug-in does it that opens a layer by itself.
    auto *view = new MapView;
    window->mapArea()->addSubWindow(view)->show();
    auto *layer = test.registry.getPlugins().first().factory->createLayer(false);
    QVERIFY(layer->setDataSource(test.quad(QStringLiteral("own.quad"))));
    QCOMPARE(view->addLayer(layer, -1), 0);
    Q_EMIT window->mapArea()->subWindowActivated(window->mapArea()->activeSubWindow());
    QCOMPARE(window->mapArea()->views(), QVector<MapView *>{view});
    QCOMPARE(window->mapArea()->currentView(), view);
    QCOMPARE(panel()->text(), QStringLiteral("own.quad"));
    QCOMPARE(window->mapArea()->currentSubWindow()->windowTitle(), QStringLiteral("own.quad"));
}

bool TestMainWindow::drop(const QMimeData &data, const QPoint &position)
{
    QDragEnterEvent enter(position, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
    enter.ignore();
    QApplication::sendEvent(window.get(), &enter);
    if (!enter.isAccepted())
        return false;
    QDropEvent event(position, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
    event.ignore();
    QApplication::sendEvent(window.get(), &event);
    return event.isAccepted() && event.dropAction() == Qt::CopyAction;
}

void TestMainWindow::takesDrops()
{
    QMimeData words;
    words.setText(QStringLiteral("just words"));
    QVERIFY(!drop(words, QPoint(5, 5)));
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(test.quad(QStringLiteral("d1.quad"))),
                  QUrl::fromLocalFile(test.quad(QStringLiteral("d2.quad")))});
    QVERIFY(drop(data, QPoint(5, 5)));
    QTRY_COMPARE(window->mapArea()->views().size(), 1);
    MapView *first = window->mapArea()->currentView();
    QTRY_COMPARE(first->getLayerCount(), 2);

    // Side by side, what is dropped goes to the view under the pointer, not to the current one.
    MapView *second = window->mapArea()->createView();
    window->mainActions()->tile->trigger();
    QTRY_VERIFY(first->isVisible() && second->isVisible());
    QVERIFY(drop(data, first->mapTo(window.get(), QPoint(20, 20))));
    QTRY_COMPARE(first->getLayerCount(), 4);
    QCOMPARE(second->getLayerCount(), 0);
}

void TestMainWindow::remembersDocks()
{
    auto *dock = window->findChild<QDockWidget *>(QStringLiteral("QuadDock"));
    window->addDockWidget(Qt::RightDockWidgetArea, dock);
    window->findChild<QDockWidget *>(QStringLiteral("LayerListDock"))->hide();
    window->close();
    window = std::make_unique<MainWindow>(test.registry);
    window->restoreLayout();
    window->show();
    dock = window->findChild<QDockWidget *>(QStringLiteral("QuadDock"));
    QCOMPARE(window->dockWidgetArea(dock), Qt::RightDockWidgetArea);
    QVERIFY(!window->findChild<QDockWidget *>(QStringLiteral("LayerListDock"))->isVisible());
    Korvane::Application::instance()->settings()->clear();
}

void TestMainWindow::propertiesFollowLayer()
{
    window->addSources({test.quad(QStringLiteral("p1.quad")), test.quad(QStringLiteral("p2.quad"))}, nullptr);
    MapView *view = window->mapArea()->currentView();
    window->mainActions()->layerProperties->trigger();
    auto *properties = window->findChild<Viewer::PropertiesWindow *>();
    QVERIFY(properties->isVisible());
    QVERIFY(properties->windowTitle().contains(QLatin1String("p2.quad")));
    auto *tabs = properties->findChild<QTabWidget *>();
    QCOMPARE(tabs->count(), 2);
    tabs->setCurrentIndex(1);
    QCOMPARE(tabs->tabText(1), QStringLiteral("Quad Info"));

    view->setActiveLayer(view->getLayer(0));
    QVERIFY(properties->windowTitle().contains(QLatin1String("p1.quad")));
    QCOMPARE(tabs->currentIndex(), 1);
    properties->accept();
    QCOMPARE(view->getLayer(0)->getComments(), QStringLiteral("applied"));
    QCOMPARE(view->getLayer(1)->getComments(), QString());

    window->mainActions()->layerProperties->trigger();
    view->removeLayer(view->getLayer(0));
    QVERIFY(properties->windowTitle().contains(QLatin1String("p2.quad")));
    view->removeLayer(view->getLayer(0));
    QVERIFY(!properties->isVisible());
}

void TestMainWindow::propertiesWindowIsRemembered()
{
    window->addSources({test.quad(QStringLiteral("p.quad"))}, nullptr);
    auto *list = window->findChild<QTreeView *>();
    const QPoint firstRow = list->visualRect(list->model()->index(0, 0)).center();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, firstRow);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, firstRow);
    auto *properties = window->findChild<Viewer::PropertiesWindow *>();
    QVERIFY(properties->isVisible());
    auto *tabs = properties->findChild<QTabWidget *>();
    tabs->setCurrentIndex(1);
    properties->resize(640, 580);
    QTest::keyClick(properties, Qt::Key_Escape);
    QVERIFY(!properties->isVisible());
    QTRY_COMPARE(tabs->count(), 0); // holds nothing of the layer while it is closed
    window->mainActions()->layerProperties->trigger();
    QCOMPARE(tabs->currentIndex(), 1);
    properties->close();

    const MainWindow another(test.registry);
    QCOMPARE(another.findChild<Viewer::PropertiesWindow *>()->size(), QSize(640, 580));
    Korvane::Application::instance()->settings()->clear();
}

void TestMainWindow::switchesArrangement()
{
    for (int i = 0; i < 3; ++i)
        window->mapArea()->createView();
    window->mainActions()->tile->trigger();
    QCOMPARE(window->mapArea()->arrangement(), MapArea::Arrangement::Windows);
    QTRY_VERIFY(window->mapArea()->views().at(0)->isVisible() && window->mapArea()->views().at(2)->isVisible());
    window->mainActions()->tabs->trigger();
    QCOMPARE(window->mapArea()->arrangement(), MapArea::Arrangement::Tabs);
    QCOMPARE(window->mapArea()->views().size(), 3);
}

void TestMainWindow::wheelLeavesValuesAlone()
{
    QScrollArea area;
    area.setWidget(new QWidget);
    area.widget()->resize(300, 2000);
    auto *box = new QSpinBox(area.widget());
    area.resize(320, 200);
    area.show();
    const auto turn = [box] {
        QWheelEvent wheel(QPointF(5, 5), box->mapToGlobal(QPoint(5, 5)), QPoint(), QPoint(0, -120), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QSpontaneKeyEvent::setSpontaneous(&wheel); // others are not offered to the parents
        qApp->notify(box, &wheel);
    };
    box->setValue(50);
    turn();
    QCOMPARE(box->value(), 50);
    QVERIFY(!box->hasFocus());
    QVERIFY(area.verticalScrollBar()->value() > 0);
    area.activateWindow();
    box->setFocus();
    QTRY_VERIFY(box->hasFocus());
    turn();
    QCOMPARE(box->value(), 49);
}

void TestMainWindow::goesBackAndForward()
{
    const Viewer::MainActions &actions = *window->mainActions();
    QCOMPARE(window->addSources({test.quad(QStringLiteral("back.quad"))}, nullptr), QStringList());
    MapView *view = window->mapArea()->currentView();
    QTest::qWait(800); // a place is one where somebody has looked
    QVERIFY(!actions.back->isEnabled());
    const QPointF first = view->getCenter();
    view->setCenter(first + QPointF(10, 0));
    QTRY_VERIFY(actions.back->isEnabled());
    view->setCenter(first + QPointF(20, 0));
    actions.back->trigger();
    QCOMPARE(view->getCenter(), first + QPointF(10, 0));
    actions.back->trigger();
    QCOMPARE(view->getCenter(), first);
    QVERIFY(!actions.back->isEnabled() && actions.forward->isEnabled());
    actions.forward->trigger();
    QCOMPARE(view->getCenter(), first + QPointF(10, 0));
    view->setCenter(first);
    QTRY_VERIFY(!actions.forward->isEnabled());
}

void TestMainWindow::keyboardLeavesTheMap()
{
    QCOMPARE(window->addSources({test.quad(QStringLiteral("keys.quad"))}, nullptr), QStringList());
    MapView *view = window->mapArea()->currentView();
    window->activateWindow();
    view->setFocus();
    QTRY_VERIFY(view->hasFocus());
    QTest::keyClick(view, Qt::Key_Tab);
    QWidget *next = QApplication::focusWidget();
    QVERIFY(next && next != view && !view->isAncestorOf(next));
    window->mainActions()->previousPanel->trigger();
    QVERIFY(view->hasFocus());
    for (int panel = 0; panel < 20 && (panel == 0 || !view->hasFocus()); ++panel)
        window->mainActions()->nextPanel->trigger();
    QVERIFY(view->hasFocus()); // once around
}

/// Images that were merely opened are given up without a question, settings are not.
void TestMainWindow::asksForEdits()
{
    QCOMPARE(window->addSources({test.quad(QStringLiteral("edited.quad"))}, nullptr), QStringList());
    const BoxWatch boxes({QMessageBox::Cancel});
    QVERIFY(window->close());
    window->show();
    window->mapArea()->currentView()->getActiveLayer()->setProperty("Contrast", 0.25);
    QVERIFY(!window->close());
    QCOMPARE(boxes.texts.size(), 1);
}

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
