#include "tiffmaker.h"
#include "toolsupport.h"

#include "data/files.h"
#include "data/views.h"

#include <QImage>
#include <QJsonArray>
#include <QProcess>
#include <QtTest>

#include <tiff.h>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

using Recipe = TiffRecipe;
Q_DECLARE_METATYPE(Recipe)

/// xrvcompress and xrvinfo from the shell.
class TestXrvCompress : public QObject
{
    Q_OBJECT

private slots:
    void tiffFiles_data();
    void tiffFiles();
    void deepTiffFiles_data();
    void deepTiffFiles();
    void pnmFiles_data();
    void pnmFiles();
    void pngFiles_data();
    void pngFiles();
    void throughJpeg2000AndBack();
    void optionsGoIntoTheFile();
    void highThroughput();
    void sideFiles();
    void wrongUsage_data();
    void wrongUsage();
    void whatCannotBeRead_data();
    void whatCannotBeRead();
    void namesOfTheOutput();
    void interruptedLeavesNothing();
    void infoOfWhatIsNone();

private:
    QString path(const std::string &name) const { return QString::fromStdString(folder.path(name)); }
    /// Compresses a file of the folder, without loss if nothing else is said; the result's path, or nothing.
    std::string compress(const std::string &input, const std::string &options = {}) const
    {
        QFile::remove(path("out.xrv"));
        const std::string output = folder.path("out.xrv");
        const ToolRun run = runTool("xrvcompress", options + ' ' + folder.path(input) + ' ' + output);
        if (run.status != 0)
            qWarning("%s", qPrintable(run.errors));
        return run.status == 0 ? output : std::string();
    }
    FileFolder folder;
};

namespace {

/// What is in a TIFF's palette, see tiffmaker.cpp.
int paletteCell(int colour, int index)
{
    return colour == 0 ? index : colour == 1 ? 255 - index : index / 2;
}

/// All cells of a band of an XRV or JPEG 2000 file; empty on failure.
std::vector<std::int32_t> cellsOf(const std::string &path, int band)
{
    PLK::CView view;
    return view.Open(path.c_str(), false, false) ? std::vector<std::int32_t>() : readCells(view, band);
}

} // namespace

void TestXrvCompress::tiffFiles_data()
{
    QTest::addColumn<Recipe>("recipe");
    const auto row = [](const char *name, const std::function<void(Recipe *)> &change) {
        Recipe recipe;
        change(&recipe);
        QTest::newRow(name) << recipe;
    };
    row("strips", [](Recipe *) {});
    row("strips, 16 bits, LZW", [](Recipe *r) { r->bits = 16, r->compression = COMPRESSION_LZW; });
    row("strips, signed 16 bits", [](Recipe *r) { r->bits = 16, r->isSigned = true; });
    row("strips, signed 8 bits", [](Recipe *r) { r->isSigned = true; });
    row("strips, colours", [](Recipe *r) { r->samples = 3, r->photometric = PHOTOMETRIC_RGB; });
    row("strips, bands apart, LZW",
        [](Recipe *r) { r->samples = 4, r->isPlanar = true, r->compression = COMPRESSION_LZW, r->bits = 16; });
    row("one strip, bands apart", [](Recipe *r) { r->samples = 3, r->isPlanar = true, r->rowsPerStrip = 100000; });
    row("tiles", [](Recipe *r) { r->tileSize = 64; });
    row("tiles that fit no block, colours",
        [](Recipe *r) { r->tileSize = 112, r->samples = 3, r->photometric = PHOTOMETRIC_RGB; });
    row("tiles, bands apart, 16 bits",
        [](Recipe *r) { r->tileSize = 128, r->samples = 8, r->isPlanar = true, r->bits = 16; });
    row("opacity", [](Recipe *r) { r->samples = 4, r->photometric = PHOTOMETRIC_RGB, r->alphaSamples = 1; });
    row("palette", [](Recipe *r) { r->photometric = PHOTOMETRIC_PALETTE; });
    row("palette in tiles", [](Recipe *r) { r->photometric = PHOTOMETRIC_PALETTE, r->tileSize = 64; });
    row("white is zero", [](Recipe *r) { r->photometric = PHOTOMETRIC_MINISWHITE; });
    row("one bit, white is zero", [](Recipe *r) { r->bits = 1, r->photometric = PHOTOMETRIC_MINISWHITE; });
    row("four bits, palette", [](Recipe *r) { r->bits = 4, r->photometric = PHOTOMETRIC_PALETTE, r->width = 301; });
    row("twelve bits, colours in tiles",
        [](Recipe *r) { r->bits = 12, r->samples = 3, r->photometric = PHOTOMETRIC_RGB, r->tileSize = 64; });
    row("tiles left out", [](Recipe *r) { r->tileSize = 64, r->firstColumn = 128; });
    row("BigTIFF with a place", [](Recipe *r) { r->isBigTiff = true, r->isPlaced = true; });
    row("more rows than a row of blocks", [](Recipe *r) { r->width = 90, r->height = 700, r->samples = 2; });
}

void TestXrvCompress::tiffFiles()
{
    QFETCH(Recipe, recipe);
    recipe.cell = [&recipe](int sample, int x, int y) {
        return x < recipe.firstColumn ? 0 : slopeCell(recipe, sample, x, y);
    };
    QVERIFY(makeTiff(path("in.tif"), recipe));
    const std::string output = compress("in.tif", "--block-size 128");
    QVERIFY(!output.empty());

    const bool isPalette = recipe.photometric == PHOTOMETRIC_PALETTE;
    const bool isInverted = recipe.photometric == PHOTOMETRIC_MINISWHITE;
    for (int band = 0; band < (isPalette ? 3 : recipe.samples); ++band) {
        std::vector<std::int32_t> expected;
        for (int y = 0; y < recipe.height; ++y)
            for (int x = 0; x < recipe.width; ++x)
                expected.push_back(isPalette    ? paletteCell(band, recipe.cell(0, x, y))
                                   : isInverted ? (1 << recipe.bits) - 1 - recipe.cell(0, x, y)
                                                : recipe.cell(band, x, y));
        QVERIFY(cellsOf(output, band) == expected);
    }
    const Info info(output);
    const bool isRgb = isPalette || recipe.photometric == PHOTOMETRIC_RGB;
    QCOMPARE(info.text("colourSpace"), QLatin1String(isRgb ? "sRGB" : recipe.samples == 1 ? "greyscale" : "multiband"));
    const QString lastBand = info.at("bands").toArray().last()[QStringLiteral("description")].toString();
    QCOMPARE(lastBand == QLatin1String("AllOpacity"), recipe.alphaSamples > 0);
    QCOMPARE(int(info.number("place/epsg")), recipe.isPlaced ? 32633 : 0);
    QCOMPARE(info.at("place/origin").toArray().first().toDouble(), recipe.isPlaced ? 500000.0 : 0.0);
}

void TestXrvCompress::deepTiffFiles_data()
{
    QTest::addColumn<Recipe>("recipe");
    QTest::addColumn<QString>("cellType");
    QTest::addColumn<QByteArray>("options");
    QTest::addColumn<int>("bands");
    QTest::addColumn<QString>("refusal");
    const auto row = [](const char *name, const char *cellType, int bands, const std::function<void(Recipe *)> &change,
                        const char *options = "", const char *refusal = "") {
        Recipe recipe;
        change(&recipe);
        QTest::newRow(name) << recipe << QString::fromLatin1(cellType) << QByteArray(options) << bands
                            << QString::fromLatin1(refusal);
    };
    const auto floats = [](Recipe *r) { r->bits = 32, r->isFloat = true, r->noData = QStringLiteral("1.125"); };
    const auto doubles = [floats](Recipe *r) { floats(r), r->bits = 64; };
    const auto wedge = [](Recipe *r) { r->bits = 16, r->noData = QStringLiteral("16257"), r->samples = 1; };
    row("UInt32 in tiles", "UInt32", 1, [](Recipe *r) { r->bits = 32, r->tileSize = 64; });
    row("Int32, bands apart", "Int32", 3,
        [](Recipe *r) { r->bits = 32, r->isSigned = r->isPlanar = true, r->samples = 3; });
    row("Float, no data", "Float", 2, floats);
    row("Float, value of no data not believed", "Float", 1, floats, "--nodata none");
    row("Float, another value of no data", "Float", 2, floats, "--nodata=1.25");
    row("Double", "Float", 2, doubles);
    row("16 bits, no data", "UInt16", 2, wedge);
    row("16 bits, no data that no cell can be", "UInt16", 1, wedge, "--nodata -1");
    row(
        "Double that no Float holds", "", 0, [doubles](Recipe *r) { doubles(r), r->offset = 1e-9; }, "",
        "a Float of 32 bits does not hold");
    row(
        "half Floats", "", 0, [](Recipe *r) { r->bits = 16, r->isFloat = true; }, "", "those of 32 and 64 are read");
    row("Float in JPEG 2000", "", 0, floats, "--jp2", "JPEG 2000 files hold whole numbers");
    row("Float with loss", "", 0, floats, "--rate 10", "without loss");
    row(
        "opacity and no data", "", 0, [](Recipe *r) { r->samples = 2, r->alphaSamples = 1; }, "--nodata 0",
        "has an opacity band already");
}

/// Cells from 1 up by 2^-13 as Floats; as whole numbers the same bits.
void TestXrvCompress::deepTiffFiles()
{
    QFETCH(Recipe, recipe);
    QFETCH(QByteArray, options);
    QFETCH(int, bands);
    QFETCH(QString, refusal);
    const bool isShort = recipe.bits == 16;
    recipe.cell = [isShort](int sample, int x, int y) {
        const int bits = 0x3f800000 + (x / 3 * 256 + y + sample) * 1024;
        return isShort ? bits >> 16 : bits;
    };
    QVERIFY(makeTiff(path("in.tif"), recipe));
    const std::string output = folder.path("deep.xrv");
    const ToolRun run = runTool("xrvcompress", options.toStdString() + ' ' + folder.path("in.tif") + ' ' + output);
    if (!refusal.isEmpty()) {
        QVERIFY2(run.status != 0 && run.errors.contains(refusal), qPrintable(run.errors));
        return;
    }
    QCOMPARE(run.errors, QString());
    const Info info(output);
    QTEST(info.text("cellType"), "cellType");
    QCOMPARE(info.at("bands").toArray().size(), bands);
    PLK::CView view;
    QVERIFY(view.Open(output.c_str(), false, false).IsSuccess());
    const PLKCellType type = view.GetFileInfo()->eCellType;
    std::vector<std::int32_t> line(std::size_t(recipe.width));
    for (int band = 0; band < recipe.samples; ++band) {
        QVERIFY(setView(view, wholeOf(view), {band}).IsSuccess());
        for (int y = 0; y < recipe.height; ++y) {
            void *const target = line.data();
            QCOMPARE(view.ReadLineBIL(isShort ? PLKCT_INT32 : type, &target), PLK_READ_SUCCESS);
            for (int x = 0; x < recipe.width; ++x)
                QCOMPARE(line[std::size_t(x)], recipe.cell(band, x, y));
        }
    }
}

void TestXrvCompress::pnmFiles_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<int>("bands");
    QTest::addColumn<int>("bits");
    QTest::addColumn<int>("cell"); ///< of the last band at (1, 1)
    QTest::newRow("grey") << QByteArray("P5\n# a comment\n2 2\n255\n") + QByteArray("\x01\x02\x03\xfe", 4) << 1 << 8
                          << 254;
    QTest::newRow("grey of 16 bits") << QByteArray("P5 2 2 65535\n") + QByteArray("\0\1\0\2\0\3\xff\xfe", 8) << 1 << 16
                                     << 65534;
    QTest::newRow("grey of 12 bits") << QByteArray("P5 2 2 4095\n") + QByteArray("\0\1\0\2\0\3\x0f\xfe", 8) << 1 << 12
                                     << 4094;
    QTest::newRow("colours") << QByteArray("P6\n2\n2\n255\n") + QByteArray(11, 'a') + 'z' << 3 << 8 << int('z');
    QTest::newRow("bands") << QByteArray("P7\nWIDTH 2\nHEIGHT 2\nDEPTH 5\nMAXVAL 255\nENDHDR\n") + QByteArray(19, 'a') +
                                  'y'
                           << 5 << 8 << int('y');
    QTest::newRow("opacity") << QByteArray(
                                    "P7\nWIDTH 2\nHEIGHT 2\nDEPTH 2\nMAXVAL 255\nTUPLTYPE GRAYSCALE_ALPHA\nENDHDR\n") +
                                    QByteArray(7, 'a') + 'x'
                             << 2 << 8 << int('x');
}

void TestXrvCompress::pnmFiles()
{
    QFETCH(QByteArray, file);
    QFETCH(int, bands);
    QFETCH(int, bits);
    QFETCH(int, cell);
    folder.write("in.pnm", file);
    const std::string output = compress("in.pnm");
    QVERIFY(!output.empty());
    const QJsonArray described = Info(output).at("bands").toArray();
    QCOMPARE(described.size(), bands);
    QCOMPARE(described.last()[QStringLiteral("bits")].toInt(), bits);
    QCOMPARE(cellsOf(output, bands - 1).back(), cell);
}

void TestXrvCompress::pngFiles_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<int>("bands");
    QTest::newRow("colours") << int(QImage::Format_RGB888) << 3;
    QTest::newRow("colours and opacity") << int(QImage::Format_RGBA8888) << 4;
    QTest::newRow("grey") << int(QImage::Format_Grayscale8) << 1;
    QTest::newRow("palette with opacity") << int(QImage::Format_Indexed8) << 4;
    QTest::newRow("palette of two colours") << int(QImage::Format_Mono) << 3;
}

void TestXrvCompress::pngFiles()
{
    QFETCH(int, format);
    QFETCH(int, bands);
    QImage image(101, 67, QImage::Format_RGBA8888);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            image.setPixelColor(x, y, QColor(x * 2, y * 3, (x + y) & 255, 100 + x));
    image = image.convertToFormat(QImage::Format(format), Qt::ThresholdDither);
    QVERIFY(image.save(path("in.png")));
    const std::string output = compress("in.png");
    QCOMPARE(Info(output).at("bands").toArray().size(), bands);
    for (int band = 0; band < bands; ++band) {
        const std::vector<std::int32_t> cells = cellsOf(output, band);
        QCOMPARE(int(cells.size()), 101 * 67);
        for (int i = 0; i < int(cells.size()); ++i) {
            const QColor colour = image.pixelColor(i % 101, i / 101);
            const int expected[] = {colour.red(), colour.green(), colour.blue(), colour.alpha()};
            QCOMPARE(cells[std::size_t(i)], expected[band]);
        }
    }
}

void TestXrvCompress::throughJpeg2000AndBack()
{
    Recipe recipe;
    recipe.samples = 3;
    recipe.photometric = PHOTOMETRIC_RGB;
    recipe.isPlaced = true;
    recipe.cell = [&recipe](int sample, int x, int y) { return slopeCell(recipe, sample, x, y); };
    QVERIFY(makeTiff(path("in.tif"), recipe));
    const std::string input = folder.path("in.tif"), xrv = folder.path("a.xrv"), jp2 = folder.path("a.jp2");
    for (const std::string &line :
         {"--jp2 " + input + ' ' + jp2, jp2 + ' ' + xrv, "--jp2 " + xrv + ' ' + folder.path("b.jp2")})
        QCOMPARE(runTool("xrvcompress", line).status, 0);
    QVERIFY(folder.read("a.jp2") == folder.read("b.jp2"));
    const Info info(jp2);
    QCOMPARE(info.text("format"), QLatin1String("JPEG 2000"));
    QCOMPARE(int(info.number("place/epsg")), 32633);
    QCOMPARE(info.text("codestream/progressionOrder"), QLatin1String("RPCL"));
}

namespace {

/// Colours that do not compress to nothing.
QImage busyImage(int width, int height)
{
    QImage image(width, height, QImage::Format_RGB888);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            image.setPixelColor(x, y, QColor((x * x / 50 + y) & 255, (x * y / 100) & 255, (x ^ y) & 255));
    return image;
}

} // namespace

void TestXrvCompress::optionsGoIntoTheFile()
{
    QVERIFY(busyImage(500, 400).save(path("in.png")));
    const std::string first = folder.write("a.xml", QByteArray("<a/>")), second = folder.write("b.xml", QByteArray());
    const std::string output =
        compress("in.png", "--rate 8:1 --block-size=256 --layers 3 --author 山田太郎 --company شركة --xml " + first +
                               " --xml " + second + " --telephone=+81");
    QVERIFY(!output.empty());
    const Info info(output, "--histograms");
    QCOMPARE(info.at("compression/lossless").toBool(), false);
    QCOMPARE(info.number("compression/targetRate"), 8.0);
    QVERIFY(qAbs(info.number("compression/actualRate") - 600000.0 / folder.read("out.xrv").size()) < 0.001);
    QCOMPARE(info.at("compression/blockSize").toArray(), QJsonArray({256, 256}));
    QCOMPARE(int(info.number("codestream/qualityLayers")), 3);
    QCOMPARE(info.text("texts/author"), QStringLiteral("山田太郎"));
    QCOMPARE(info.text("texts/company"), QStringLiteral("شركة"));
    QCOMPARE(info.text("texts/telephone"), QStringLiteral("+81"));
    QVERIFY(info.text("texts/compressionSoftware").startsWith(QLatin1String("xrvcompress ")));
    QCOMPARE(info.at("xmlBoxes").toArray().size(), 2);
    double cells = 0.0;
    for (const QJsonValue &count : info.at("statistics").toArray().first()[QStringLiteral("histogram")].toArray())
        cells += count.toDouble();
    QCOMPARE(cells, 500.0 * 400.0);
    // As text, too.
    QVERIFY(runTool("xrvinfo", output).output.contains(QStringLiteral("  author: 山田太郎\n")));
}

void TestXrvCompress::highThroughput()
{
    const QImage image = busyImage(700, 500);
    QVERIFY(image.save(path("in.png")));
    const std::string line = "--high-throughput --jp2 " + folder.path("in.png") + ' ' + folder.path("fast.jph");
    const ToolRun lossless = runTool("xrvcompress", line);
    QCOMPARE(lossless.status, 0);
    QCOMPARE(lossless.output + lossless.errors, QString());
    QCOMPARE(Info(folder.path("fast.jph")).text("codestream/blockCoding"), QLatin1String("high-throughput"));
    const std::vector<std::int32_t> cells = cellsOf(folder.path("fast.jph"), 1);
    QCOMPARE(int(cells.size()), 700 * 500);
    for (int i = 0; i < int(cells.size()); ++i)
        QCOMPARE(cells[std::size_t(i)], image.pixelColor(i % 700, i / 700).green());

    const ToolRun lossy = runTool("xrvcompress", "--rate=6 " + line);
    QCOMPARE(lossy.output + lossy.errors, QString());
    const double rate = 700.0 * 500.0 * 3.0 / folder.read("fast.jph").size();
    QVERIFY2(qAbs(rate - 6.0) < 0.2, qPrintable(QString::number(rate)));
}

void TestXrvCompress::sideFiles()
{
    Recipe recipe;
    recipe.cell = [&recipe](int sample, int x, int y) { return slopeCell(recipe, sample, x, y); };
    QVERIFY(makeTiff(path("side.tif"), recipe));
    folder.write("side.tfw", QByteArray("2\n0\n0\n-2\n1001\n1999\n"));
    QByteArray rpc("LINE_OFF: 100 pixels\nSAMP_OFF: 150 pixels\nLAT_OFF: 48 degrees\nLONG_OFF: 11 degrees\n"
                   "HEIGHT_OFF: 500 meters\nLINE_SCALE: 100\nSAMP_SCALE: 150\nLAT_SCALE: 0.1\nLONG_SCALE: 0.1\n"
                   "HEIGHT_SCALE: 500\n");
    for (const char *list : {"LINE_NUM", "LINE_DEN", "SAMP_NUM", "SAMP_DEN"})
        for (int i = 1; i <= 20; ++i)
            rpc += QByteArray(list) + "_COEFF_" + QByteArray::number(i) + ": " + QByteArray::number(i * 0.5) + "\n";
    const std::string output = compress("side.tif", "--rpc " + folder.write("coefficients.txt", rpc));
    QVERIFY(!output.empty());
    const Info info(output);
    QCOMPARE(info.at("place/origin").toArray(), QJsonArray({1000, 2000}));
    QCOMPARE(info.at("rpc/sampleDenominator").toArray().last().toDouble(), 10.0);
    QCOMPARE(info.number("rpc/heightOffset"), 500.0);
}

void TestXrvCompress::wrongUsage_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("sentence");
    const auto row = [](const char *name, const char *line, const char *sentence) {
        QTest::newRow(name) << QByteArray(line) << QString::fromUtf8(sentence);
    };
    row("nothing", "", "An input and an output file are needed.");
    row("one file", "a", "An input and an output file are needed.");
    row("three files", "a b c", "Too many files are named.");
    row("unknown option", "--fast a b", "Unknown option: --fast");
    row("no value", "a b --rate", "The option --rate needs a value.");
    row("rate of words", "--rate ten a b", "\"ten\" is no value for the option --rate.");
    row("rate below one", "--rate 0.5 a b", "is no value");
    row("rate that is no number", "--rate nan a b", "is no value");
    row("no data that is no number", "--nodata nothing a b", "is no value");
    row("block size that is no power of two", "--block-size 1000 a b", "is no value");
    row("33 layers", "--layers 33 a b", "is no value");
    row("layers of high-throughput blocks", "--high-throughput --layers 2 a b", "one quality layer only");
    row("both kinds", "--lossless --rate 4 a b", "exclude each other");
}

void TestXrvCompress::wrongUsage()
{
    QFETCH(QByteArray, line);
    QFETCH(QString, sentence);
    const ToolRun run = runTool("xrvcompress", line.toStdString());
    QCOMPARE(run.status, 2);
    QVERIFY2(run.errors.contains(sentence), qPrintable(run.errors));
    QVERIFY(run.errors.contains(QLatin1String("usage:")));
}

void TestXrvCompress::whatCannotBeRead_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("sentence");
    QTest::newRow("text") << QByteArray("hello") << QStringLiteral("is no JPEG 2000, XRV, TIFF, PNM or PNG file");
    QTest::newRow("empty") << QByteArray() << QStringLiteral("is no JPEG 2000");
    QTest::newRow("PNM of text") << QByteArray("P3 1 1 255 1 2 3") << QStringLiteral("only binary");
    QTest::newRow("PNM without a size") << QByteArray("P5 x") << QStringLiteral("header");
    QTest::newRow("PNM that is cut") << QByteArray("P5 100 100 255\nabc") << QStringLiteral("ends before its last row");
    QTest::newRow("PNG that is cut") << QByteArray("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16) << QStringLiteral("is damaged");
    QTest::newRow("TIFF that is cut") << QByteArray("II\x2a\0\x08\0\0\0\x01\0", 10) << QStringLiteral("cannot be read");
    QTest::newRow("JPEG 2000 that is cut") << QByteArray("\xff\x4f\xff\x51\0\x29", 6) << QStringLiteral("\n");
}

void TestXrvCompress::whatCannotBeRead()
{
    QFETCH(QByteArray, file);
    QFETCH(QString, sentence);
    const FileFolder own;
    const ToolRun run = runTool("xrvcompress", own.write("in", file) + ' ' + own.path("out.xrv"));
    QCOMPARE(run.status, 1);
    QVERIFY2(run.errors.startsWith(QLatin1String("xrvcompress: ")) && run.errors.contains(sentence),
             qPrintable(run.errors));
    QCOMPARE(own.entries(), QStringList({QStringLiteral("in")}));
}

void TestXrvCompress::namesOfTheOutput()
{
    const std::string input = folder.write("in.pgm", QByteArray("P5 2 1 255\nab")), longest(255, 'n');
    QCOMPARE(runTool("xrvcompress", input + ' ' + folder.path(longest)).status, 0);
    QVERIFY(!folder.read(longest).isEmpty());
#ifdef Q_OS_UNIX
    const std::string pipe = folder.path("pipe");
    QCOMPARE(mkfifo(pipe.c_str(), 0600), 0);
    const ToolRun run = runTool("xrvcompress", input + ' ' + pipe);
    QVERIFY(run.status != 0);
    QVERIFY2(run.errors.contains(QLatin1String("not an ordinary file")), qPrintable(run.errors));
    QVERIFY2(!QFileInfo(path("pipe")).isFile(), "the pipe was replaced");
#endif
}

void TestXrvCompress::interruptedLeavesNothing()
{
#ifdef Q_OS_WIN
    QSKIP("QProcess::terminate() sends no signal here");
#endif
    Recipe recipe;
    recipe.width = recipe.height = 3000;
    recipe.samples = 3;
    recipe.photometric = PHOTOMETRIC_RGB;
    recipe.cell = [](int sample, int x, int y) { return (x * y + sample * x) >> 3 & 255; };
    const FileFolder own;
    QVERIFY(makeTiff(QString::fromStdString(own.path("in.tif")), recipe));
    QProcess process;
    process.start(QStringLiteral(XRV_TOOL_DIR "/xrvcompress"),
                  words("--block-size=128 " + own.path("in.tif") + ' ' + own.path("out.xrv")));
    QTRY_VERIFY_WITH_TIMEOUT(own.entries().size() > 1, 30000);
    process.terminate();
    QVERIFY(process.waitForFinished(30000));
    QCOMPARE(process.exitCode(), 130);
    QCOMPARE(own.entries(), QStringList({QStringLiteral("in.tif")}));
}

void TestXrvCompress::infoOfWhatIsNone()
{
    const ToolRun run = runTool("xrvinfo", folder.write("none.xrv", QByteArray("nothing")));
    QCOMPARE(run.status, 1);
    QCOMPARE(run.errors, QStringLiteral("xrvinfo: This file is not an XRV image that this library can read.\n"));
    QCOMPARE(runTool("xrvinfo", {}).status, 2);
}

QTEST_GUILESS_MAIN(TestXrvCompress)
#include "tst_xrvcompress.moc"
