#include "layers/layerlistdock.h"
#include "layers/layerlistmodel.h"
#include "viewertest.h"

#include "quadlayer.h"

#include <QDGui/mapview.h>

#include <QAbstractItemModelTester>
#include <QAction>
#include <QMimeData>
#include <QSignalSpy>
#include <QTreeView>

#include <memory>

using Korvane::Map::Layer;
using Korvane::Map::MapView;
using Viewer::LayerListDock;
using Viewer::LayerListModel;

class TestLayerList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void listsTopmostFirst();
    void changesVisibilityAndName();
    void dropsRows_data();
    void dropsRows();
    void refusesForeignDrops();
    void followsViewAndItsEnd();
    void selectionIsActiveLayer();
    void actionsWorkOnSelection();

private:
    QString names() const;
    QAction *action(const QWidget &list, const QString &text) const;

    ViewerTest test;
    std::unique_ptr<MapView> view;
    std::unique_ptr<LayerListModel> model;
};

void TestLayerList::init()
{
    model = std::make_unique<LayerListModel>();
    view = std::make_unique<MapView>();
    for (const char *name : {"a", "b", "c"}) {
        auto *layer = new QuadLayer;
        QVERIFY(layer->setDataSource(test.quad(QLatin1String(name))));
        view->addLayer(layer, -1);
    }
    model->setView(view.get());
}

QString TestLayerList::names() const
{
    QString all;
    for (int row = 0; row < model->rowCount(); ++row)
        all += model->index(row).data(Qt::DisplayRole).toString();
    return all;
}

QAction *TestLayerList::action(const QWidget &list, const QString &text) const
{
    for (QAction *candidate : list.actions()) {
        if (candidate->text().remove(QLatin1Char('&')) == text)
            return candidate;
    }
    return nullptr;
}

void TestLayerList::listsTopmostFirst()
{
    const QAbstractItemModelTester tester(model.get(), QAbstractItemModelTester::FailureReportingMode::QtTest);
    QCOMPARE(names(), QStringLiteral("cba"));
    view->removeLayer(view->getLayer(1));
    QCOMPARE(names(), QStringLiteral("ca"));
    QVERIFY(model->index(0).data(Qt::ToolTipRole).toString().contains(QString::fromUtf8("40 × 20")));
}

void TestLayerList::changesVisibilityAndName()
{
    QSignalSpy edited(model.get(), &LayerListModel::layerEdited);
    const QModelIndex top = model->index(0);
    QVERIFY(model->setData(top, Qt::Unchecked, Qt::CheckStateRole));
    QVERIFY(!view->getLayer(2)->isVisible());
    QCOMPARE(top.data(Qt::CheckStateRole).toInt(), int(Qt::Unchecked));
    QVERIFY(model->setData(top, QStringLiteral(" new "), Qt::EditRole));
    QCOMPARE(view->getLayer(2)->getDescription(), QStringLiteral("new"));
    QVERIFY(!model->setData(top, QStringLiteral("  "), Qt::EditRole));
    QCOMPARE(edited.count(), 2);
}

void TestLayerList::dropsRows_data()
{
    QTest::addColumn<int>("dragged");
    QTest::addColumn<int>("before"); // -1: below the last row
    QTest::addColumn<QString>("order");
    QTest::newRow("top to below the last") << 0 << -1 << "bac";
    QTest::newRow("top to the end") << 0 << 3 << "bac";
    QTest::newRow("top between") << 0 << 2 << "bca";
    QTest::newRow("bottom to top") << 2 << 0 << "acb";
    QTest::newRow("onto its own place") << 1 << 1 << "cba";
    QTest::newRow("below its own place") << 1 << 2 << "cba";
}

void TestLayerList::dropsRows()
{
    QFETCH(int, dragged);
    QFETCH(int, before);
    const std::unique_ptr<QMimeData> data(model->mimeData({model->index(dragged)}));
    QVERIFY(model->dropMimeData(data.get(), Qt::CopyAction, before, 0, QModelIndex()));
    QTEST(names(), "order");
}

void TestLayerList::refusesForeignDrops()
{
    QMimeData foreign;
    foreign.setText(QStringLiteral("1"));
    QVERIFY(!model->dropMimeData(&foreign, Qt::CopyAction, 0, 0, QModelIndex()));
    QMimeData broken;
    broken.setData(model->mimeTypes().first(), "99");
    QVERIFY(!model->dropMimeData(&broken, Qt::CopyAction, 0, 0, QModelIndex()));
    QCOMPARE(names(), QStringLiteral("cba"));
}

void TestLayerList::followsViewAndItsEnd()
{
    view.reset();
    QCOMPARE(model->rowCount(), 0);
    QVERIFY(!model->view());
    init();
    MapView other;
    model->setView(&other);
    QCOMPARE(model->rowCount(), 0);
    view->removeLayer(view->getLayer(0));
    QCOMPARE(model->rowCount(), 0);
}

void TestLayerList::selectionIsActiveLayer()
{
    LayerListDock dock;
    dock.setView(view.get());
    auto *list = dock.findChild<QTreeView *>();
    QCOMPARE(list->currentIndex().data().toString(), QStringLiteral("c"));
    list->setCurrentIndex(list->model()->index(2, 0));
    QCOMPARE(view->getActiveLayer()->getDescription(), QStringLiteral("a"));
    view->setActiveLayer(view->getLayer(1));
    QCOMPARE(list->currentIndex().data().toString(), QStringLiteral("b"));
    // The active layer is removed: the view activates the topmost before it tells of the removal.
    view->removeLayer(view->getLayer(1));
    QCOMPARE(list->currentIndex().data().toString(), QStringLiteral("c"));
}

void TestLayerList::actionsWorkOnSelection()
{
    LayerListDock dock;
    dock.setView(view.get());
    model->setView(view.get());
    auto *list = dock.findChild<QTreeView *>();
    const QAction *up = action(*list, QStringLiteral("Move Up"));
    QVERIFY(up && !up->isEnabled());
    action(*list, QStringLiteral("Move to Bottom"))->trigger();
    QCOMPARE(names(), QStringLiteral("bac"));
    QCOMPARE(list->currentIndex().data().toString(), QStringLiteral("c"));
    QVERIFY(!action(*list, QStringLiteral("Move Down"))->isEnabled());
    action(*list, QStringLiteral("Move Up"))->trigger();
    QCOMPARE(names(), QStringLiteral("bca"));

    view->resize(400, 400);
    action(*list, QStringLiteral("Zoom to 1:1"))->trigger();
    QCOMPARE(view->getUnitsPerPixel(), 2.0);

    QSignalSpy properties(&dock, &LayerListDock::propertiesRequested);
    action(*list, QStringLiteral("Properties..."))->trigger();
    QCOMPARE(properties.count(), 1);
    for (int i = 0; i < 3; ++i)
        action(*list, QStringLiteral("Remove"))->trigger();
    QCOMPARE(view->getLayerCount(), 0);
    QVERIFY(!action(*list, QStringLiteral("Remove"))->isEnabled());
}

QTEST_MAIN(TestLayerList)
#include "tst_layerlist.moc"
