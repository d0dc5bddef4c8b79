#include "data/syntheticimage.h"
#include "sdk/decode/peerdecoder.h"

#include "base/utf8.h"
#include "xrv/xrvboxes.h"

#include <xrv60/plkinit.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <cmath>
#include <map>

using namespace xrv;

/// Images written by the writer and read by the SDK; the codestream by OpenJPEG alone, too.
class TestXrvFile : public QObject
{
    Q_OBJECT

private slots:
    void losslessIsIdentical_data();
    void losslessIsIdentical();
    void lossyStaysWithinItsBounds_data();
    void lossyStaysWithinItsBounds();
    void windowsAndLevelsThroughTheIndex();
    void fileInformation();
    void fileInformationOfPlainFile();
    void statisticsAreThoseOfTheCells_data();
    void statisticsAreThoseOfTheCells();
    void overviewIsOneRangeAtTheStart();
    void opacityAndColours();
    void geoJp2CarriesTheSame();
    void whatCannotBeWritten();
    void nothingIsLeftBehind();

private:
    std::string path(const QString &name) const { return QDir(folder.path()).filePath(name).toStdString(); }
    void write(SyntheticImage *image, const WriteOptions &options, const QString &name)
    {
        const PLK::CError error = writeImage(*image, options, path(name));
        QVERIFY2(error.IsSuccess(), error.GetErrorMessage());
    }
    QTemporaryDir folder;
};

namespace {

/// The bytes of the box \a type and those before it.
struct FoundBox
{
    QByteArray content;
    qint64 start = -1;
};

FoundBox findBox(const QByteArray &file, const char *type)
{
    for (qint64 at = 0; at + 8 <= file.size();) {
        const auto length = qFromBigEndian<quint32>(file.constData() + at);
        if (file.mid(int(at) + 4, 4) == type)
            return {file.mid(int(at) + 8, int(length) - 8), at};
        at += length;
    }
    return {};
}

QByteArray readFile(const std::string &path)
{
    QFile file(QString::fromStdString(path));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

struct Tally
{
    double mode, least, largest, mean, median, deviation;
};

Tally tallyOf(std::vector<std::int32_t> cells)
{
    std::sort(cells.begin(), cells.end());
    std::map<std::int32_t, int> counts;
    double sum = 0.0, squares = 0.0;
    for (const std::int32_t cell : cells) {
        ++counts[cell];
        sum += cell;
    }
    const double count = double(cells.size()), mean = sum / count;
    for (const std::int32_t cell : cells)
        squares += (cell - mean) * (cell - mean);
    const auto mode = std::max_element(counts.begin(), counts.end(),
                                       [](const auto &a, const auto &b) { return a.second < b.second; });
    const double median = (cells[(cells.size() - 1) / 2] + cells[cells.size() / 2]) / 2.0;
    return {double(mode->first), double(cells.front()), double(cells.back()), mean, median, std::sqrt(squares / count)};
}

} // namespace

void TestXrvFile::losslessIsIdentical_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addColumn<int>("bands");
    QTest::addColumn<int>("bits");
    QTest::addColumn<bool>("isSigned");
    QTest::addColumn<int>("tileSize");
    QTest::addColumn<int>("layers");
    QTest::newRow("8 bits, one block") << 300 << 200 << 1 << 8 << false << 0 << 1;
    QTest::newRow("8 bits, three bands, odd size") << 533 << 411 << 3 << 8 << false << 128 << 1;
    QTest::newRow("16 bits, four bands") << 257 << 301 << 4 << 16 << false << 256 << 1;
    QTest::newRow("16 bits signed") << 300 << 129 << 1 << 16 << true << 64 << 1;
    QTest::newRow("8 bits signed, three bands") << 129 << 65 << 3 << 8 << true << 64 << 1;
    QTest::newRow("12 bits, eight bands") << 190 << 211 << 8 << 12 << false << 128 << 1;
    QTest::newRow("1 bit") << 130 << 70 << 1 << 1 << false << 64 << 1;
    QTest::newRow("one cell") << 1 << 1 << 3 << 8 << false << 0 << 1;
    QTest::newRow("one column") << 1 << 777 << 1 << 8 << false << 256 << 1;
    QTest::newRow("block of one cell at the corner") << 129 << 129 << 3 << 8 << false << 64 << 1;
    QTest::newRow("quality layers") << 300 << 300 << 3 << 8 << false << 128 << 4;
}

void TestXrvFile::losslessIsIdentical()
{
    QFETCH(int, width);
    QFETCH(int, height);
    QFETCH(int, bands);
    QFETCH(int, bits);
    QFETCH(bool, isSigned);
    QFETCH(int, tileSize);
    QFETCH(int, layers);
    SyntheticImage image(width, height, bands, bits, isSigned);
    if (bands == 3)
        image.image.colourSpace = PLK_COLORSPACE_SRGB;
    WriteOptions options;
    options.tileSize = std::uint32_t(tileSize);
    options.layers = layers;
    write(&image, options, QStringLiteral("lossless.xrv"));

    PLK::CView view;
    const PLK::CError error = view.Open(path(QStringLiteral("lossless.xrv")).c_str(), false, false);
    QVERIFY2(error.IsSuccess(), error.GetErrorMessage());
    QCOMPARE(view.GetFileType(), PLK_FILE_XRV);
    const PLKFileInfo &info = *view.GetFileInfo();
    QCOMPARE(int(info.nSizeX), width);
    QCOMPARE(int(info.nBands), bands);
    QCOMPARE(view.MetadataJp2().Layers(), layers);
    for (int band = 0; band < bands; ++band) {
        QCOMPARE(int(info.pBands[band].nBits), bits);
        QCOMPARE(info.pBands[band].bSigned, isSigned);
        QVERIFY(readCells(&view, band) == image.cells(band));
    }

    const QByteArray stream = findBox(readFile(path(QStringLiteral("lossless.xrv"))), "jp2c").content;
    const auto peer = decodeWithPeer({stream.begin(), stream.end()}, 0, 0);
    QCOMPARE(int(peer.size()), bands);
    for (int band = 0; band < bands; ++band)
        QVERIFY(peer[std::size_t(band)].cells == image.cells(band));
}

void TestXrvFile::lossyStaysWithinItsBounds_data()
{
    QTest::addColumn<int>("bits");
    QTest::addColumn<double>("rate");
    QTest::addColumn<int>("largestError"); ///< in 256ths of the range
    QTest::addColumn<double>("meanError");
    QTest::newRow("8 bits, 4:1") << 8 << 4.0 << 12 << 1.5;
    QTest::newRow("8 bits, 10:1") << 8 << 10.0 << 20 << 2.5;
    QTest::newRow("8 bits, 50:1") << 8 << 50.0 << 40 << 5.0;
    QTest::newRow("12 bits, 10:1") << 12 << 10.0 << 20 << 2.5;
    QTest::newRow("16 bits, 20:1") << 16 << 20.0 << 20 << 2.5;
}

void TestXrvFile::lossyStaysWithinItsBounds()
{
    QFETCH(int, bits);
    QFETCH(double, rate);
    QFETCH(int, largestError);
    QFETCH(double, meanError);
    SyntheticImage image(700, 600, 3, bits);
    image.image.colourSpace = PLK_COLORSPACE_SRGB;
    WriteOptions options;
    options.isLossless = false;
    options.rate = rate;
    options.tileSize = 256;
    write(&image, options, QStringLiteral("lossy.xrv"));

    PLK::CView view;
    QVERIFY(view.Open(path(QStringLiteral("lossy.xrv")).c_str(), false, false).IsSuccess());
    const double step = std::ldexp(1.0, bits - 8);
    double sum = 0.0, largest = 0.0, count = 0.0;
    for (int band = 0; band < 3; ++band) {
        const auto cells = readCells(&view, band), expected = image.cells(band);
        QCOMPARE(cells.size(), expected.size());
        for (std::size_t i = 0; i < cells.size(); ++i) {
            const double error = std::abs(cells[i] - expected[i]) / step;
            largest = std::max(largest, error);
            sum += error;
            ++count;
        }
    }
    QVERIFY2(largest <= largestError && sum / count <= meanError,
             qPrintable(QStringLiteral("largest %1, mean %2").arg(largest).arg(sum / count)));
    QVERIFY(largest > 0.0); // or the rate was not kept

    const QByteArray file = readFile(path(QStringLiteral("lossy.xrv")));
    const double stream = findBox(file, "jp2c").content.size();
    const double uncompressed = 700.0 * 600.0 * 3.0 * (bits > 8 ? 2.0 : 1.0);
    QVERIFY2(uncompressed / stream > rate * 0.93, qPrintable(QString::number(uncompressed / stream)));
    const PLKFileInfo &info = *view.GetFileInfo();
    QCOMPARE(int(info.nCompressionRate), int(rate));
    QVERIFY(std::abs(info.fActualCompressionRate - uncompressed / file.size()) < 0.001);
}

/// The same cells through the packet index, and without it through the marker segments.
void TestXrvFile::windowsAndLevelsThroughTheIndex()
{
    SyntheticImage image(1500, 1300, 3, 8);
    image.image.colourSpace = PLK_COLORSPACE_SRGB;
    WriteOptions options;
    options.tileSize = 512;
    write(&image, options, QStringLiteral("indexed.xrv"));
    QByteArray file = readFile(path(QStringLiteral("indexed.xrv")));
    const qint64 index = findBox(file, "pidx").start;
    QVERIFY(index > 0);
    file.replace(int(index) + 4, 4, "free");
    QFile other(QString::fromStdString(path(QStringLiteral("unindexed.xrv"))));
    QVERIFY(other.open(QIODevice::WriteOnly) && other.write(file) == file.size());
    other.close();

    PLK::CView indexed, plain;
    QVERIFY(indexed.Open(path(QStringLiteral("indexed.xrv")).c_str(), false, false).IsSuccess());
    QVERIFY(plain.Open(path(QStringLiteral("unindexed.xrv")).c_str(), false, false).IsSuccess());
    const auto window = readCells(&indexed, 1, 400, 450, 650, 540);
    QVERIFY(!window.empty() && window == readCells(&plain, 1, 400, 450, 650, 540));
    QCOMPARE(window[5], image.cell(1, 405, 450));
    const int bands[] = {0, 1, 2};
    std::vector<quint32> a(300 * 260), b(a.size());
    for (const auto &[view, line] : {std::make_pair(&indexed, &a), std::make_pair(&plain, &b)}) {
        QVERIFY(view->SetView(3, bands, 300, 260, 0, 0, 1500, -1300).IsSuccess());
        for (int y = 0; y < 260; ++y)
            QCOMPARE(view->ReadLineBGRA(line->data() + y * 300), PLK_READ_SUCCESS);
    }
    QVERIFY(a == b);
}

void TestXrvFile::fileInformation()
{
    SyntheticImage image(300, 200, 4, 12);
    ImageDescription &described = image.image;
    described.colourSpace = PLK_COLORSPACE_MULTIBAND;
    described.bands[1].description = "Near infrared";
    described.place.origin = GeoReference::Origin::XrvInfo;
    described.place.transform = {500000.0, 10.0, 0.0, 5200000.0, 0.0, -10.0};
    described.place.units = PLK_UNITS_METERS;
    described.place.epsg = 32633;
    described.place.datum = "WGS84";
    described.place.projection = "UTM zone 33N";
    const char *const texts[] = {"公開",   "2024-05-17",   "Sensor Ω",    "xrvcompress",    "山田太郎",
                                 "© 2024", "شركة الخرائط", "a@b.example", "東京都千代田区", ""};
    for (std::size_t i = 0; i < kXrvTexts - 1; ++i)
        described.texts[i] = texts[i];
    PLKRPCData rpc{};
    rpc.fErrorBias = 1.5;
    rpc.fSampleDenominator[19] = -2.5e-7;
    described.rpc = rpc;
    described.xmls = {"<first/>", "<второй/>"};
    WriteOptions options;
    options.isLossless = false;
    options.rate = 12;
    options.tileSize = 128;
    options.compressionDate = "2024-06-01T12:00:00Z";
    write(&image, options, QStringLiteral("Ünïcode 情報.xrv"));

    PLK::CView view;
    QVERIFY(view.Open(path(QStringLiteral("Ünïcode 情報.xrv")).c_str(), false, false).IsSuccess());
    const PLKFileInfo &info = *view.GetFileInfo();
    QCOMPARE(int(info.nFormatVersion), 1);
    QCOMPARE(int(info.nCompressionRate), 12);
    QVERIFY(info.fActualCompressionRate > 0.0f);
    QCOMPARE(info.szCompressionDate, "2024-06-01T12:00:00Z");
    QCOMPARE(info.eCellSizeUnits, PLK_UNITS_METERS);
    QCOMPARE(info.fCellIncrementX, 10.0);
    QCOMPARE(info.fCellIncrementY, -10.0);
    QCOMPARE(info.fOriginX, 500000.0);
    QCOMPARE(info.fOriginY, 5200000.0);
    QCOMPARE(info.fCWRotationDegrees, 0.0);
    QCOMPARE(info.szDatum, "WGS84");
    QCOMPARE(info.szProjection, "UTM zone 33N");
    QCOMPARE(view.GetEPSGCode(), 32633);
    QCOMPARE(info.eColorSpace, PLK_COLORSPACE_MULTIBAND);
    QCOMPARE(info.eCellType, PLKCT_UINT16);
    QCOMPARE(info.pBands[1].szDesc, "Near infrared");
    QCOMPARE(info.pBands[3].szDesc, "Band #4");
    QCOMPARE(view.MetadataXRV().Blocksize(), std::make_pair(128u, 128u));

    const PLKFileMetaData *metaData = info.pFileMetaData;
    QVERIFY(metaData);
    const wchar_t *const read[] = {metaData->sClassification,
                                   metaData->sAcquisitionDate,
                                   metaData->sAcquisitionSensorName,
                                   metaData->sCompressionSoftware,
                                   metaData->sAuthor,
                                   metaData->sCopyright,
                                   metaData->sCompany,
                                   metaData->sEmail,
                                   metaData->sAddress};
    for (std::size_t i = 0; i < kXrvTexts - 1; ++i)
        QCOMPARE(QString::fromWCharArray(read[i]), QString::fromUtf8(texts[i]));
    QVERIFY(!metaData->sTelephone);

    PLKRPCData *readRpc = nullptr;
    QVERIFY(view.GetRPCData(&readRpc).IsSuccess());
    QCOMPARE(readRpc->fErrorBias, 1.5);
    QCOMPARE(readRpc->fSampleDenominator[19], -2.5e-7);
    PLKFreeRPCData(readRpc);

    QStringList xmls;
    for (const PLKXMLBox *box = view.GetXMLBox(nullptr); box; box = view.GetXMLBox(box)) {
        QByteArray text(int(box->nContentLength), '\0');
        QVERIFY(view.GetStream()->Seek(box->nContentOffset) &&
                view.GetStream()->Read(text.data(), std::uint64_t(text.size())));
        xmls.append(QString::fromUtf8(text));
    }
    QCOMPARE(xmls, QStringList({QStringLiteral("<first/>"), QStringLiteral("<второй/>")}));

    view.Close(true);
    QCOMPARE(view.MetadataXRV().Blocksize(), std::make_pair(0u, 0u));
}

void TestXrvFile::fileInformationOfPlainFile()
{
    SyntheticImage image(100, 100, 1, 8);
    image.image.place.origin = GeoReference::Origin::XrvInfo;
    image.image.place.transform = {10.0, 0.3, 0.4, 20.0, 0.4, -0.3}; // turned
    write(&image, {}, QStringLiteral("plain.xrv"));
    PLK::CView view;
    QVERIFY(view.Open(path(QStringLiteral("plain.xrv")).c_str(), false, false).IsSuccess());
    const PLKFileInfo &info = *view.GetFileInfo();
    QVERIFY(!info.pFileMetaData);
    QCOMPARE(int(info.nCompressionRate), 1);
    QCOMPARE(info.szDatum, "RAW");
    QCOMPARE(info.eCellType, PLKCT_UINT8);
    QCOMPARE(info.fCellIncrementX, 0.5);
    QCOMPARE(info.fCellIncrementY, -0.5);
    QCOMPARE(info.fCWRotationDegrees, -53.130102354155979); // atan2(0.4, 0.3), anticlockwise
    QVERIFY(QDateTime::fromString(QString::fromLatin1(info.szCompressionDate), Qt::ISODate).isValid());
    PLKRPCData *rpc = nullptr;
    QCOMPARE(view.GetRPCData(&rpc).GetErrorNumber(), int(PLK_ERR_NOT_AVAILABLE));
}

void TestXrvFile::statisticsAreThoseOfTheCells_data()
{
    QTest::addColumn<int>("bits");
    QTest::addColumn<bool>("isSigned");
    QTest::newRow("8 bits") << 8 << false;
    QTest::newRow("8 bits signed") << 8 << true;
    QTest::newRow("12 bits") << 12 << false;
    QTest::newRow("16 bits signed") << 16 << true;
}

/// Of every cell, not of a coarser level, and of the original's where the file is lossy.
void TestXrvFile::statisticsAreThoseOfTheCells()
{
    QFETCH(int, bits);
    QFETCH(bool, isSigned);
    SyntheticImage image(1300, 900, 2, bits, isSigned);
    WriteOptions options;
    options.isLossless = false;
    options.rate = 40;
    write(&image, options, QStringLiteral("counted.xrv"));
    PLK::CView view;
    QVERIFY(view.Open(path(QStringLiteral("counted.xrv")).c_str(), false, false).IsSuccess());
    PLKFileStatistics *statistics = nullptr;
    QVERIFY(view.GetClientStatistics(&statistics).IsSuccess());
    QCOMPARE(statistics->nBands, 2u);
    for (int band = 0; band < 2; ++band) {
        const auto cells = image.cells(band);
        const Tally tally = tallyOf(cells);
        const PLKBandStatistics &read = statistics->pBandStats[band];
        QCOMPARE(read.fMode, float(tally.mode));
        QCOMPARE(read.fMin, float(tally.least));
        QCOMPARE(read.fMax, float(tally.largest));
        QCOMPARE(read.fMean, float(tally.mean));
        QCOMPARE(read.fMedian, float(tally.median));
        QCOMPARE(read.fStandardDev, float(tally.deviation));
        const std::int32_t first = bits > 8 ? std::int32_t(tally.least) : isSigned ? -128 : 0;
        std::vector<std::uint64_t> counts(bits > 8 ? std::size_t(tally.largest - tally.least) + 1 : 256, 0);
        for (const std::int32_t cell : cells)
            ++counts[std::size_t(cell - first)];
        QVERIFY(std::equal(counts.begin(), counts.end(), read.pHistogram, read.pHistogram + read.nHistBucketCount));
    }
    PLKFreeStatistics(statistics);
}

/// Tile-parts in the order of the codestream: all of a resolution before the next, tiles in order, lengths as in TLM.
void TestXrvFile::overviewIsOneRangeAtTheStart()
{
    SyntheticImage image(700, 500, 1, 8);
    WriteOptions options;
    options.tileSize = 256;
    write(&image, options, QStringLiteral("ordered.xrv"));
    const QByteArray file = readFile(path(QStringLiteral("ordered.xrv")));
    const FoundBox box = findBox(file, "jp2c");
    QCOMPARE(box.start + 8 + box.content.size(), qint64(file.size())); // it is the last one
    const char *stream = box.content.constData();
    int at = 2;
    int lengthsListed = 0;
    while (qFromBigEndian<quint16>(stream + at) != 0xff90) {
        const quint16 length = qFromBigEndian<quint16>(stream + at + 2);
        if (qFromBigEndian<quint16>(stream + at) == 0xff55)
            lengthsListed = (length - 4) / 6;
        at += 2 + length;
    }
    QCOMPARE(lengthsListed, 6 * 5);
    for (int part = 0; part < 6 * 5; ++part) { // six tiles, five resolutions of at least 16 cells
        QCOMPARE(qFromBigEndian<quint16>(stream + at), quint16(0xff90));
        QCOMPARE(int(qFromBigEndian<quint16>(stream + at + 4)), part % 6);
        QCOMPARE(int(quint8(stream[at + 10])), part / 6);
        QCOMPARE(int(quint8(stream[at + 11])), 5);
        QCOMPARE(qFromBigEndian<quint16>(stream + at + 12), quint16(0xff58)); // packet lengths
        at += int(qFromBigEndian<quint32>(stream + at + 6));
    }
    QCOMPARE(qFromBigEndian<quint16>(stream + at), quint16(0xffd9));
    QCOMPARE(at + 2, box.content.size());
}

void TestXrvFile::opacityAndColours()
{
    SyntheticImage image(200, 100, 4, 8);
    image.image.colourSpace = PLK_COLORSPACE_SRGB;
    image.image.isLastOpacity = true;
    const char *const names[] = {"Red", "Green", "Blue", "AllOpacity"};
    for (std::size_t i = 0; i < 4; ++i)
        image.image.bands[i].description = names[i];
    image.cell = [](int band, int x, int) { return band == 3 ? (x < 100 ? 0 : 255) : x; };
    write(&image, {}, QStringLiteral("opacity.xrv"));
    PLK::CView view;
    QVERIFY(view.Open(path(QStringLiteral("opacity.xrv")).c_str(), false, false).IsSuccess());
    QCOMPARE(view.GetFileInfo()->eColorSpace, PLK_COLORSPACE_SRGB);
    std::vector<std::uint32_t> bands;
    QVERIFY(view.GetDefaultRGBABandList(&bands).IsSuccess());
    QVERIFY(bands == std::vector<std::uint32_t>({0, 1, 2, 3}));
    QVERIFY(readCells(&view, 3) == image.cells(3));

    // Three bands of 8 bits need not be colours.
    SyntheticImage bandsOnly(50, 50, 3, 8);
    write(&bandsOnly, {}, QStringLiteral("bands.xrv"));
    QVERIFY(view.Open(path(QStringLiteral("bands.xrv")).c_str(), false, false).IsSuccess());
    QCOMPARE(view.GetFileInfo()->eColorSpace, PLK_COLORSPACE_MULTIBAND);
}

void TestXrvFile::geoJp2CarriesTheSame()
{
    SyntheticImage image(300, 200, 3, 8);
    image.image.colourSpace = PLK_COLORSPACE_SRGB;
    image.image.place.origin = GeoReference::Origin::XrvInfo;
    image.image.place.transform = {500000.0, 10.0, 0.0, 5200000.0, 0.0, -10.0};
    image.image.place.units = PLK_UNITS_METERS;
    image.image.place.epsg = 32633;
    image.image.xmls = {"<a/>"};
    PLKRPCData rpc{};
    rpc.fHeightScale = 500.0;
    rpc.fLineScale = rpc.fSampleScale = rpc.fLatitudeScale = rpc.fLongitudeScale = 1.0;
    image.image.rpc = rpc;
    WriteOptions options;
    options.kind = FileKind::GeoJp2;
    options.tileSize = 128;
    write(&image, options, QStringLiteral("file.jp2"));
    PLK::CView view;
    QVERIFY(view.Open(path(QStringLiteral("file.jp2")).c_str(), false, false).IsSuccess());
    QCOMPARE(view.GetFileType(), PLK_FILE_JPEG2000);
    QVERIFY(findBox(readFile(path(QStringLiteral("file.jp2"))), "pidx").start > 0);
    QCOMPARE(view.MetadataXRV().Blocksize(), std::make_pair(0u, 0u));
    QCOMPARE(view.GetEPSGCode(), 32633);
    QCOMPARE(view.GetFileInfo()->fOriginY, 5200000.0);
    QCOMPARE(view.GetFileInfo()->szProjection, "UTM zone 33N");
    QVERIFY(view.GetXMLBox(nullptr));
    PLKRPCData *read = nullptr;
    QVERIFY(view.GetRPCData(&read).IsSuccess());
    QCOMPARE(read->fHeightScale, 500.0);
    PLKFreeRPCData(read);
    QVERIFY(readCells(&view, 2) == image.cells(2));
}

void TestXrvFile::whatCannotBeWritten()
{
    WriteOptions options;
    SyntheticImage deep(10, 10, 1, 17);
    QCOMPARE(writeImage(deep, options, path(QStringLiteral("no.xrv"))).GetErrorNumber(), int(PLK_ERR_UNSUPPORTED));
    SyntheticImage huge(1 << 25, 1 << 25, 1, 8);
    QCOMPARE(writeImage(huge, options, path(QStringLiteral("no.xrv"))).GetErrorNumber(), int(PLK_ERR_UNSUPPORTED));
    SyntheticImage small(10, 10, 1, 8);
    options.tileSize = 100;
    QCOMPARE(writeImage(small, options, path(QStringLiteral("no.xrv"))).GetErrorNumber(),
             int(PLK_ERR_INVALID_ARGUMENT));
    QCOMPARE(writeImage(small, {}, path(QStringLiteral("missing/no.xrv"))).GetErrorNumber(), int(PLK_ERR_NO_ACCESS));
    QVERIFY(!QFile::exists(QString::fromStdString(path(QStringLiteral("no.xrv")))));
}

void TestXrvFile::nothingIsLeftBehind()
{
    QTemporaryDir own;
    const std::string target = QDir(own.path()).filePath(QStringLiteral("kept.xrv")).toStdString();
    QFile old(QString::fromStdString(target));
    QVERIFY(old.open(QIODevice::WriteOnly) && old.write("old") == 3);
    old.close();

    SyntheticImage image(600, 600, 1, 8);
    WriteOptions options;
    options.tileSize = 64;
    const auto cell = image.cell;
    image.cell = [&](int band, int x, int y) {
        if (y == 300)
            options.cancel.raise();
        return cell(band, x, y);
    };
    QCOMPARE(writeImage(image, options, target).GetErrorNumber(), int(PLK_ERR_CANCELLED));
    QCOMPARE(QDir(own.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList({QStringLiteral("kept.xrv")}));
    QCOMPARE(readFile(target), QByteArray("old"));

    image.cell = cell;
    options.cancel = CancelFlag();
    QVERIFY(writeImage(image, options, target).IsSuccess());
    QVERIFY(readFile(target).size() > 1000);
    QCOMPARE(QDir(own.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).size(), 1);
}

QTEST_GUILESS_MAIN(TestXrvFile)
#include "tst_xrvfile.moc"
