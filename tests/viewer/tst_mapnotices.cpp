#include "quadlayer.h"
#include "viewertest.h"
#include "views/mapnotices.h"

#include <QDGui/ilayercondition.h>
#include <QDGui/mapview.h>

#include <QFrame>
#include <QPushButton>

using Korvane::Map::MapView;
using Viewer::MapNotices;

namespace {

/// Is mended by the second repair.
class FaultyLayer : public QuadLayer, public Korvane::Map::ILayerCondition
{
public:
    Condition getCondition() const override { return {fault, QStringLiteral("It rained.")}; }
    void repair() override
    {
        if (++repairs == 2)
            fault = Fault::None;
    }
    Fault fault = Fault::None;
    int repairs = 0;
};

} // namespace

/// What the bar over the map says, and what its buttons do.
class TestMapNotices : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void outside();
    void lostConnection();
    void damage();

private:
    void add(const QByteArray &line);
    void click(const QString &button);

    ViewerTest test;
    std::unique_ptr<MapView> view;
    std::unique_ptr<MapNotices> notices;
    FaultyLayer *layer = nullptr; // the one added last
};

void TestMapNotices::init()
{
    notices.reset();
    view = std::make_unique<MapView>();
    view->resize(400, 300);
    view->show();
    notices = std::make_unique<MapNotices>(nullptr);
    notices->setView(view.get());
    add("QUAD 40 20 500 1000 2");
}

void TestMapNotices::add(const QByteArray &line)
{
    layer = new FaultyLayer;
    QVERIFY(layer->setDataSource(test.quad(QStringLiteral("notice.quad"), line)));
    QVERIFY(view->addLayer(layer, -1) >= 0);
    notices->watchPlace(layer);
}

void TestMapNotices::click(const QString &text)
{
    for (QPushButton *button : view->findChildren<QPushButton *>()) {
        if (button->text() == text)
            return button->click();
    }
    QFAIL(qPrintable(text));
}

void TestMapNotices::outside()
{
    QCOMPARE(notices->texts(), QStringList()); // the first layer is what the view shows
    add("QUAD 40 20 90000 1000 2");
    QCOMPARE(notices->texts().size(), 1);
    QVERIFY(notices->texts()[0].contains(QLatin1String("outside the view")));
    QVERIFY(view->findChild<QFrame *>()->width() == view->width());
    click(QStringLiteral("Zoom to Layer"));
    QTRY_COMPARE(notices->texts(), QStringList());
    QVERIFY(!view->findChild<QFrame *>());
    add("QUAD 40 20 -90000 1000 2");
    QCOMPARE(notices->texts().size(), 1);
    view->removeLayer(layer);
    QCOMPARE(notices->texts(), QStringList());
}

void TestMapNotices::lostConnection()
{
    layer->fault = Korvane::Map::ILayerCondition::Fault::ConnectionLost;
    QTRY_COMPARE(notices->texts().size(), 1);
    click(QStringLiteral("Reconnect"));
    QTRY_COMPARE(layer->repairs, 1);
    QTRY_COMPARE(layer->repairs, 2); // by itself, a little later
    QTRY_COMPARE(notices->texts(), QStringList());
}

void TestMapNotices::damage()
{
    layer->fault = Korvane::Map::ILayerCondition::Fault::Damaged;
    QTRY_VERIFY(notices->texts().value(0).endsWith(QLatin1String("It rained.")));
    QVERIFY(view->findChildren<QPushButton *>().isEmpty());
    layer->setVisible(false);
    QTRY_COMPARE(notices->texts(), QStringList());
}

QTEST_MAIN(TestMapNotices)
#include "tst_mapnotices.moc"
