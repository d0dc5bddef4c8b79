#include "pages/fileinfotexts.h"
#include "pages/xrvjp2klayerfileinfo.h"
#include "pages/xrvjp2klayerjp2fileinfo.h"
#include "pages/xrvjp2klayerrpcinfo.h"
#include "pagetest.h"

#include <QLineEdit>
#include <QtTest>

using namespace PageTest;
using Korvane::XRVJP2kLayer;

/// The pages of the file information, of the JPEG 2000 header and of the camera model.
class TestHeaderPages : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fileInformation_data();
    void fileInformation();
    void uncompressedBytes_data();
    void uncompressedBytes();
    void texts();
    void header();
    void headerWithoutOptions();
    void longTextsBeginInSight();
    void cameraModel();

private:
    TestFolder folder;
};

void TestHeaderPages::fileInformation_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("plain name") << QStringLiteral("ten.jp2");
    QTest::newRow("name beyond ASCII") << QString::fromUtf8("Übersicht 東京 %1.jp2");
}

void TestHeaderPages::fileInformation()
{
    QFETCH(QString, name);
    jp2maker::FileBytes bytes = jp2maker::make([] {
        jp2maker::Options options = colourImage(1000, 1000);
        options.cell = [](int, int, int) { return 7; };
        return options;
    }());
    constexpr size_t kFileSize = 300000;
    QVERIFY(bytes.size() + 8 < kFileSize);
    bytes = jp2maker::withBox(bytes, "free", jp2maker::FileBytes(kFileSize - bytes.size() - 8));
    const auto layer = openLayer(folder.write(name, bytes));
    XRVJP2kLayerFileInfo page;
    page.setLayer(layer.get());
    QCOMPARE(filledFields(page),
             QStringList({QStringLiteral("actualCompress=10 : 1"), QStringLiteral("compressedSize=292.97 KB"),
                          QStringLiteral("fileFormatVersion=1"), QStringLiteral("gdtDatum=RAW"),
                          QStringLiteral("gdtProjection=RAW"), QStringLiteral("gdtUnits=Invalid"),
                          QStringLiteral("targetCompress=0 : 1"), QStringLiteral("uncompressedSize=2.86 MB"),
                          QStringLiteral("xrvpVersion=Local file")}));
    QCOMPARE(page.findChild<QLineEdit *>(QStringLiteral("blockSize"))->placeholderText(),
             QStringLiteral("Not valid for .jp2 files"));
    QCOMPARE(copiedText(page), QStringLiteral("XRVP Version = Local file\r"
                                              "Format Version = 1\r"
                                              "GDT Datum = RAW\r"
                                              "GDT Projection = RAW\r"
                                              "GDT Units = Invalid\r"
                                              "Compressed Size = 292.97 KB\r"
                                              "Uncompressed Size = 2.86 MB\r"
                                              "Target Compression Rate = 0:1\r"
                                              "Actual Compression Ratio = 10.00:1\r"
                                              "Compression Date = \r"));
}

void TestHeaderPages::uncompressedBytes_data()
{
    QTest::addColumn<int>("cellType");
    QTest::addColumn<int>("bytesPerCell");
    QTest::newRow("UInt8") << int(PLKCT_UINT8) << 1;
    QTest::newRow("Int8") << int(PLKCT_INT8) << 1;
    QTest::newRow("UInt16") << int(PLKCT_UINT16) << 2;
    QTest::newRow("Int32") << int(PLKCT_INT32) << 4;
    QTest::newRow("Float") << int(PLKCT_FLOAT) << 4;
    QTest::newRow("Double") << int(PLKCT_DOUBLE) << 8;
}

void TestHeaderPages::uncompressedBytes()
{
    QFETCH(int, cellType);
    QFETCH(int, bytesPerCell);
    PLKFileInfo info{};
    info.nSizeX = info.nSizeY = 1U << 21; // the product is beyond 32 bits
    info.nBands = 3;
    info.eCellType = static_cast<PLKCellType>(cellType);
    QCOMPARE(FileInfoTexts::uncompressedBytes(info), quint64(bytesPerCell) * 3 << 42);
}

void TestHeaderPages::texts()
{
    QStringList units;
    for (int unit = 0; unit < 5; ++unit)
        units.append(FileInfoTexts::unitsText(static_cast<PLKCellSizeUnits>(unit)));
    QCOMPARE(units.join(QLatin1Char(' ')), QStringLiteral("Invalid Meters Degrees Feet Unknown"));
    QCOMPARE(FileInfoTexts::wideText(nullptr), QString());
    QCOMPARE(FileInfoTexts::wideText(L"\u6771"), QString(QChar(0x6771)));
}

void TestHeaderPages::header()
{
    jp2maker::Options options = colourImage(300, 150);
    options.tileWidth = 128;
    options.tileHeight = 100;
    options.levels = 1;
    options.layerRates = {20, 0};
    options.progression = "RPCL";
    options.precincts = {{64, 32}, {16, 128}};
    options.codeBlockWidth = 32;
    options.codeBlockHeight = 8;
    options.sop = true;
    options.comment = "100 %1 %2\nlines";
    const auto layer = openLayer(folder.makeImage(QStringLiteral("header.jp2"), options));
    XRVJP2kLayerJP2FileInfo page;
    page.setLayer(layer.get());
    struct Row
    {
        const char *field;
        const char *value;
        const char *copied; // what the text for the clipboard makes of it
    };
    const Row rows[] = {
        {"Comments", "100 %1 %2\nlines", "Comments = 100 %1 %2\nlines"},
        {"Profile", "2", "Profile = 2"},
        {"tileDimensions", "3 x 2", "Tiles Dimensions (X,Y) = 3 x 2"},
        {"tileSizes", "128 x 100", "Tile Width = 128\rTile Height = 100"},
        {"precinctSizesX", "16,64", "Precinct Sizes on X axis = 16,64"},
        {"precinctSizesY", "128,32", "Precinct Sizes on Y axis = 128,32"},
        {"codeBlockSize", "32 x 8", "Code Block Dimensions (X,Y) = 32 x 8"},
        {"bitDepth", "8,8,8", "Band Bit Depths = 8,8,8"},
        {"resolutionLevels", "2", "Resolution Levels = 2"},
        {"qualityLayers", "2", "Quality Layers = 2"},
        {"progressionOrder", "RPCL", "Progression Order = RPCL"},
        {"DWTfilter", "5x3 (Reversible)", "Filter = 5x3 (Reversible)"},
        {"useSOP", "true", "SOP Markers = true"},
        {"useEPH", "false", "EPH Markers = false"},
        {"useGML", "false", "GML in JP2 = false"},
    };
    QStringList lines;
    for (const Row &row : rows) {
        QCOMPARE(textOf(page, row.field), QString::fromLatin1(row.value));
        lines.append(QString::fromLatin1(row.copied));
    }
    QCOMPARE(copiedText(page), withReturns(lines));
}

void TestHeaderPages::headerWithoutOptions()
{
    jp2maker::Options options;
    options.width = options.height = 512;
    options.levels = 4;
    options.precincts = {{256, 256}, {256, 256}, {256, 256}, {256, 256}, {256, 256}};
    options.reversible = false;
    options.eph = true;
    options.bareCodestream = true;
    const auto layer = openLayer(folder.makeImage(QStringLiteral("bare.j2k"), options));
    XRVJP2kLayerJP2FileInfo page;
    page.setLayer(layer.get());
    QCOMPARE(textOf(page, "precinctSizesX"), QStringLiteral("256,256,256,256,256"));
    QCOMPARE(textOf(page, "precinctSizesY"), QStringLiteral("256,256,256,256,256"));
    QCOMPARE(textOf(page, "DWTfilter"), QStringLiteral("9x7 (Irreversible)"));
    QCOMPARE(textOf(page, "useSOP"), QStringLiteral("false"));
    QCOMPARE(textOf(page, "useEPH"), QStringLiteral("true"));
}

void TestHeaderPages::longTextsBeginInSight()
{
    jp2maker::Options options;
    options.comment = std::string(3000, 'x');
    const auto layer = openLayer(folder.makeImage(QStringLiteral("long.jp2"), options));
    for (const QString &className : kPageClasses.mid(0, 2)) {
        const auto page = makePage(className);
        setLayer(*page, layer.get());
        for (const QLineEdit *field : page->findChildren<QLineEdit *>())
            QVERIFY2(field->cursorPosition() == 0, qPrintable(field->objectName()));
    }
}

namespace {

/// Coefficient i (from 1) of polynomial p (from 0) is p + i / 100, with a minus where i is even.
double coefficient(int polynomial, int i)
{
    return (i % 2 ? 1 : -1) * (polynomial + i / 100.0);
}

QByteArray rpcFile()
{
    QByteArray text = "ERR_BIAS: 1.5 meters\nERR_RAND: 0.25 meters\nLINE_OFF: 5000 pixels\nSAMP_OFF: 4000.5 pixels\n"
                      "LAT_OFF: 48.123456789 degrees\nLONG_OFF: -11.5 degrees\nHEIGHT_OFF: 500 meters\n"
                      "LINE_SCALE: 5001 pixels\nSAMP_SCALE: 4001 pixels\nLAT_SCALE: 0.0001 degrees\n"
                      "LONG_SCALE: 1e-7 degrees\nHEIGHT_SCALE: 501 meters\n";
    int polynomial = 0;
    for (const char *key : {"LINE_NUM_COEFF", "LINE_DEN_COEFF", "SAMP_NUM_COEFF", "SAMP_DEN_COEFF"}) {
        for (int i = 1; i <= 20; ++i)
            text += QByteArray(key) + '_' + QByteArray::number(i) + ": " +
                    QByteArray::number(coefficient(polynomial, i), 'f', 8) + '\n';
        ++polynomial;
    }
    return text;
}

QString coefficients()
{
    QString text;
    int polynomial = 0;
    for (const char *heading : {"Line Numerator Coefficients:\n", "Line Denominator Coefficients:\n",
                                "Sample Numerator Coefficients:\n", "Sample Denominator Coefficients:\n"}) {
        QStringList numbers;
        for (int i = 1; i <= 20; ++i)
            numbers.append(QString::asprintf("%.6f", coefficient(polynomial, i)));
        text += QLatin1String(heading) + numbers.join(QStringLiteral(", ")) + QStringLiteral("\n ");
        ++polynomial;
    }
    return text;
}

} // namespace

void TestHeaderPages::cameraModel()
{
    folder.writeText(QStringLiteral("image_RPC.TXT"), rpcFile());
    const auto layer = openLayer(folder.makeImage(QStringLiteral("image.jp2"), jp2maker::Options()));
    XRVJP2kLayerRPCInfo page;
    page.setLayer(layer.get());
    const char *const rows[][3] = {{"errorBias", "Error Bias", "1.500000"},
                                   {"errorRandom", "Error Random", "0.250000"},
                                   {"lineOffset", "Line Offset", "5000.000000"},
                                   {"lineScale", "Line Scale", "5001.000000"},
                                   {"latitudeOffset", "Latitude Offset", "48.123457"},
                                   {"latitudeScale", "Latitude Scale", "0.000100"},
                                   {"longitudeOffset", "Longitude Offset", "-11.500000"},
                                   {"longitudeScale", "Longitude Scale", "0.000000"},
                                   {"heightOffset", "Height Offset", "500.000000"},
                                   {"heightScale", "Height Scale", "501.000000"},
                                   {"sampleOffset", "Sample Offset", "4000.500000"},
                                   {"sampleScale", "Sample Scale", "4001.000000"}};
    QString text;
    for (const auto &[field, label, value] : rows) {
        QCOMPARE(textOf(page, field), QString::fromLatin1(value));
        text += QStringLiteral("%1 = %2\r").arg(QLatin1String(label), QLatin1String(value));
    }
    QCOMPARE(textOf(page, "coefficients"), coefficients());
    QCOMPARE(copiedText(page), text + coefficients());
}

QTEST_MAIN(TestHeaderPages)
#include "tst_headerpages.moc"
