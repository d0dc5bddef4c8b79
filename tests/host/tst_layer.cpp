#include "fakelayer.h"

#include <QSignalSpy>
#include <QTest>

#include <cmath>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

using Korvane::Map::Layer;

namespace {

std::vector<std::thread> startThreads(int count, const std::function<void(int)> &work)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i)
        threads.emplace_back(work, i);
    return threads;
}

void join(std::vector<std::thread> &threads)
{
    for (std::thread &thread : threads)
        thread.join();
}

} // namespace

class TestLayer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void gathersRefreshes_data();
    void gathersRefreshes();
    void deliversOnTheGuiThread();
    void losesNoRefreshOfManyThreads();
    void refreshWhileDeliveringIsDeliveredAgain();
    void mayBeDeletedWithRefreshesPending();
    void everyLayerHasItsOwnUid();
};

void TestLayer::gathersRefreshes_data()
{
    QTest::addColumn<QVector<QRectF>>("requests");
    QTest::addColumn<QRectF>("delivered");
    const QRectF northUp(10, 40, 20, -10);
    const QRectF far(100, 5, 1, -5);
    QTest::newRow("one, turned upright") << QVector<QRectF>{northUp} << QRectF(10, 30, 20, 10);
    QTest::newRow("two that lie apart") << QVector<QRectF>{northUp, far} << QRectF(10, 0, 91, 40);
    QTest::newRow("all") << QVector<QRectF>{QRectF(0, 0, 0, 0)} << QRectF();
    QTest::newRow("a part, then all") << QVector<QRectF>{northUp, QRectF(0, 0, 0, 0)} << QRectF();
    QTest::newRow("all, then a part") << QVector<QRectF>{QRectF(0, 0, 0, 0), northUp} << QRectF();
    QTest::newRow("not a number") << QVector<QRectF>{QRectF(std::nan(""), 0, 1, 1)} << QRectF();
}

void TestLayer::gathersRefreshes()
{
    QFETCH(QVector<QRectF>, requests);
    QFETCH(QRectF, delivered);
    FakeLayer layer(QRectF(0, 0, 1, -1));
    QSignalSpy spy(&layer, &Layer::refreshRequested);
    for (const QRectF &request : qAsConst(requests))
        layer.refresh(request.x(), request.y(), request.x() + request.width(), request.y() + request.height());
    QCOMPARE(spy.count(), 0);
    QVERIFY(layer.hasPendingRefresh());
    QCoreApplication::processEvents();
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy[0][0].toRectF(), delivered);
    QVERIFY(!layer.hasPendingRefresh());
    QCOMPARE(layer.getRefreshCount(), quint64(requests.size()));
}

void TestLayer::deliversOnTheGuiThread()
{
    FakeLayer layer(QRectF(0, 0, 1, -1));
    const QThread *deliveredOn = nullptr;
    connect(
        &layer, &Layer::refreshRequested, &layer, [&] { deliveredOn = QThread::currentThread(); },
        Qt::DirectConnection);
    std::thread worker([&layer] { layer.refresh(1, 2, 3, 4); });
    worker.join();
    QCoreApplication::processEvents();
    QCOMPARE(deliveredOn, thread());
}

void TestLayer::losesNoRefreshOfManyThreads()
{
    constexpr int kThreads = 4;
    constexpr int kRefreshes = 2000;
    FakeLayer layer(QRectF(0, 0, 1, -1));
    QRectF seen;
    int deliveries = 0;
    connect(&layer, &Layer::refreshRequested, &layer, [&](const QRectF &rect) {
        seen |= rect;
        ++deliveries;
    });
    auto threads = startThreads(kThreads, [&layer](int number) {
        for (int i = 0; i < kRefreshes; ++i)
            layer.refresh(number * kRefreshes + i, 1, number * kRefreshes + i + 1, 0);
    });
    while (layer.getRefreshCount() < quint64(kThreads * kRefreshes))
        QCoreApplication::processEvents();
    join(threads);
    QCoreApplication::processEvents();
    QCOMPARE(seen, QRectF(0, 0, kThreads * kRefreshes, 1));
    QVERIFY(deliveries >= 1 && deliveries <= kThreads * kRefreshes);
}

void TestLayer::refreshWhileDeliveringIsDeliveredAgain()
{
    FakeLayer layer(QRectF(0, 0, 1, -1));
    QVector<QRectF> delivered;
    connect(&layer, &Layer::refreshRequested, &layer, [&](const QRectF &rect) {
        delivered.append(rect);
        if (delivered.size() == 1)
            layer.refresh(5, 6, 7, 5);
    });
    layer.refresh(1, 2, 3, 1);
    QTRY_COMPARE(delivered.size(), 2);
    QCOMPARE(delivered[1], QRectF(5, 5, 2, 1));
}

void TestLayer::mayBeDeletedWithRefreshesPending()
{
    for (int round = 0; round < 50; ++round) {
        auto layer = std::make_unique<FakeLayer>(QRectF(0, 0, 1, -1));
        auto threads = startThreads(2, [&layer](int) {
            for (int i = 0; i < 20; ++i)
                layer->refresh(0, 0, 0, 0);
        });
        // A layer's destructor waits for whoever may still call it; here, the threads.
        join(threads);
        QVERIFY(layer->hasPendingRefresh());
        layer.reset();
        QCoreApplication::processEvents();
    }
}

void TestLayer::everyLayerHasItsOwnUid()
{
    const FakeLayer one(QRectF(0, 0, 1, -1));
    const FakeLayer other(QRectF(0, 0, 1, -1));
    QVERIFY(!one.getUid().isEmpty());
    QVERIFY(one.getUid() != other.getUid());
}

QTEST_MAIN(TestLayer)
#include "tst_layer.moc"
