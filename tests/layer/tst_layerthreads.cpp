#include "layertest.h"

#include <QPainter>
#include <QThread>
#include <QtTest>

using namespace Korvane;

/// Progressive passes come on the SDK's thread while the GUI thread does what people do. To be run under a thread
/// sanitizer too.
class TestLayerThreads : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase() { folder.reset(); }

    void deletedWhileDecoding();
    void viewsInQuickSuccession();
    void settingsWhileDecoding();
    void reopenedWhileDecoding();

private:
    std::unique_ptr<TestFolder> folder;
    QString file;
};

void TestLayerThreads::initTestCase()
{
    folder = std::make_unique<TestFolder>();
    file = folder->makeImage(QStringLiteral("noise.jp2"), noiseImage());
}

void TestLayerThreads::deletedWhileDecoding()
{
    for (const int percent : {0, 10, 20, 40, 80}) {
        const auto layer = openLayer(file);
        viewWhole(*layer);
        // The layer goes at different stages of its decoding.
        QVERIFY(QTest::qWaitFor([&] { return layer->getPercentComplete() >= percent; }, 60000));
    }
}

void TestLayerThreads::viewsInQuickSuccession()
{
    const auto layer = openLayer(file);
    const QRect device(0, 0, 300, 200);
    QRectF world;
    const auto painted = [&](XRVJP2kLayer &one) {
        QImage canvas(device.size(), QImage::Format_ARGB32);
        canvas.fill(Qt::white);
        QPainter painter(&canvas);
        rendererOf(one)->paint(painter, world, device);
        return canvas;
    };
    const auto view = [&](XRVJP2kLayer &one) {
        one.setView(device.width(), device.height(), world.left(), world.top(), world.right(), world.bottom());
    };
    for (int i = 0; i < 60; ++i) {
        world = QRectF(i * 5, -i * 4, 600, -400);
        view(*layer);
        painted(*layer);
        QCoreApplication::processEvents();
    }
    QTRY_COMPARE_WITH_TIMEOUT(int(layer->getPercentComplete()), 100, 60000);
    // What is left in the end is the picture of the last view.
    TestFolder::setSetting("OpenProgressive", false);
    const auto reference = openLayer(file);
    TestFolder::setSetting("OpenProgressive", true);
    view(*reference);
    QTRY_COMPARE(painted(*layer), painted(*reference));
}

void TestLayerThreads::settingsWhileDecoding()
{
    const auto layer = openLayer(file);
    viewWhole(*layer);
    for (int i = 0; i < 10; ++i) {
        layer->setReadRGBA(i % 2 == 0);
        layer->setTransformClip(90 + i);
        layer->setBandList({i % 3, 1, 2});
        layer->setResampleType(i % 2 ? XRVJP2kLayer::Bilinear : XRVJP2kLayer::NearestNeighbour);
        layer->setTextureDither(i % 2 == 0);
        layer->setContrast(i * 0.1);
        QCoreApplication::processEvents();
    }
    QTRY_COMPARE_WITH_TIMEOUT(int(layer->getPercentComplete()), 100, 60000);
}

void TestLayerThreads::reopenedWhileDecoding()
{
    const auto layer = openLayer(file);
    for (int i = 0; i < 8; ++i) {
        viewWhole(*layer);
        if (i % 3 == 0)
            layer->setBackingStore(!layer->getBackingStore());
        else if (i % 3 == 1)
            layer->setProgressive(!layer->getProgressive());
        else
            QVERIFY(layer->setDataSource(file));
        QVERIFY(layer->isValid());
        QCoreApplication::processEvents();
    }
}

QTEST_MAIN(TestLayerThreads)
#include "tst_layerthreads.moc"
