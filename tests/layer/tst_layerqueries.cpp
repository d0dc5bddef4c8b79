#include "layerprobe.h"
#include "testimages.h"

#include <xrv60/plkinit.h>

#include <QFile>
#include <QtTest>

using namespace Korvane;

/// What the layer tells of its image.
class TestLayerQueries : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { folder = std::make_unique<TestFolder>(); }
    void cleanup() { folder.reset(); }

    void withoutASource();
    void sizeAndBands();
    void cellTypes_data();
    void cellTypes();
    void formatAndProtocol_data();
    void formatAndProtocol();
    void geoReference();
    void headerOfNothing();
    void histograms();
    void histogramOfSignedCells();

private:
    void open(const jp2maker::Options &options, const QString &name = QStringLiteral("image.jp2"));
    QVector<Map::HistogramT<quint64>> histogramsOf(bool reset = false)
    {
        return layer->getHistograms(reset, false, QSize(), 0, 0, 0, 0);
    }
    std::unique_ptr<TestFolder> folder;
    std::unique_ptr<XRVJP2kLayer> layer;
};

void TestLayerQueries::open(const jp2maker::Options &options, const QString &name)
{
    layer = std::make_unique<XRVJP2kLayer>(nullptr);
    QVERIFY2(layer->setDataSource(folder->makeImage(name, options)), qPrintable(layer->getLastError()));
}

void TestLayerQueries::withoutASource()
{
    XRVJP2kLayer fresh(nullptr);
    QVERIFY(!fresh.getSize().isValid());
    QCOMPARE(int(fresh.getColorSpace()), 3);
    QCOMPARE(fresh.getCellType(), QStringLiteral("Unknown"));
    QCOMPARE(fresh.getCoordSysName(), QStringLiteral("Unknown"));
    QCOMPARE(fresh.getFormat(), QStringLiteral("Unknown"));
    QCOMPARE(fresh.getProtocol(), QStringLiteral("Local file"));
    QCOMPARE(fresh.getRotation(), 0.0);
    QCOMPARE(fresh.getFileFormatVersion(), 0);
    QCOMPARE(fresh.getXRVPVersion(), 0);
    QVERIFY(fresh.getBandDescriptions().isEmpty());
    QVERIFY(!fresh.getFile());
    QVERIFY(!fresh.getFileInfo());
    QCOMPARE(int(fresh.getFileType()), 0);
    QVERIFY(!fresh.getStatistics());
    QVERIFY(!fresh.getRPCInfo());
    QVERIFY(fresh.getHistograms(false, false, QSize(), 0, 0, 0, 0).isEmpty());
}

void TestLayerQueries::sizeAndBands()
{
    jp2maker::Options options;
    options.width = 70;
    options.height = 30;
    options.components.assign(4, jp2maker::Component());
    options.opacityLast = true;
    open(options);
    QCOMPARE(layer->getSize(), QSize(70, 30));
    QCOMPARE(layer->getBounds(), QRectF(0, 0, 70, -30));
    QCOMPARE(layer->getNumberOfBands(), 4);
    QCOMPARE(layer->getBandDescriptions(), QStringList({QStringLiteral("Red"), QStringLiteral("Green"),
                                                        QStringLiteral("Blue"), QStringLiteral("AllOpacity")}));
    QCOMPARE(int(layer->getColorSpace()), 0);
    QCOMPARE(layer->getXRVPVersion(), 0);
    QCOMPARE(int(layer->getFileType()), int(PLK_FILE_JPEG2000));
}

void TestLayerQueries::cellTypes_data()
{
    QTest::addColumn<int>("bits");
    QTest::addColumn<bool>("isSigned");
    QTest::addColumn<QString>("name");
    QTest::newRow("1") << 1 << false << QStringLiteral("UInt8");
    QTest::newRow("8") << 8 << false << QStringLiteral("UInt8");
    QTest::newRow("12") << 12 << false << QStringLiteral("UInt16");
    QTest::newRow("16") << 16 << false << QStringLiteral("UInt16");
    QTest::newRow("8 signed") << 8 << true << QStringLiteral("Int8");
    QTest::newRow("16 signed") << 16 << true << QStringLiteral("Int16");
    QTest::newRow("20") << 20 << false << QStringLiteral("UInt32");
}

void TestLayerQueries::cellTypes()
{
    QFETCH(int, bits);
    QFETCH(bool, isSigned);
    jp2maker::Options options;
    options.components = {{bits, isSigned, 1, 1}};
    open(options);
    QTEST(layer->getCellType(), "name");
    QCOMPARE(int(layer->getColorSpace()), 1);
}

void TestLayerQueries::formatAndProtocol_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("protocol");
    const auto row = [](const char *name, const char *format, const char *protocol) {
        QTest::newRow(name) << QString::fromLatin1(name) << QString::fromLatin1(format)
                            << QString::fromLatin1(protocol);
    };
    row("a.jp2", "JPEG 2000", "Local JPEG 2000 file");
    row("a.JP2", "JPEG 2000", "Local file");
    row("a.jpx", "JPEG 2000", "Local file");
    row("a.JPC", "JPEG 2000", "Local file");
    row("a.jpf", "Unknown", "Local file");
    row("a.xrv.copy", "Unknown", "Local XRV file");
    row("a.jp2.bak", "Unknown", "Local JPEG 2000 file");
    // The content decides what is opened, the name what is told of it.
    row("A.XRV", "MILTO XRV", "Local file");
}

void TestLayerQueries::formatAndProtocol()
{
    QFETCH(QString, name);
    open(jp2maker::Options(), name);
    QTEST(layer->getFormat(), "format");
    // The folder's own name must not decide.
    QVERIFY(!folder->path(QString()).contains(QLatin1String(".jp2")));
    QTEST(layer->getProtocol(), "protocol");
}

void TestLayerQueries::geoReference()
{
    const QString file = folder->makeImage(QStringLiteral("image.jp2"), colourImage(40, 30));
    // A world file gives the centre of the first cell.
    folder->writeText(QStringLiteral("image.j2w"), "2.5\n0\n0\n-2.5\n1001.25\n5998.75\n");
    layer = std::make_unique<XRVJP2kLayer>(nullptr);
    QVERIFY(layer->setDataSource(file));
    QCOMPARE(layer->getCellSizeX(), 2.5);
    QCOMPARE(layer->getCellSizeY(), -2.5);
    QCOMPARE(layer->getBounds(), QRectF(1000, 6000, 100, -75));
    QCOMPARE(layer->getCoordSysName(), QStringLiteral("Unknown"));
    QCOMPARE(layer->getEpsgCode(), 0);
}

void TestLayerQueries::headerOfNothing()
{
    XRVJP2kLayer fresh(nullptr);
    XRVJP2kLayer::Jp2FileInfo info;
    info.comments = QStringLiteral("left alone");
    QVERIFY(!fresh.getJp2FileInfo(info));
    QCOMPARE(info.comments, QStringLiteral("left alone"));
}

void TestLayerQueries::histograms()
{
    jp2maker::Options options = colourImage(64, 64);
    open(options);
    const auto first = histogramsOf();
    QCOMPARE(first.size(), 3);
    QCOMPARE(first[0].bandName, QStringLiteral("Red"));
    QCOMPARE(first[0].minimumValue, quint64(0));
    QCOMPARE(first[0].maximumValue, quint64(63));
    QCOMPARE(first[0].mean, 31.5);
    QCOMPARE(first[2].mode, 50.0);
    QCOMPARE(first[2].largestCount, quint64(64 * 64));
    quint64 cells = 0;
    for (const quint64 count : first[1].buckets)
        cells += count;
    QCOMPARE(cells, quint64(64 * 64));
    QCOMPARE(quint32(first[1].buckets.size()), first[1].bucketCount);
    // A reset gives nothing, the next call computes anew.
    QVERIFY(histogramsOf(true).isEmpty());
    QCOMPARE(histogramsOf().size(), 3);
}

void TestLayerQueries::histogramOfSignedCells()
{
    jp2maker::Options options;
    options.components = {{8, true, 1, 1}};
    options.cell = [](int, int x, int) { return x - 32; };
    open(options);
    const auto histogram = histogramsOf().value(0);
    QCOMPARE(histogram.minimumValue, quint64(0)); // nothing below fits the type
    QCOMPARE(histogram.maximumValue, quint64(31));
    QCOMPARE(histogram.mean, -0.5);
}

QTEST_MAIN(TestLayerQueries)
#include "tst_layerqueries.moc"
