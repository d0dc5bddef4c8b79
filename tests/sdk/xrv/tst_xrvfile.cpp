#include "data/boxbuilder.h"
#include "data/files.h"
#include "data/syntheticimage.h"
#include "data/views.h"
#include "sdk/statistics/figures.h"

#include "xrv/xrvboxes.h"

#include <xrv60/plkinit.h>

#include <QtTest>

using namespace xrv;

/// What a file tells of its image beside the cells.
class TestXrvFile : public QObject
{
    Q_OBJECT

private slots:
    void information_data();
    void information();
    void informationOfPlainFile();
    void statisticsAreThoseOfTheCells_data();
    void statisticsAreThoseOfTheCells();
    void opacityAndColours();

private:
    std::string write(SyntheticImage &image, const WriteOptions &options, const std::string &name) const
    {
        if (const PLK::CError error = writeImage(image, options, folder.path(name)))
            qFatal("%s", error.GetErrorMessage());
        return folder.path(name);
    }
    FileFolder folder;
};

void TestXrvFile::information_data()
{
    QTest::addColumn<bool>("isXrv");
    QTest::newRow("XRV") << true;
    QTest::newRow("GeoJP2") << false;
}

void TestXrvFile::information()
{
    QFETCH(bool, isXrv);
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
    rpc.fLineScale = rpc.fSampleScale = rpc.fLatitudeScale = rpc.fLongitudeScale = rpc.fHeightScale = 1.5;
    rpc.fSampleDenominator[19] = -2.5e-7;
    described.rpc = rpc;
    described.xmls = {"<first/>", "<второй/>"};
    WriteOptions options;
    options.kind = isXrv ? FileKind::Xrv : FileKind::GeoJp2;
    options.isLossless = false;
    options.rate = 12;
    options.tileSize = 128;
    options.compressionDate = "2024-06-01T12:00:00Z";

    PLK::CView view;
    const std::string name = isXrv ? "Ünïcode 情報.xrv" : "a.jp2";
    QVERIFY(view.Open(write(image, options, name).c_str(), false, false).IsSuccess());
    QCOMPARE(view.GetFileType(), isXrv ? PLK_FILE_XRV : PLK_FILE_JPEG2000);
    QVERIFY(boxbuilder::findBox(folder.read(name), "pidx").length > 0);
    const PLKFileInfo &info = *view.GetFileInfo();
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
    QCOMPARE(info.pBands[3].szDesc, "Band #4");

    PLKRPCData *readRpc = nullptr;
    QVERIFY(view.GetRPCData(&readRpc).IsSuccess());
    QCOMPARE(readRpc->fHeightScale, 1.5);
    QCOMPARE(readRpc->fSampleDenominator[19], -2.5e-7);
    PLKFreeRPCData(readRpc);
    QStringList xmls;
    for (const PLKXMLBox *box = view.GetXMLBox(nullptr); box; box = view.GetXMLBox(box)) {
        QByteArray text(int(box->nContentLength), '\0');
        QVERIFY(view.GetStream()->Seek(box->nContentOffset) &&
                view.GetStream()->Read(text.data(), std::uint64_t(text.size())));
        xmls.append(QString::fromUtf8(text));
    }
    QCOMPARE(xmls.mid(xmls.size() - 2), QStringList({QStringLiteral("<first/>"), QStringLiteral("<второй/>")}));

    const std::uint32_t blockSize = isXrv ? 128 : 0;
    QCOMPARE(view.MetadataXRV().Blocksize(), std::make_pair(blockSize, blockSize));
    if (isXrv) {
        QCOMPARE(int(info.nFormatVersion), 1);
        QCOMPARE(int(info.nCompressionRate), 12);
        QCOMPARE(info.szCompressionDate, "2024-06-01T12:00:00Z");
        QCOMPARE(info.pBands[1].szDesc, "Near infrared");
        const PLKFileMetaData &read = *info.pFileMetaData;
        const wchar_t *const fields[] = {read.sClassification,
                                         read.sAcquisitionDate,
                                         read.sAcquisitionSensorName,
                                         read.sCompressionSoftware,
                                         read.sAuthor,
                                         read.sCopyright,
                                         read.sCompany,
                                         read.sEmail,
                                         read.sAddress};
        for (std::size_t i = 0; i < kXrvTexts - 1; ++i)
            QCOMPARE(QString::fromWCharArray(fields[i]), QString::fromUtf8(texts[i]));
        QVERIFY(!read.sTelephone);
    }
    view.Close(true);
    QCOMPARE(view.MetadataXRV().Blocksize(), std::make_pair(0u, 0u));
}

void TestXrvFile::informationOfPlainFile()
{
    SyntheticImage image(100, 100, 1, 8);
    image.image.place.origin = GeoReference::Origin::XrvInfo;
    image.image.place.transform = {10.0, 0.3, 0.4, 20.0, 0.4, -0.3}; // turned
    PLK::CView view;
    QVERIFY(view.Open(write(image, {}, "plain.xrv").c_str(), false, false).IsSuccess());
    const PLKFileInfo &info = *view.GetFileInfo();
    QVERIFY(!info.pFileMetaData);
    QCOMPARE(int(info.nCompressionRate), 1);
    QCOMPARE(info.szDatum, "RAW");
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
    PLK::CView view;
    QVERIFY(view.Open(write(image, options, "counted.xrv").c_str(), false, false).IsSuccess());
    PLKFileStatistics *statistics = nullptr;
    QVERIFY(view.GetClientStatistics(&statistics).IsSuccess());
    QCOMPARE(statistics->nBands, 2u);
    for (int band = 0; band < 2; ++band) {
        const auto cells = image.cells(band);
        const Figures figures(cells);
        const PLKBandStatistics &read = statistics->pBandStats[band];
        QCOMPARE(read.fMode, float(figures.mode));
        QCOMPARE(read.fMin, float(figures.min));
        QCOMPARE(read.fMax, float(figures.max));
        QCOMPARE(read.fMean, float(figures.mean));
        QCOMPARE(read.fMedian, float(figures.median));
        QCOMPARE(read.fStandardDev, float(figures.deviation));
        const std::int32_t first = bits > 8 ? std::int32_t(figures.min) : isSigned ? -128 : 0;
        std::vector<std::uint64_t> counts(bits > 8 ? std::size_t(figures.max - figures.min) + 1 : 256, 0);
        for (const std::int32_t cell : cells)
            ++counts[std::size_t(cell - first)];
        QVERIFY(std::equal(counts.begin(), counts.end(), read.pHistogram, read.pHistogram + read.nHistBucketCount));
    }
    PLKFreeStatistics(statistics);
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
    PLK::CView view;
    QVERIFY(view.Open(write(image, {}, "opacity.xrv").c_str(), false, false).IsSuccess());
    QCOMPARE(view.GetFileInfo()->eColorSpace, PLK_COLORSPACE_SRGB);
    std::vector<std::uint32_t> bands;
    QVERIFY(view.GetDefaultRGBABandList(&bands).IsSuccess());
    QVERIFY(bands == std::vector<std::uint32_t>({0, 1, 2, 3}));
    QVERIFY(readCells(view, 3) == image.cells(3));
    // Three bands of 8 bits need not be colours.
    SyntheticImage bandsOnly(50, 50, 3, 8);
    QVERIFY(view.Open(write(bandsOnly, {}, "bands.xrv").c_str(), false, false).IsSuccess());
    QCOMPARE(view.GetFileInfo()->eColorSpace, PLK_COLORSPACE_MULTIBAND);
}

QTEST_GUILESS_MAIN(TestXrvFile)
#include "tst_xrvfile.moc"
