#include "data/syntheticimage.h"
#include "sdk/decode/peerdecoder.h"

#include "encode/stepchooser.h"
#include "encode/tileencoder.h"
#include "io/memorysource.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtEndian>
#include <QtTest>

#include <algorithm>
#include <cmath>
#include <set>

using namespace xrv;

/// Images written with high-throughput blocks (ISO/IEC 15444-15) and read by the SDK, and by OpenJPEG alone.
class TestHighThroughput : public QObject
{
    Q_OBJECT

private slots:
    void losslessIsIdentical_data();
    void losslessIsIdentical();
    void mixedDepths();
    void windowsThroughTheIndex();
    void headersSayWhatItIs();
    void lossyKeepsItsRate_data();
    void lossyKeepsItsRate();
    void samplesStandForTheImage_data();
    void samplesStandForTheImage();
    void whatCannotBeWritten();
    void failuresWhileSampling();

private:
    std::string path(const char *name) const
    {
        return QDir(folder.path()).filePath(QString::fromLatin1(name)).toStdString();
    }
    void write(SyntheticImage *image, WriteOptions options, const char *name)
    {
        options.isHighThroughput = true;
        const PLK::CError error = writeImage(*image, options, path(name));
        QVERIFY2(error.IsSuccess(), error.GetErrorMessage());
    }
    QByteArray readFile(const char *name) const
    {
        QFile file(QString::fromStdString(path(name)));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    QTemporaryDir folder;
};

namespace {

/// The last box of a file, which the codestream is.
std::vector<std::uint8_t> codestreamOf(const QByteArray &file)
{
    for (int at = 0; at + 8 <= file.size(); at += int(qFromBigEndian<quint32>(file.constData() + at)))
        if (file.mid(at + 4, 4) == "jp2c")
            return {file.begin() + at + 8, file.end()};
    return {};
}

/// Cells as PeerComponent has them, for comparing.
bool agrees(PLK::CView *view, const std::vector<std::uint8_t> &stream, int bands, int tolerance)
{
    const auto peer = decodeWithPeer(stream, 0, 0);
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

void TestHighThroughput::losslessIsIdentical_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addColumn<int>("bands");
    QTest::addColumn<int>("bits");
    QTest::addColumn<bool>("isSigned");
    QTest::addColumn<int>("tileSize");
    QTest::newRow("8 bits, one block") << 300 << 200 << 1 << 8 << false << 0;
    QTest::newRow("8 bits, colours, odd size") << 533 << 411 << 3 << 8 << false << 128;
    QTest::newRow("16 bits, four bands") << 257 << 301 << 4 << 16 << false << 256;
    QTest::newRow("16 bits, colours") << 257 << 301 << 3 << 16 << false << 256;
    QTest::newRow("16 bits signed") << 300 << 129 << 1 << 16 << true << 64;
    QTest::newRow("8 bits signed, colours") << 129 << 65 << 3 << 8 << true << 64;
    QTest::newRow("12 bits, eight bands") << 190 << 211 << 8 << 12 << false << 128;
    QTest::newRow("1 bit") << 130 << 70 << 1 << 1 << false << 64;
    QTest::newRow("one cell") << 1 << 1 << 3 << 8 << false << 0;
    QTest::newRow("one column") << 1 << 777 << 1 << 8 << false << 256;
    QTest::newRow("one row") << 777 << 1 << 1 << 8 << false << 256;
    QTest::newRow("block of one cell at the corner") << 129 << 129 << 3 << 8 << false << 64;
    QTest::newRow("several precincts, clipped") << 1500 << 1100 << 1 << 8 << false << 0;
}

void TestHighThroughput::losslessIsIdentical()
{
    QFETCH(int, width);
    QFETCH(int, height);
    QFETCH(int, bands);
    QFETCH(int, bits);
    QFETCH(bool, isSigned);
    QFETCH(int, tileSize);
    SyntheticImage image(width, height, bands, bits, isSigned);
    if (bands == 3)
        image.image.colourSpace = PLK_COLORSPACE_SRGB;
    WriteOptions options;
    options.tileSize = std::uint32_t(tileSize);
    write(&image, options, "lossless.xrv");

    PLK::CView view;
    const PLK::CError error = view.Open(path("lossless.xrv").c_str(), false, false);
    QVERIFY2(error.IsSuccess(), error.GetErrorMessage());
    QVERIFY(view.MetadataJp2().IsHighThroughput());
    for (int band = 0; band < bands; ++band)
        QVERIFY(readCells(&view, band) == image.cells(band));
    QVERIFY(agrees(&view, codestreamOf(readFile("lossless.xrv")), bands, 0));
}

void TestHighThroughput::mixedDepths()
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
    options.tileSize = 128;
    write(&image, options, "mixed.xrv");
    PLK::CView view;
    QVERIFY(view.Open(path("mixed.xrv").c_str(), false, false).IsSuccess());
    for (int band = 0; band < 3; ++band)
        QVERIFY(readCells(&view, band) == image.cells(band));
    QVERIFY(agrees(&view, codestreamOf(readFile("mixed.xrv")), 3, 0));

    // Each band is quantized by its own range.
    options.isLossless = false;
    options.rate = 4;
    write(&image, options, "mixed.xrv");
    QVERIFY(view.Open(path("mixed.xrv").c_str(), false, false).IsSuccess());
    QVERIFY(agrees(&view, codestreamOf(readFile("mixed.xrv")), 3, 1));
    for (int band = 0; band < 3; ++band) {
        const auto cells = readCells(&view, band), expected = image.cells(band);
        double largest = 0.0;
        for (std::size_t i = 0; i < cells.size(); ++i)
            largest = std::max(largest, double(std::abs(cells[i] - expected[i])));
        QVERIFY(largest > 0.0 || band == 1);
        QVERIFY2(std::ldexp(largest, -image.image.bands[std::size_t(band)].bits) < 0.04,
                 qPrintable(QString::number(largest)));
    }
}

/// The same cells through the packet index, and without it through the marker segments.
void TestHighThroughput::windowsThroughTheIndex()
{
    SyntheticImage image(1500, 1300, 3, 8);
    image.image.colourSpace = PLK_COLORSPACE_SRGB;
    WriteOptions options;
    options.tileSize = 512;
    write(&image, options, "indexed.xrv");
    QByteArray file = readFile("indexed.xrv");
    const int index = file.indexOf("pidx", file.indexOf("stat")); // behind the table of contents
    QVERIFY(index > 0);
    file.replace(index, 4, "free");
    QFile other(QString::fromStdString(path("unindexed.xrv")));
    QVERIFY(other.open(QIODevice::WriteOnly) && other.write(file) == file.size());
    other.close();

    for (const char *name : {"indexed.xrv", "unindexed.xrv"}) {
        PLK::CView view;
        QVERIFY(view.Open(path(name).c_str(), false, false).IsSuccess());
        const auto window = readCells(&view, 1, 400, 450, 650, 540);
        QCOMPARE(int(window.size()), 250 * 90);
        for (int i = 0; i < int(window.size()); ++i)
            QCOMPARE(window[std::size_t(i)], image.cell(1, 400 + i % 250, 450 + i / 250));
    }
}

/// What an encoder of the whole image would have written: A.5.1, ISO/IEC 15444-15 A.3 and D.
void TestHighThroughput::headersSayWhatItIs()
{
    SyntheticImage image(300, 300, 1, 8);
    WriteOptions options;
    options.kind = FileKind::GeoJp2;
    options.tileSize = 128;
    write(&image, options, "a.jph");
    const QByteArray file = readFile("a.jph");
    QCOMPARE(file.mid(12, 20), QByteArray("\0\0\0\x14"
                                          "ftypjph \0\0\0\0jph ",
                                          20));
    const std::vector<std::uint8_t> stream = codestreamOf(file);
    QVERIFY(stream.size() > 100);
    QCOMPARE(int(stream[6]) << 8 | stream[7], 0x4000); // Rsiz: see CAP
    const std::vector<std::uint8_t> cap{0xff, 0x50, 0, 8, 0, 2, 0, 0};
    QVERIFY(std::equal(cap.begin(), cap.end(), stream.begin() + 2 + 2 + 38 + 3)); // behind SIZ
    // No other one, in tile-part headers, and all tile-parts tell the lengths of their packets.
    MemorySource source({stream.begin(), stream.end()});
    MainHeader header;
    QVERIFY(readMainHeader(source, {0, stream.size()}, &header).IsSuccess());
    QCOMPARE(int(header.tlm.size()), 1);
    const QByteArray rest(reinterpret_cast<const char *>(stream.data()) + header.length,
                          int(stream.size() - header.length));
    int parts = 0;
    for (int at = 0; at + 12 < rest.size(); ++parts) {
        QCOMPARE(rest.mid(at, 2), QByteArray("\xff\x90"));
        QCOMPARE(rest.mid(at + 12, 2), QByteArray("\xff\x58"));
        const int segment = qFromBigEndian<quint16>(rest.constData() + at + 14);
        QCOMPARE(rest.mid(at + 14 + segment, 2), QByteArray("\xff\x93"));
        at += int(qFromBigEndian<quint32>(rest.constData() + at + 6));
    }
    QCOMPARE(parts, 9 * 4);
}

void TestHighThroughput::lossyKeepsItsRate_data()
{
    QTest::addColumn<int>("bits");
    QTest::addColumn<bool>("isSigned");
    QTest::addColumn<double>("rate");
    QTest::addColumn<int>("largestError"); ///< in 256ths of the range
    QTest::newRow("8 bits, 4:1") << 8 << false << 4.0 << 12;
    QTest::newRow("8 bits, 10:1") << 8 << false << 10.0 << 20;
    QTest::newRow("8 bits, 50:1") << 8 << false << 50.0 << 40;
    QTest::newRow("8 bits signed, 10:1") << 8 << true << 10.0 << 20;
    QTest::newRow("12 bits, 10:1") << 12 << false << 10.0 << 20;
    QTest::newRow("16 bits, 5:1") << 16 << false << 5.0 << 10;
    QTest::newRow("16 bits signed, 20:1") << 16 << true << 20.0 << 20;
}

void TestHighThroughput::lossyKeepsItsRate()
{
    QFETCH(int, bits);
    QFETCH(bool, isSigned);
    QFETCH(double, rate);
    QFETCH(int, largestError);
    SyntheticImage image(700, 600, 3, bits, isSigned);
    image.image.colourSpace = PLK_COLORSPACE_SRGB;
    WriteOptions options;
    options.isLossless = false;
    options.rate = rate;
    options.tileSize = 256;
    double last = 0.0;
    bool isRising = true;
    options.progress = [&](double share) {
        isRising = isRising && share >= last && share <= 1.0;
        last = share;
    };
    write(&image, options, "lossy.xrv");
    QVERIFY(isRising);
    QVERIFY(last > 0.99);

    const QByteArray file = readFile("lossy.xrv");
    const std::vector<std::uint8_t> stream = codestreamOf(file);
    const double reached = 700.0 * 600.0 * 3.0 * (bits > 8 ? 2.0 : 1.0) / double(stream.size());
    QVERIFY2(std::abs(reached / rate - 1.0) < 0.03, qPrintable(QString::number(reached)));
    QVERIFY(file.contains("pidx")); // one quantization for all tiles

    PLK::CView view;
    QVERIFY(view.Open(path("lossy.xrv").c_str(), false, false).IsSuccess());
    QCOMPARE(int(view.GetFileInfo()->nCompressionRate), int(rate));
    const double unit = std::ldexp(1.0, bits - 8);
    double largest = 0.0;
    for (int band = 0; band < 3; ++band) {
        const auto cells = readCells(&view, band), expected = image.cells(band);
        QCOMPARE(cells.size(), expected.size());
        for (std::size_t i = 0; i < cells.size(); ++i)
            largest = std::max(largest, std::abs(cells[i] - expected[i]) / unit);
    }
    QVERIFY2(largest > 0.0 && largest <= largestError, qPrintable(QString::number(largest)));
    QVERIFY(agrees(&view, stream, 3, 1));
}

void TestHighThroughput::samplesStandForTheImage_data()
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

void TestHighThroughput::samplesStandForTheImage()
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
        QVERIFY(piece.x0 >= 0 && piece.y0 >= 0 && piece.x1 <= width && piece.y1 <= height && piece.width() > 0);
        QVERIFY(places.empty() || *places.rbegin() < std::make_pair(piece.y0, piece.x0));
        places.insert({piece.y0, piece.x0});
        cells += double(piece.width() * piece.height());
    }
    QVERIFY(cells <= mostKilobytes * 1024.0 && cells > mostKilobytes * 1024.0 * 0.6);

    constexpr double kBytesPerCell = 0.2;
    const CancelFlag cancel;
    double step = 0.0;
    QVERIFY(sample.read(image, cancel, [](double) {}).IsSuccess());
    StepChooser chooser(sample, 2, cancel, [](double) {});
    QVERIFY(chooser.run(kBytesPerCell, 1.0 / 2048, &step).IsSuccess());

    coding.step = step;
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

void TestHighThroughput::whatCannotBeWritten()
{
    SyntheticImage image(10, 10, 1, 8);
    WriteOptions options;
    options.isHighThroughput = true;
    options.layers = 2;
    const PLK::CError error = writeImage(image, options, path("no.xrv"));
    QCOMPARE(error.GetErrorNumber(), int(PLK_ERR_INVALID_ARGUMENT));
    QVERIFY(QByteArray(error.GetErrorMessage()).contains("quality layer"));
    QVERIFY(readFile("no.xrv").isEmpty());
}

namespace {

/// Fails at a row.
class FailingImage : public SyntheticImage
{
public:
    using SyntheticImage::SyntheticImage;
    PLK::CError read(const IntRect &rect, const std::vector<std::int32_t *> &planes) override
    {
        if (rect.y1 > 400)
            return {PLK_ERR_TRUNCATED, "It ends here."};
        return SyntheticImage::read(rect, planes);
    }
};

} // namespace

void TestHighThroughput::failuresWhileSampling()
{
    QTemporaryDir own;
    const QDir inside(own.path());
    WriteOptions options;
    options.isHighThroughput = true;
    options.isLossless = false;
    options.tileSize = 128;
    FailingImage failing(600, 600, 1, 8);
    const std::string target = inside.filePath(QStringLiteral("no.xrv")).toStdString();
    QCOMPARE(writeImage(failing, options, target).GetErrorNumber(), int(PLK_ERR_TRUNCATED));
    QVERIFY(inside.entryList(QDir::Files | QDir::Hidden).isEmpty());

    SyntheticImage cancelled(600, 600, 1, 8);
    options.progress = [&options](double share) {
        if (share > 0.16 && share < 0.29)
            options.cancel.raise(); // while steps are tried
    };
    QCOMPARE(writeImage(cancelled, options, target).GetErrorNumber(), int(PLK_ERR_CANCELLED));
    QVERIFY(inside.entryList(QDir::Files | QDir::Hidden).isEmpty());
}

QTEST_GUILESS_MAIN(TestHighThroughput)
#include "tst_highthroughput.moc"
