#include "data/jp2maker.h"
#include "sdk/distantfile.h"

#include "decode/rasterreader.h"

#include <QtTest>

using jp2maker::Options;
using namespace xrv;

namespace {

/// Something that does not compress to nothing.
std::int32_t textured(int, int x, int y)
{
    const std::uint32_t hash = (std::uint32_t(x) * 73856093u ^ std::uint32_t(y) * 19349663u) * 2654435761u;
    return static_cast<std::int32_t>(128 + 80 * std::sin(x * 0.05) * std::cos(y * 0.04) + int(hash >> 29) * 4);
}

Options image(int side, int tile)
{
    Options options;
    options.width = options.height = side;
    options.tileWidth = options.tileHeight = tile;
    options.cell = textured;
    options.bareCodestream = true;
    options.levels = 5;
    return options;
}

/// A reader of a file far away.
struct Distant
{
    explicit Distant(const Bytes &file, DistantFile::Knowledge *knowledge = nullptr)
        : source(std::make_shared<DistantFile>(file, 1, knowledge))
    {
        if (const PLK::CError error = RasterReader::open(source, ByteRange{0, file.size()}, &reader))
            qFatal("%s", error.GetErrorMessage());
    }
    ReadResult read(const IntRect &rect, int level) const
    {
        ReadRequest request;
        request.datasetRect = rect;
        request.level = level;
        request.components = {0};
        request.resilient = false;
        ReadResult result;
        if (const PLK::CError error = reader->read(request, &result))
            qFatal("%s", error.GetErrorMessage());
        return result;
    }
    ReadResult readAll(int level) const { return read({0, 0, reader->info().width, reader->info().height}, level); }

    std::shared_ptr<DistantFile> source;
    std::unique_ptr<RasterReader> reader;
};

/// The same cells from a file at hand.
Bytes nearCells(const Bytes &file, const IntRect &rect, int level)
{
    std::unique_ptr<RasterReader> reader;
    if (RasterReader::open(std::make_shared<MemorySource>(file), ByteRange{0, file.size()}, &reader))
        qFatal("not opened");
    ReadRequest request;
    request.datasetRect = rect;
    request.level = level;
    request.components = {0};
    ReadResult result;
    if (reader->read(request, &result))
        qFatal("not read");
    return result.planes[0].bytes;
}

} // namespace

/// How often and for how many bytes a file that lies far away is asked.
class TestDistantReads : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void overviewOfTiles_data()
    {
        QTest::addColumn<bool>("tlm");
        QTest::addColumn<bool>("plt");
        QTest::addColumn<QByteArray>("progression");
        QTest::newRow("table and packet lengths") << true << true << QByteArray("LRCP");
        QTest::newRow("table") << true << false << QByteArray("RPCL");
        QTest::newRow("packet lengths") << false << true << QByteArray("RLCP");
    }
    void overviewOfTiles()
    {
        QFETCH(bool, tlm);
        QFETCH(bool, plt);
        QFETCH(QByteArray, progression);
        Options options = image(1024, 256);
        options.tlm = tlm;
        options.plt = plt;
        options.progression = progression.constData();
        const Bytes file = jp2maker::make(options);

        const Distant distant(file);
        const ReadResult overview = distant.readAll(4);
        QCOMPARE(overview.planes[0].bytes, nearCells(file, {0, 0, 1024, 1024}, 4));
        // A table leads to all tiles at once; without one each of the 16 has to be visited.
        const int most = (tlm ? 0 : 16) + 6;
        QVERIFY2(distant.source->requests <= most, qPrintable(QString::number(distant.source->requests)));
        QVERIFY2(distant.source->fetched < file.size() / 8, qPrintable(QString::number(distant.source->fetched)));
    }

    void overviewOfOneTileWithoutPacketLengths()
    {
        Options options = image(2048, 0);
        options.progression = "RPCL";
        options.precincts = {{128, 128}};
        const Bytes file = jp2maker::make(options);
        const Distant distant(file);
        QCOMPARE(distant.readAll(4).planes[0].bytes, nearCells(file, {0, 0, 2048, 2048}, 4));
        QVERIFY2(distant.source->fetched < file.size() / 4, qPrintable(QString::number(distant.source->fetched)));
        // The walk goes on where it paused.
        const IntRect window{900, 700, 1200, 1000};
        QCOMPARE(distant.read(window, 2).planes[0].bytes, nearCells(file, window, 2));
        QCOMPARE(distant.read(window, 0).planes[0].bytes, nearCells(file, window, 0));
    }

    void windowOfOneTile()
    {
        Options options = image(2048, 0);
        options.progression = "RPCL";
        options.precincts = {{128, 128}};
        options.plt = true;
        const Bytes file = jp2maker::make(options);
        const Distant distant(file);
        const IntRect window{900, 700, 1000, 800};
        QCOMPARE(distant.read(window, 0).planes[0].bytes, nearCells(file, window, 0));
        QVERIFY2(distant.source->fetched < file.size() / 8, qPrintable(QString::number(distant.source->fetched)));
        QVERIFY2(distant.source->requests <= 6, qPrintable(QString::number(distant.source->requests)));
    }

    /// One packet for each resolution, far larger than what is looked at.
    void windowWithoutPrecincts()
    {
        Options options = image(2048, 0);
        options.plt = true;
        const Bytes file = jp2maker::make(options);
        const Distant distant(file);
        const IntRect window{900, 700, 1000, 800};
        QCOMPARE(distant.read(window, 0).planes[0].bytes, nearCells(file, window, 0));
        QVERIFY2(distant.source->fetched < file.size() / 8, qPrintable(QString::number(distant.source->fetched)));
    }

    void walksNoFurtherThanItMust()
    {
        const Bytes file = jp2maker::make(image(1024, 128));
        const Distant distant(file);
        const IntRect window{10, 10, 100, 100};
        QCOMPARE(distant.read(window, 0).planes[0].bytes, nearCells(file, window, 0));
        QVERIFY2(distant.source->fetched < file.size() / 16, qPrintable(QString::number(distant.source->fetched)));
    }

    void remembersTheWalk()
    {
        Options options = image(1024, 128);
        options.plt = true;
        const Bytes file = jp2maker::make(options);
        DistantFile::Knowledge knowledge;
        const IntRect last{1000, 1000, 1024, 1024};
        const Bytes cells = nearCells(file, last, 0);
        const Distant first(file, &knowledge), second(file, &knowledge);
        QCOMPARE(first.read(last, 0).planes[0].bytes, cells);
        QVERIFY(first.source->requests >= 64);
        QCOMPARE(second.read(last, 0).planes[0].bytes, cells);
        QVERIFY2(second.source->requests <= 6, qPrintable(QString::number(second.source->requests)));
        // Half of it is a beginning, rubbish is none.
        Bytes &known = knowledge.begin()->second;
        known.resize(known.size() / 2);
        QCOMPARE(Distant(file, &knowledge).read(last, 0).planes[0].bytes, cells);
        known.assign(known.size(), 0xFF);
        QCOMPARE(Distant(file, &knowledge).read(last, 0).planes[0].bytes, cells);
    }
};

QTEST_GUILESS_MAIN(TestDistantReads)
#include "tst_distantreads.moc"
