#include "distantfile.h"

#include "data/files.h"
#include "data/jp2maker.h"
#include "data/syntheticimage.h"

#include "codestream/mainheader.h"
#include "decode/rasterreader.h"
#include "xrv/xrvstructure.h"

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

/// A file and a reader of it.
struct Opened
{
    Opened(const std::shared_ptr<ByteSource> &source)
    {
        if (const PLK::CError error = RasterReader::open(source, ByteRange{0, source->size()}, &reader))
            qFatal("%s", error.GetErrorMessage());
    }
    Bytes cells(const IntRect &rect, int level) const
    {
        ReadRequest request;
        request.datasetRect = rect;
        request.level = level;
        request.components = {0};
        request.resilient = false;
        ReadResult result;
        if (const PLK::CError error = reader->read(request, &result))
            qFatal("%s", error.GetErrorMessage());
        return result.planes[0].bytes;
    }
    std::unique_ptr<RasterReader> reader;
};

struct Distant
{
    explicit Distant(const Bytes &file, DistantFile::Knowledge *knowledge = nullptr)
        : source(std::make_shared<DistantFile>(file, 1, knowledge))
        , far(source)
        , near(std::make_shared<MemorySource>(file))
    {
    }
    /// Reads the same cells as from a file at hand.
    bool readsRight(const IntRect &rect, int level) const { return far.cells(rect, level) == near.cells(rect, level); }

    std::shared_ptr<DistantFile> source;
    Opened far, near;
};

const IntRect kWindow{900, 700, 1000, 800}, kAll{0, 0, 2048, 2048};

} // namespace

Q_DECLARE_METATYPE(jp2maker::Options)
Q_DECLARE_METATYPE(IntRect)

/// How often and for how many bytes a file that lies far away is asked.
class TestDistantReads : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void costs_data()
    {
        QTest::addColumn<Options>("options");
        QTest::addColumn<IntRect>("rect");
        QTest::addColumn<int>("level");
        QTest::addColumn<int>("mostRequests");
        QTest::addColumn<int>("share"); ///< of the file that is read at most, one in so many
        Options tiled = image(1024, 256);
        const IntRect all{0, 0, 1024, 1024};
        // A table leads to all tiles at once; without one each of the 16 has to be visited.
        tiled.plt = true;
        tiled.progression = "RLCP";
        QTest::newRow("overview of tiles, packet lengths") << tiled << all << 4 << 22 << 8;
        tiled.tlm = true;
        tiled.progression = "LRCP";
        QTest::newRow("overview of tiles, table and packet lengths") << tiled << all << 4 << 6 << 8;
        tiled.plt = false;
        tiled.progression = "RPCL";
        QTest::newRow("overview of tiles, table") << tiled << all << 4 << 6 << 8;
        QTest::newRow("window, walk no further than it must")
            << image(1024, 128) << IntRect{10, 10, 100, 100} << 0 << 1000 << 16;
        Options single = image(2048, 0);
        single.plt = true;
        // One packet for each resolution, far larger than what is looked at.
        QTest::newRow("window of one tile without precincts") << single << kWindow << 0 << 1000 << 8;
        single.progression = "RPCL";
        single.precincts = {{128, 128}};
        QTest::newRow("window of one tile") << single << kWindow << 0 << 6 << 8;
        single.plt = false;
        QTest::newRow("overview of one tile without packet lengths") << single << kAll << 4 << 1000 << 4;
    }
    void costs()
    {
        QFETCH(Options, options);
        QFETCH(IntRect, rect);
        QFETCH(int, level);
        QFETCH(int, mostRequests);
        QFETCH(int, share);
        const Bytes file = jp2maker::make(options);
        const Distant distant(file);
        QVERIFY(distant.readsRight(rect, level));
        QVERIFY2(distant.source->requests <= mostRequests, qPrintable(QString::number(distant.source->requests)));
        QVERIFY2(distant.source->fetched < file.size() / std::size_t(share),
                 qPrintable(QString::number(distant.source->fetched)));
    }

    void walkGoesOnWhereItPaused()
    {
        Options options = image(2048, 0);
        options.progression = "RPCL";
        options.precincts = {{128, 128}};
        const Distant distant(jp2maker::make(options));
        QVERIFY(distant.readsRight(kAll, 4));
        QVERIFY(distant.readsRight(kWindow, 2));
        QVERIFY(distant.readsRight(kWindow, 0));
    }

    void remembersTheWalk()
    {
        Options options = image(1024, 128);
        options.plt = true;
        const Bytes file = jp2maker::make(options);
        DistantFile::Knowledge knowledge;
        const IntRect last{1000, 1000, 1024, 1024};
        const Distant first(file, &knowledge), second(file, &knowledge);
        QVERIFY(first.readsRight(last, 0));
        QVERIFY(first.source->requests >= 64);
        QVERIFY(second.readsRight(last, 0));
        QVERIFY2(second.source->requests <= 6, qPrintable(QString::number(second.source->requests)));
        // Half of it is a beginning, rubbish is none.
        Bytes &known = knowledge.begin()->second;
        known.resize(known.size() / 2);
        QVERIFY(Distant(file, &knowledge).readsRight(last, 0));
        known.assign(known.size(), 0xFF);
        QVERIFY(Distant(file, &knowledge).readsRight(last, 0));
    }

    void xrvFiles_data()
    {
        QTest::addColumn<IntRect>("rect");
        QTest::addColumn<int>("level");
        QTest::newRow("overview") << IntRect{0, 0, 2100, 1900} << 3;
        QTest::newRow("window") << IntRect{900, 700, 1200, 1000} << 0;
    }
    /// Opening takes the start of the file and what its table of contents names, not what lies between; a view one more
    /// request.
    void xrvFiles()
    {
        QFETCH(IntRect, rect);
        QFETCH(int, level);
        constexpr std::uint64_t kPage = 4096;
        static const QByteArray bytes = xrvFile();
        const auto file = std::make_shared<DistantFile>(Bytes(bytes.begin(), bytes.end()), kPage);
        XrvStructure structure;
        QVERIFY(readXrvStructure(*file, &structure, nullptr).IsSuccess());
        std::unique_ptr<RasterReader> reader;
        QVERIFY(!RasterReader::open(file, structure.boxes.codestream, &reader, structure.packetIndex));
        QCOMPARE(file->requests, 2);
        const std::uint64_t opening = file->fetched;
        QVERIFY2(opening < structure.packetIndex.length + 48 * 1024, qPrintable(QString::number(opening)));

        ReadRequest request;
        request.datasetRect = rect;
        request.level = level;
        request.components = {0, 1, 2};
        ReadResult result;
        QVERIFY(reader->read(request, &result).IsSuccess() && !result.damaged);
        QCOMPARE(file->requests, 3);
        // The packets of the two lowest of five resolutions; nine of 72 tiles at the finest resolutions.
        const PacketIndex &index = *reader->mainHeader().packetIndex;
        QCOMPARE(index.parts().size(), std::size_t(5 * 72));
        const auto most = level == 0 ? file->size() / 5 : index.parts()[2 * 72].offset * 5 / 4 + 2 * kPage;
        QVERIFY2(file->fetched - opening < most, qPrintable(QString::number(file->fetched - opening)));
    }

private:
    static QByteArray xrvFile()
    {
        SyntheticImage image(2100, 1900, 3, 8);
        image.image.colourSpace = PLK_COLORSPACE_SRGB;
        image.image.xmls = {std::string(200000, ' '), std::string(50000, ' ')};
        WriteOptions options;
        options.tileSize = 256;
        const FileFolder folder;
        if (const PLK::CError error = writeImage(image, options, folder.path("distant.xrv")))
            qFatal("%s", error.GetErrorMessage());
        return folder.read("distant.xrv");
    }
};

QTEST_GUILESS_MAIN(TestDistantReads)
#include "tst_distantreads.moc"
