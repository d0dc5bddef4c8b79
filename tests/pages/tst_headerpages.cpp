#include "pages/fileinfotexts.h"
#include "pages/xrvjp2klayerfileinfo.h"
#include "pages/xrvjp2klayerjp2fileinfo.h"
#include "pagetest.h"

#include <QLineEdit>
#include <QtTest>

using namespace PageTest;
using Korvane::XRVJP2kLayer;

/// The pages of the file information and of the JPEG 2000 header.
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

QTEST_MAIN(TestHeaderPages)
#include "tst_headerpages.moc"
