#include "data/boxbuilder.h"
#include "data/files.h"
#include "data/syntheticimage.h"
#include "data/views.h"
#include "sdk/decode/peerdecoder.h"

#include "encode/stepchooser.h"
#include "encode/tileencoder.h"

#include <QtEndian>
#include <QtTest>

#include <algorithm>
#include <cmath>
#include <set>

using namespace xrv;

/// Images that the writer has written, of both kinds of code-blocks (ISO/IEC 15444-1 and 15444-15), read by the SDK,
/// and their codestreams by OpenJPEG alone.
class TestImageWriter : public QObject
{
    Q_OBJECT

private slots:
    void losslessIsIdentical_data();
    void losslessIsIdentical();
    void mixedDepths();
    void lossyKeepsItsBounds_data();
    void lossyKeepsItsBounds();
    void windowsThroughTheIndex_data() { kinds(); }
    void windowsThroughTheIndex();
    void overviewIsOneRangeAtTheStart_data() { kinds(); }
    void overviewIsOneRangeAtTheStart();
    void headersOfHighThroughput();
    void samplesStandForTheImage_data();
    void samplesStandForTheImage();
    void whatCannotBeWritten_data();
    void whatCannotBeWritten();
    void nothingIsLeftBehind_data();
    void nothingIsLeftBehind();

private:
    static void kinds();
    std::string write(SyntheticImage &image, const WriteOptions &options, const std::string &name) const
    {
        if (const PLK::CError error = writeImage(image, options, folder.path(name)))
            qFatal("%s", error.GetErrorMessage());
        return folder.path(name);
    }
    FileFolder folder;
};

namespace {

QByteArray codestreamOf(const QByteArray &file)
{
    const boxbuilder::BoxAt box = boxbuilder::findBox(file, "jp2c");
    return file.mid(int(box.start) + 8, int(box.length) - 8);
}

/// The SDK's cells and those of OpenJPEG.
bool agrees(PLK::CView &view, const QByteArray &stream, int bands, int tolerance)
{
    const auto peer = decodeWithPeer({stream.begin(), stream.end()}, 0, 0);
    if (int(peer.size()) != bands)
        return false;
    for (int band = 0; band < bands; ++band) {
        const auto own = readCells(view, band);
        const auto &other = peer[std::size_t(band)].cells;
        const auto isNear = [tolerance](int a, int b) { return std::abs(a - b) <= tolerance; };
        if (!std::equal(own.begin(), own.end(), other.begin(), other.end(), isNear))
            return false;
    }
    return true;
}

/// Flat on the left, rough on the right: pieces differ much.
std::int32_t unevenCell(int, int x, int y)
{
    const std::uint32_t hash = (std::uint32_t(x) * 374761393u + std::uint32_t(y) * 668265263u) * 2246822519u;
    const int amplitude = 2 + x / 16;
    return std::clamp(128 + (x + y) % 64 / 2 - 16 + int(hash >> 16) % amplitude - amplitude / 2, 0, 255);
}

} // namespace

void TestImageWriter::kinds()
{
    QTest::addColumn<bool>("isHighThroughput");
    QTest::newRow("arithmetic") << false;
    QTest::newRow("high throughput") << true;
}

void TestImageWriter::losslessIsIdentical_data()
{
    QTest::addColumn<bool>("isHighThroughput");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("bands");
    QTest::addColumn<int>("bits");
    QTest::addColumn<bool>("isSigned");
    QTest::addColumn<int>("tileSize");
    QTest::addColumn<int>("layers");
    const auto row = [](const char *name, const QSize &size, int bands, int bits, bool isSigned, int tileSize) {
        for (const bool fast : {false, true})
            QTest::addRow("%s%s", name, fast ? ", high throughput" : "")
                << fast << size << bands << bits << isSigned << tileSize << 1;
    };
    row("8 bits, one block", {300, 200}, 1, 8, false, 0);
    row("8 bits, colours, odd size", {533, 411}, 3, 8, false, 128);
    row("16 bits, four bands", {257, 301}, 4, 16, false, 256);
    row("16 bits, colours", {257, 301}, 3, 16, false, 256);
    row("16 bits signed", {300, 129}, 1, 16, true, 64);
    row("8 bits signed, colours", {129, 65}, 3, 8, true, 64);
    row("12 bits, eight bands", {190, 211}, 8, 12, false, 128);
    row("1 bit", {130, 70}, 1, 1, false, 64);
    row("one cell", {1, 1}, 3, 8, false, 0);
    row("one column", {1, 777}, 1, 8, false, 256);
    row("one row", {777, 1}, 1, 8, false, 256);
    row("block of one cell at the corner", {129, 129}, 3, 8, false, 64);
    row("several precincts, clipped", {1500, 1100}, 1, 8, false, 0);
    QTest::newRow("quality layers") << false << QSize(300, 300) << 3 << 8 << false << 128 << 4;
}

void TestImageWriter::losslessIsIdentical()
{
    QFETCH(bool, isHighThroughput);
    QFETCH(QSize, size);
    QFETCH(int, bands);
    QFETCH(int, bits);
    QFETCH(bool, isSigned);
    QFETCH(int, tileSize);
    QFETCH(int, layers);
    SyntheticImage image(size.width(), size.height(), bands, bits, isSigned);
    if (bands == 3)
        image.image.colourSpace = PLK_COLORSPACE_SRGB;
    WriteOptions options;
    options.isHighThroughput = isHighThroughput;
    options.tileSize = std::uint32_t(tileSize);
    options.layers = layers;

    PLK::CView view;
    const PLK::CError error = view.Open(write(image, options, "lossless.xrv").c_str(), false, false);
    QVERIFY2(error.IsSuccess(), error.GetErrorMessage());
    QCOMPARE(view.GetFileType(), PLK_FILE_XRV);
    QCOMPARE(view.MetadataJp2().IsHighThroughput(), isHighThroughput);
    QCOMPARE(view.MetadataJp2().Layers(), layers);
    for (int band = 0; band < bands; ++band) {
        QCOMPARE(int(view.GetFileInfo()->pBands[band].nBits), bits);
        QCOMPARE(view.GetFileInfo()->pBands[band].bSigned, isSigned);
        QVERIFY(readCells(view, band) == image.cells(band));
    }
    QVERIFY(agrees(view, codestreamOf(folder.read("lossless.xrv")), bands, 0));
}

void TestImageWriter::mixedDepths()
{
    SyntheticImage image(211, 190, 3, 16);
    image.image.bands[1] = {5, false, "shallow"};
    image.image.bands[2] = {12, true, "signed"};
    const auto deep = image.cell;
    image.cell = [deep](int band, int x, int y) {
        const std::int32_t cell = deep(band, x, y);
        return band == 0 ? cell : band == 1 ? cell >> 11 : (cell >> 4) - 2048;
    };
    WriteOptions options;
    options.isHighThroughput = true;
    options.tileSize = 128;
    PLK::CView view;
    QVERIFY(view.Open(write(image, options, "mixed.xrv").c_str(), false, false).IsSuccess());
    for (int band = 0; band < 3; ++band)
        QVERIFY(readCells(view, band) == image.cells(band));
    QVERIFY(agrees(view, codestreamOf(folder.read("mixed.xrv")), 3, 0));

    // Each band is quantized by its own range.
    options.isLossless = false;
    options.rate = 4;
    QVERIFY(view.Open(write(image, options, "mixed.xrv").c_str(), false, false).IsSuccess());
    QVERIFY(agrees(view, codestreamOf(folder.read("mixed.xrv")), 3, 1));
    for (int band = 0; band < 3; ++band) {
        const auto cells = readCells(view, band), expected = image.cells(band);
        double largest = 0.0;
        for (std::size_t i = 0; i < cells.size(); ++i)
            largest = std::max(largest, double(std::abs(cells[i] - expected[i])));
        QVERIFY(largest > 0.0 || band == 1);
        QVERIFY2(std::ldexp(largest, -image.image.bands[std::size_t(band)].bits) < 0.04,
                 qPrintable(QString::number(largest)));
    }
}

void TestImageWriter::lossyKeepsItsBounds_data()
{
    QTest::addColumn<bool>("isHighThroughput");
    QTest::addColumn<int>("bits");
    QTest::addColumn<bool>("isSigned");
    QTest::addColumn<double>("rate");
    QTest::addColumn<int>("largestError"); ///< in 256ths of the range
    QTest::addColumn<double>("meanError");
    QTest::newRow("8 bits, 4:1") << false << 8 << false << 4.0 << 12 << 1.5;
    QTest::newRow("8 bits, 50:1") << false << 8 << false << 50.0 << 40 << 5.0;
    QTest::newRow("12 bits, 10:1") << false << 12 << false << 10.0 << 20 << 2.5;
    QTest::newRow("16 bits, 20:1") << false << 16 << false << 20.0 << 20 << 2.5;
    QTest::newRow("high throughput, 8 bits, 4:1") << true << 8 << false << 4.0 << 12 << 1.5;
    QTest::newRow("high throughput, 8 bits, 50:1") << true << 8 << false << 50.0 << 40 << 5.0;
    QTest::newRow("high throughput, 8 bits signed, 10:1") << true << 8 << true << 10.0 << 20 << 2.5;
    QTest::newRow("high throughput, 12 bits, 10:1") << true << 12 << false << 10.0 << 20 << 2.5;
    QTest::newRow("high throughput, 16 bits, 5:1") << true << 16 << false << 5.0 << 10 << 1.5;
    QTest::newRow("high throughput, 16 bits signed, 20:1") << true << 16 << true << 20.0 << 20 << 2.5;
}

void TestImageWriter::lossyKeepsItsBounds()
{
    QFETCH(bool, isHighThroughput);
    QFETCH(int, bits);
    QFETCH(bool, isSigned);
    QFETCH(double, rate);
    QFETCH(int, largestError);
    QFETCH(double, meanError);
    SyntheticImage image(700, 600, 3, bits, isSigned);
    image.image.colourSpace = PLK_COLORSPACE_SRGB;
    WriteOptions options;
    options.isHighThroughput = isHighThroughput;
    options.isLossless = false;
    options.rate = rate;
    options.tileSize = 256;
    double last = 0.0;
    bool isRising = true;
    options.progress = [&](double share) {
        isRising = isRising && share >= last && share <= 1.0;
        last = share;
    };
    PLK::CView view;
    QVERIFY(view.Open(write(image, options, "lossy.xrv").c_str(), false, false).IsSuccess());
    QVERIFY(isRising && last > 0.99);

    const double unit = std::ldexp(1.0, bits - 8);
    double sum = 0.0, largest = 0.0;
    for (int band = 0; band < 3; ++band) {
        const auto cells = readCells(view, band), expected = image.cells(band);
        QCOMPARE(cells.size(), expected.size());
        for (std::size_t i = 0; i < cells.size(); ++i) {
            const double error = std::abs(cells[i] - expected[i]) / unit;
            largest = std::max(largest, error);
            sum += error;
        }
    }
    const double mean = sum / (3 * 700 * 600);
    QVERIFY2(largest > 0.0 && largest <= largestError && mean <= meanError,
             qPrintable(QStringLiteral("largest %1, mean %2").arg(largest).arg(mean)));

    const QByteArray file = folder.read("lossy.xrv"), stream = codestreamOf(file);
    const double uncompressed = 700.0 * 600.0 * 3.0 * (bits > 8 ? 2.0 : 1.0), reached = uncompressed / stream.size();
    QVERIFY2(reached > rate * (isHighThroughput ? 0.97 : 0.93), qPrintable(QString::number(reached)));
    if (isHighThroughput) {
        QVERIFY2(reached < rate * 1.03, qPrintable(QString::number(reached)));
        QVERIFY(file.contains("pidx")); // one quantization for all tiles
        QVERIFY(agrees(view, stream, 3, 1));
    }
    QCOMPARE(int(view.GetFileInfo()->nCompressionRate), int(rate));
    QVERIFY(std::abs(view.GetFileInfo()->fActualCompressionRate - uncompressed / file.size()) < 0.001);
}

/// The same cells through the packet index, and without it through the marker segments.
void TestImageWriter::windowsThroughTheIndex()
{
    SyntheticImage image(1500, 1300, 3, 8);
    image.image.colourSpace = PLK_COLORSPACE_SRGB;
    WriteOptions options;
    QFETCH(bool, isHighThroughput);
    options.isHighThroughput = isHighThroughput;
    options.tileSize = 512;
    write(image, options, "indexed.xrv");
    QByteArray file = folder.read("indexed.xrv");
    file.replace(int(boxbuilder::findBox(file, "pidx").start) + 4, 4, "free");
    folder.write("unindexed.xrv", file);

    std::vector<std::uint32_t> pictures[2];
    for (const bool isIndexed : {true, false}) {
        PLK::CView view;
        const std::string name = folder.path(isIndexed ? "indexed.xrv" : "unindexed.xrv");
        QVERIFY(view.Open(name.c_str(), false, false).IsSuccess());
        const auto window = readCells(view, 1, 400, 450, 650, 540);
        QCOMPARE(int(window.size()), 250 * 90);
        for (int i = 0; i < int(window.size()); ++i)
            QCOMPARE(window[std::size_t(i)], image.cell(1, 400 + i % 250, 450 + i / 250));
        pictures[isIndexed] = readPicture(view, {300, 260, 0, 0, 1500, -1300}, {0, 1, 2});
    }
    QVERIFY(!pictures[0].empty() && pictures[0] == pictures[1]);
}

/// Tile-parts in the order of the codestream: all of a resolution before the next, tiles in order, lengths as in TLM,
/// and those of their packets in each.
void TestImageWriter::overviewIsOneRangeAtTheStart()
{
    SyntheticImage image(700, 500, 1, 8);
    WriteOptions options;
    QFETCH(bool, isHighThroughput);
    options.isHighThroughput = isHighThroughput;
    options.tileSize = 256;
    write(image, options, "ordered.xrv");
    const QByteArray file = folder.read("ordered.xrv");
    const boxbuilder::BoxAt box = boxbuilder::findBox(file, "jp2c");
    QCOMPARE(int(box.start + box.length), file.size()); // it is the last one
    const QByteArray stream = codestreamOf(file);
    const auto word = [&stream](int place) { return int(qFromBigEndian<quint16>(stream.constData() + place)); };
    int at = 2, lengthsListed = 0;
    for (; word(at) != 0xff90; at += 2 + word(at + 2))
        if (word(at) == 0xff55)
            lengthsListed = (word(at + 2) - 4) / 6;
    QCOMPARE(lengthsListed, 6 * 5);
    for (int part = 0; part < 6 * 5; ++part) { // six tiles, five resolutions of at least 16 cells
        QCOMPARE(word(at), 0xff90);
        QCOMPARE(word(at + 4), part % 6);
        QCOMPARE(word(at + 10), part / 6 << 8 | 5);
        QCOMPARE(word(at + 12), 0xff58);
        QCOMPARE(word(at + 14 + word(at + 14)), 0xff93);
        at += int(qFromBigEndian<quint32>(stream.constData() + at + 6));
    }
    QCOMPARE(word(at), 0xffd9);
    QCOMPARE(at + 2, stream.size());
}

/// ISO/IEC 15444-15 A.2, A.3 and D.
void TestImageWriter::headersOfHighThroughput()
{
    SyntheticImage image(300, 300, 1, 8);
    WriteOptions options;
    options.isHighThroughput = true;
    options.kind = FileKind::GeoJp2;
    write(image, options, "a.jph");
    const QByteArray file = folder.read("a.jph"), stream = codestreamOf(file);
    QCOMPARE(file.mid(12, 20), QByteArray("\0\0\0\x14"
                                          "ftypjph \0\0\0\0jph ",
                                          20));
    QCOMPARE(stream.mid(6, 2), QByteArray("\x40\0", 2));                              // Rsiz: see CAP
    QCOMPARE(stream.mid(2 + 2 + 38 + 3, 8), QByteArray("\xff\x50\0\x08\0\2\0\0", 8)); // behind SIZ
}

void TestImageWriter::samplesStandForTheImage_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addColumn<int>("mostKilobytes");
    QTest::addColumn<double>("tolerance");
    QTest::newRow("all of it") << 1000 << 700 << 1000 << 0.02;
    QTest::newRow("pieces") << 2100 << 1900 << 1000 << 0.08;
    QTest::newRow("few small pieces") << 2100 << 1900 << 400 << 0.15;
    QTest::newRow("long and narrow") << 300 << 9000 << 1000 << 0.08;
}

void TestImageWriter::samplesStandForTheImage()
{
    QFETCH(int, width);
    QFETCH(int, height);
    QFETCH(int, mostKilobytes);
    QFETCH(double, tolerance);
    SyntheticImage image(width, height, 1, 8);
    image.cell = unevenCell;
    TileCoding coding;
    coding.bands = image.image.bands;
    coding.isLossless = false;
    coding.isHighThroughput = true;
    coding.tileSize = 512;
    ImageSample sample(image.image, coding, std::uint64_t(mostKilobytes) << 10);

    // Within memory, within the image, in the order in which sources are read.
    double cells = 0.0;
    std::set<std::pair<std::int64_t, std::int64_t>> places;
    for (const IntRect &piece : sample.rects()) {
        QVERIFY((IntRect{0, 0, width, height}.contains(piece)) && !piece.isEmpty());
        QVERIFY(places.empty() || *places.rbegin() < std::make_pair(piece.y0, piece.x0));
        places.insert({piece.y0, piece.x0});
        cells += double(piece.width() * piece.height());
    }
    QVERIFY(cells <= mostKilobytes * 1024.0 && cells > mostKilobytes * 1024.0 * 0.6);

    constexpr double kBytesPerCell = 0.2;
    const CancelFlag cancel;
    QVERIFY(sample.read(image, cancel, [](double) {}).IsSuccess());
    StepChooser chooser(sample, 2, cancel, [](double) {});
    QVERIFY(chooser.run(kBytesPerCell, 1.0 / 2048, &coding.step).IsSuccess());
    double bytes = 0.0;
    for (int y = 0; y < height; y += 512) {
        for (int x = 0; x < width; x += 512) {
            const IntRect rect = IntRect{x, y, x + 512, y + 512}.intersected({0, 0, width, height});
            const auto encoder = TileEncoder::make(coding, rect);
            QVERIFY(image.read(rect, encoder->planes()).IsSuccess());
            EncodedTile tile;
            QVERIFY(encoder->encode(&tile).IsSuccess());
            for (const EncodedTile::Part &part : tile.parts)
                bytes += double(part.packets.size());
        }
    }
    const double reached = bytes / (double(width) * height);
    QVERIFY2(std::abs(reached / kBytesPerCell - 1.0) <= tolerance, qPrintable(QString::number(reached)));
}

void TestImageWriter::whatCannotBeWritten_data()
{
    QTest::addColumn<int>("side");
    QTest::addColumn<int>("bits");
    QTest::addColumn<int>("tileSize");
    QTest::addColumn<int>("layers"); ///< of high-throughput blocks
    QTest::addColumn<int>("code");
    QTest::newRow("17 bits") << 10 << 17 << 64 << 1 << int(PLK_ERR_UNSUPPORTED);
    QTest::newRow("2^25 x 2^25 cells") << (1 << 25) << 8 << 64 << 1 << int(PLK_ERR_UNSUPPORTED);
    QTest::newRow("odd tile size") << 10 << 8 << 100 << 1 << int(PLK_ERR_INVALID_ARGUMENT);
    QTest::newRow("two layers") << 10 << 8 << 64 << 2 << int(PLK_ERR_INVALID_ARGUMENT);
}

void TestImageWriter::whatCannotBeWritten()
{
    QFETCH(int, side);
    QFETCH(int, bits);
    QFETCH(int, tileSize);
    QFETCH(int, layers);
    SyntheticImage image(side, side, 1, bits);
    WriteOptions options;
    options.tileSize = std::uint32_t(tileSize);
    options.isHighThroughput = layers > 1;
    options.layers = layers;
    QTEST(writeImage(image, options, folder.path("no.xrv")).GetErrorNumber(), "code");
    QVERIFY(!folder.entries().contains(QStringLiteral("no.xrv")));
    SyntheticImage good(10, 10, 1, 8);
    QCOMPARE(writeImage(good, {}, folder.path("missing/no.xrv")).GetErrorNumber(), int(PLK_ERR_NO_ACCESS));
}

void TestImageWriter::nothingIsLeftBehind_data()
{
    QTest::addColumn<bool>("isSampling");
    QTest::addColumn<bool>("isCancelled"); ///< else the source fails
    QTest::newRow("cancelled while blocks are written") << false << true;
    QTest::newRow("cancelled while steps are tried") << true << true;
    QTest::newRow("the source ends while it is sampled") << true << false;
}

void TestImageWriter::nothingIsLeftBehind()
{
    class Failing : public SyntheticImage
    {
    public:
        using SyntheticImage::SyntheticImage;
        PLK::CError read(const IntRect &rect, const std::vector<std::int32_t *> &planes) override
        {
            if (isFailing && rect.y1 > 400)
                return {PLK_ERR_TRUNCATED, "It ends here."};
            return SyntheticImage::read(rect, planes);
        }
        bool isFailing = false;
    };
    QFETCH(bool, isSampling);
    QFETCH(bool, isCancelled);
    const FileFolder own;
    const std::string target = own.write("kept.xrv", QByteArray("old"));
    Failing image(600, 600, 1, 8);
    image.isFailing = !isCancelled;
    WriteOptions options;
    options.tileSize = 128;
    options.isHighThroughput = isSampling;
    options.isLossless = !isSampling;
    options.progress = [&](double share) {
        if (isCancelled && share > 0.16 && share < 0.5)
            options.cancel.raise();
    };
    QCOMPARE(writeImage(image, options, target).GetErrorNumber(),
             int(isCancelled ? PLK_ERR_CANCELLED : PLK_ERR_TRUNCATED));
    QCOMPARE(own.entries(), QStringList({QStringLiteral("kept.xrv")}));
    QCOMPARE(own.read("kept.xrv"), QByteArray("old"));

    image.isFailing = false;
    options.progress = nullptr;
    options.cancel = CancelFlag();
    QVERIFY(writeImage(image, options, target).IsSuccess());
    QVERIFY(own.read("kept.xrv").size() > 1000);
    QCOMPARE(own.entries().size(), 1);
}

QTEST_GUILESS_MAIN(TestImageWriter)
#include "tst_imagewriter.moc"
