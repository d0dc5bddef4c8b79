#include "layerprobe.h"
#include "testimages.h"

#include <QPainter>
#include <QThread>
#include <QtTest>

#include <random>

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
    std::unique_ptr<XRVJP2kLayer> openedLayer() const;
    std::unique_ptr<TestFolder> folder;
    QString file;
};

void TestLayerThreads::initTestCase()
{
    folder = std::make_unique<TestFolder>();
    jp2maker::Options options = colourImage(1500, 1200);
    options.tileWidth = options.tileHeight = 256;
    // Noise takes long to decode.
    std::mt19937 random(1);
    options.cell = [&random](int, int, int) { return int(random() & 255); };
    file = folder->makeImage(QStringLiteral("noise.jp2"), options);
}

std::unique_ptr<XRVJP2kLayer> TestLayerThreads::openedLayer() const
{
    auto layer = std::make_unique<XRVJP2kLayer>(nullptr);
    if (!layer->setDataSource(file))
        qFatal("cannot open the test image: %s", qPrintable(layer->getLastError()));
    return layer;
}

void TestLayerThreads::deletedWhileDecoding()
{
    for (unsigned long delay = 0; delay < 60; delay += 4) {
        const auto layer = openedLayer();
        viewWhole(*layer);
        QThread::msleep(delay); // so that the layer goes at different stages of its decoding
    }
}

void TestLayerThreads::viewsInQuickSuccession()
{
    const auto layer = openedLayer();
    for (int i = 0; i < 60; ++i) {
        layer->setView(300, 200, i * 5, -i * 4, i * 5 + 600, -i * 4 - 400);
        const QRectF world(i * 5, -i * 4, 600, -400);
        const QRect device(0, 0, 300, 200);
        QImage canvas(device.size(), QImage::Format_ARGB32);
        QPainter painter(&canvas);
        LayerProbe::renderer(*layer)->paint(painter, world, device);
        QCoreApplication::processEvents();
    }
    QTRY_COMPARE_WITH_TIMEOUT(int(layer->getPercentComplete()), 100, 60000);
    // What is left in the end is the picture of the last view.
    QTRY_COMPARE(LayerProbe::image(*LayerProbe::renderer(*layer))->getX1(), 59.0 * 5);
}

void TestLayerThreads::settingsWhileDecoding()
{
    const auto layer = openedLayer();
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
    const auto layer = openedLayer();
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
