#include "data/boxbuilder.h"
#include "data/files.h"
#include "data/syntheticimage.h"
#include "data/views.h"
#include "sdk/decode/peerdecoder.h"
#include "sdk/statistics/figures.h"

#include <xrv60/plkinit.h>

#include <QtEndian>
#include <QtTest>

#include <cmath>
#include <cstring>

using namespace xrv;
using CellFunction = SyntheticImage::CellFunction;
Q_DECLARE_METATYPE(CellFunction)

/// Cells of 32 bits and cells without data, on their way through XRV and GeoJP2 files.
class TestCellTypes : public QObject
{
    Q_OBJECT

private slots:
    void everyBitComesBack_data();
    void everyBitComesBack();
    void hiddenCells_data();
    void hiddenCells();
    void hiddenCellsDoNotShow();
    void integersInJpeg2000();
    void damagedMappings_data();
    void damagedMappings();

private:
    PLK::CError write(SyntheticImage &image, const char *name, WriteOptions options = {}) const
    {
        options.tileSize = 128;
        return writeImage(image, options, folder.path(name));
    }
    FileFolder folder;
};

namespace {

constexpr int kWidth = 300, kHeight = 211;

std::uint32_t noiseBits(int x, int y)
{
    const std::uint32_t h = (std::uint32_t(x) * 374761393u + std::uint32_t(y) * 668265263u) * 2246822519u;
    return (h ^ h >> 15) * 2654435761u;
}

float terrain(int x, int y)
{
    return float(700.0 + 600.0 * std::sin(x * 0.03) * std::cos(y * 0.021) + noiseBits(x, y) % 1000 / 2000.0);
}

/// All that Floats can be, every kind of it by turns.
std::int32_t anyFloat(int, int x, int y)
{
    constexpr std::uint32_t kSpecial[] = {0x7fc00000, 0x7f800001, 0xffc12345, 0x7fffffff, 0x7f800000,
                                          0xff800000, 0x80000000, 0,          1,          0x80000001};
    return std::int32_t(x % 3 ? noiseBits(x, y) : kSpecial[(x + y) % 10]);
}

SyntheticImage imageOf(CellKind kind, const CellFunction &cell, int bands = 1)
{
    SyntheticImage image(kWidth, kHeight, bands, 32, kind != CellKind::Unsigned);
    for (XrvBand &band : image.image.bands)
        band.kind = kind;
    image.cell = cell;
    return image;
}

PLKCellType typeOf(CellKind kind)
{
    return kind == CellKind::Float ? PLKCT_FLOAT : kind == CellKind::Unsigned ? PLKCT_UINT32 : PLKCT_INT32;
}

/// All cells of a band, bit by bit.
std::vector<std::int32_t> bitsOf(PLK::CView &view, int band, PLKCellType type)
{
    const Window window = wholeOf(view);
    std::vector<std::int32_t> cells(std::size_t(window.width) * std::size_t(window.height));
    if (setView(view, window, {band}))
        return {};
    for (int y = 0; y < window.height; ++y) {
        void *const line = cells.data() + std::ptrdiff_t(y) * window.width;
        if (view.ReadLineBIL(type, &line) != PLK_READ_SUCCESS)
            return {};
    }
    return cells;
}

/// The first band's cells by another decoder and what docs/xrv-format.md says, with nothing of the SDK.
std::vector<std::int32_t> cellsByTheBook(const QByteArray &file)
{
    const auto content = [&file](const char *type) {
        const boxbuilder::BoxAt box = boxbuilder::findBox(file, type);
        return file.mid(int(box.start) + 8, int(box.length) - 8);
    };
    const QByteArray mapping = content("cell"), stream = content("jp2c");
    const int bands = qFromBigEndian<quint16>(mapping.constData()), form = mapping[2], low = mapping[15];
    const auto base = qFromBigEndian<qint64>(mapping.constData() + 3);
    const quint64 stepBits = qFromBigEndian<quint64>(mapping.constData() + 16);
    double steps = 0.0;
    std::memcpy(&steps, &stepBits, sizeof steps);
    const auto peer = decodeWithPeer({stream.begin(), stream.end()}, 0, 0);
    std::vector<std::int32_t> cells;
    for (std::size_t i = 0; i < peer[0].cells.size(); ++i) {
        const qint64 n = base + (qint64(peer[0].cells[i]) << low) + (low ? peer[std::size_t(bands)].cells[i] : 0);
        const auto value = float(double(n) / steps);
        auto cell = std::int32_t(n);
        if (form == 3)
            std::memcpy(&cell, &value, sizeof cell);
        const bool isHidden = mapping[24] == 1 && peer[std::size_t(bands) - 1].cells[i] == 0;
        cells.push_back(isHidden                ? qFromBigEndian<qint32>(mapping.constData() + 25)
                        : form == 2 && cell < 0 ? cell ^ 0x7fffffff
                                                : cell);
    }
    return cells;
}

} // namespace

void TestCellTypes::everyBitComesBack_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<CellFunction>("cell");
    QTest::addColumn<int>("form");
    QTest::addColumn<int>("components");
    const auto row = [](const char *name, CellKind kind, int form, int components, const CellFunction &cell) {
        QTest::newRow(name) << int(kind) << cell << form << components;
    };
    using Kind = CellKind;
    row("terrain", Kind::Float, 2, 2, [](int, int x, int y) { return bitsOfFloat(terrain(x, y)); });
    row("around 0", Kind::Float, 2, 2,
        [](int, int x, int y) { return bitsOfFloat((terrain(x, y) - 700.0f) * 0.123f); });
    row("hundredths", Kind::Float, 3, 1,
        [](int, int x, int y) { return bitsOfFloat(float(std::round(terrain(x, y) * 100.0) / 100.0)); });
    row("sixteenths, below 0", Kind::Float, 3, 1,
        [](int, int x, int y) { return bitsOfFloat(std::round(terrain(x, y) * 16.0f) / 16.0f - 900.0f); });
    row("zeros of both signs", Kind::Float, 2, 1,
        [](int, int x, int) { return x % 2 ? 0 : std::numeric_limits<std::int32_t>::min(); });
    row("all that Floats can be", Kind::Float, 2, 3, anyFloat); // with opacity
    row("all of one value", Kind::Float, 3, 1, [](int, int, int) { return bitsOfFloat(-2.5f); });
    row("all unsigned", Kind::Unsigned, 1, 2, [](int, int x, int y) { return std::int32_t(noiseBits(x, y)); });
    row("all signed", Kind::Whole, 1, 2, [](int, int x, int y) { return std::int32_t(noiseBits(x, y)); });
    row("high and narrow", Kind::Unsigned, 1, 1,
        [](int, int x, int y) { return std::int32_t(4200000000u + noiseBits(x, y) % 1000000); });
}

void TestCellTypes::everyBitComesBack()
{
    QFETCH(int, kind);
    QFETCH(CellFunction, cell);
    QFETCH(int, form);
    QFETCH(int, components);
    const PLKCellType type = typeOf(CellKind(kind));
    SyntheticImage image = imageOf(CellKind(kind), cell);
    for (const bool isFast : {false, true}) {
        WriteOptions options;
        options.isHighThroughput = isFast;
        QCOMPARE(write(image, "a.xrv", options).GetErrorMessage(), "");
        const QByteArray file = folder.read("a.xrv");
        PLK::CView view;
        QVERIFY(view.Open(folder.path("a.xrv").c_str(), false, false).IsSuccess());
        QCOMPARE(view.GetFileInfo()->eCellType, type);
        QCOMPARE(int(view.GetFileInfo()->nFormatVersion), 2);
        QVERIFY(bitsOf(view, 0, type) == image.cells(0));
        QVERIFY(cellsByTheBook(file) == image.cells(0));
        const boxbuilder::BoxAt mapping = boxbuilder::findBox(file, "cell"), stream = boxbuilder::findBox(file, "jp2c");
        QCOMPARE(int(file[int(mapping.start) + 8 + 2]), form);
        QCOMPARE(int(qFromBigEndian<quint16>(file.constData() + stream.start + 8 + 40)), components); // Csiz

        std::vector<double> finite;
        for (const std::int32_t bits : image.cells(0))
            if (const double number = numberOfBits(CellKind(kind), bits); std::isfinite(number))
                finite.push_back(number);
        const Figures expected(finite);
        PLKFileStatistics *statistics = nullptr;
        QVERIFY(view.GetClientStatistics(&statistics).IsSuccess());
        const PLKBandStatistics &band = statistics->pBandStats[0];
        const double step = (expected.max - expected.min) / 65536.0;
        const auto isNear = [](float value, double wanted, double tolerance) {
            return std::abs(double(value) - wanted) <= tolerance + std::abs(wanted) * 1e-6 + 1e-9;
        };
        const bool areRight = isNear(band.fMin, expected.min, 0) && isNear(band.fMax, expected.max, 0) &&
                              isNear(band.fMean, expected.mean, step / 1000) &&
                              isNear(band.fMedian, expected.median, 0) &&
                              isNear(band.fStandardDev, expected.deviation, step / 1000);
        PLKFreeStatistics(statistics);
        QVERIFY(areRight);
    }
}

void TestCellTypes::hiddenCells_data()
{
    QTest::addColumn<QByteArray>("how");
    for (const char *how :
         {"", "fast", "lossy", "lossy layers", "lossy fast", "jp2", "jp2 lossy layers", "jp2 lossy fast"})
        QTest::newRow(how) << QByteArray(how);
    QTest::newRow("Float") << QByteArray("float");
}

/// A wedge without data at the left, and one cell amid the others in the value of no data of the first band only.
void TestCellTypes::hiddenCells()
{
    QFETCH(QByteArray, how);
    const bool isFloat = how.contains("float"), isLossy = how.contains("lossy");
    const auto isHidden = [](int x, int y) { return x < y / 2; };
    SyntheticImage image = imageOf(isFloat ? CellKind::Float : CellKind::Whole, {}, 2);
    if (!isFloat)
        for (XrvBand &band : image.image.bands)
            band.bits = 16;
    image.cell = [&](int band, int x, int y) {
        const bool hasNone = isHidden(x, y) || (band == 0 && x == 200 && y == 20);
        const float cell = hasNone ? -9999.0f : std::round(terrain(x, y) * 4.0f) + float(band);
        return isFloat ? bitsOfFloat(hasNone && y > 20 ? NAN : cell) : std::int32_t(cell);
    };
    image.image.noData = -9999.0;
    WriteOptions options;
    options.isLossless = !isLossy;
    options.layers = how.contains("layers") ? 3 : 1;
    options.isHighThroughput = how.contains("fast");
    options.kind = how.contains("jp2") ? FileKind::GeoJp2 : FileKind::Xrv;
    QCOMPARE(write(image, "a.xrv", options).GetErrorMessage(), "");

    PLK::CView view;
    QVERIFY(view.Open(folder.path("a.xrv").c_str(), false, false).IsSuccess());
    const PLKFileInfo &info = *view.GetFileInfo();
    QCOMPARE(int(info.nBands), 3);
    QCOMPARE(info.pBands[2].szDesc, "AllOpacity");
    QCOMPARE(info.eCellType, isFloat ? PLKCT_FLOAT : PLKCT_INT16);
    std::vector<double> visible;
    const auto opacity = readCells(view, 2), cells = bitsOf(view, 0, isFloat ? PLKCT_FLOAT : PLKCT_INT32);
    for (int i = 0; i < kWidth * kHeight; ++i) {
        const int x = i % kWidth, y = i / kWidth;
        QCOMPARE(opacity[std::size_t(i)], isHidden(x, y) ? 0 : 255);
        if (!isLossy)
            QCOMPARE(cells[std::size_t(i)], image.cell(0, x, y));
        if (!isHidden(x, y))
            visible.push_back(numberOfBits(isFloat ? CellKind::Float : CellKind::Whole, isLossy && how.contains("jp2")
                                                                                            ? cells[std::size_t(i)]
                                                                                            : image.cell(0, x, y)));
    }
    PLKFileStatistics *statistics = nullptr;
    QVERIFY(view.GetClientStatistics(&statistics).IsSuccess());
    const float mean = statistics->pBandStats[0].fMean, least = statistics->pBandStats[0].fMin;
    PLKFreeStatistics(statistics);
    const Figures expected(visible);
    QVERIFY2(std::abs(double(mean) - expected.mean) < 0.01, qPrintable(QString::number(double(mean))));
    QCOMPARE(double(least), expected.min);
}

/// However it is scaled and smoothed, what is hidden leaves no trace in what is not.
void TestCellTypes::hiddenCellsDoNotShow()
{
    SyntheticImage image = imageOf(CellKind::Float, [](int, int x, int y) {
        return bitsOfFloat(x < 100 + y / 3 ? std::numeric_limits<float>::lowest() : 1000.0f + float(x) / 300.0f);
    });
    image.image.noData = double(std::numeric_limits<float>::lowest());
    QCOMPARE(write(image, "a.xrv").GetErrorMessage(), "");
    PLK::CView view;
    QVERIFY(view.Open(folder.path("a.xrv").c_str(), false, false).IsSuccess());
    const unsigned bands[] = {0};
    std::vector<std::unique_ptr<PLK::API::CMinMaxTransform>> transforms;
    QVERIFY(view.CalculateMinMaxTransforms(1, bands, &transforms, 100.0, 100).IsSuccess());
    QVERIFY(transforms[0]->GetMin() > 1000.3 && transforms[0]->GetMax() < 1001.0);
    QVERIFY(view.SetTransform(0, std::make_unique<PLK::API::CMinMaxTransform>(1000.0, 1001.0)).IsSuccess());
    view.ParametersDecompress().SetAutoscaleOpacitybandUpEnabled(true);
    for (const int width : {37, 75, 150, 300, 700}) {
        for (const PLKResampleMethod method : {PLK_RESAMPLE_NEAREST, PLK_RESAMPLE_BILINEAR}) {
            view.ParametersDecompress().SetResampleMethod(method);
            Window window = wholeOf(view);
            window.height = window.height * width / window.width;
            window.width = width;
            const auto picture = readPicture(view, window, {0, 0, 0, 1});
            QCOMPARE(int(picture.size()), window.width * window.height);
            int transparent = 0, wrong = 0;
            for (std::size_t i = 0; i < picture.size(); ++i) {
                const int alpha = int(picture[i] >> 24), grey = int(picture[i] & 255);
                const double expected = 255.0 * (double(int(i) % width) + 0.5) / width;
                transparent += alpha == 0;
                wrong += alpha > 0 && std::abs(grey - expected) > 255.0 * 5.0 / width + 2.0;
            }
            QVERIFY(std::abs(transparent / double(picture.size()) - 0.45) < 0.06);
            QCOMPARE(wrong, 0);
        }
    }
}

void TestCellTypes::integersInJpeg2000()
{
    int bits = 17;
    SyntheticImage image =
        imageOf(CellKind::Whole, [&bits](int, int x, int y) { return std::int32_t(noiseBits(x, y)) >> (32 - bits); });
    WriteOptions options;
    options.kind = FileKind::GeoJp2;
    for (const auto &[depth, isFast] :
         {std::make_pair(17, false), std::make_pair(22, false), std::make_pair(22, true)}) {
        bits = depth;
        options.isHighThroughput = isFast;
        QCOMPARE(write(image, "a.jp2", options).GetErrorMessage(), "");
        PLK::CView view;
        QVERIFY(view.Open(folder.path("a.jp2").c_str(), false, false).IsSuccess());
        QCOMPARE(view.GetFileInfo()->eCellType, PLKCT_INT32);
        QCOMPARE(int(view.GetFileInfo()->pBands[0].nBits), depth);
        QVERIFY(bitsOf(view, 0, PLKCT_INT32) == image.cells(0));
    }
    bits = 23;
    QVERIFY(QByteArray(write(image, "b.jp2", options).GetErrorMessage()).startsWith("The cells need 23 bits;"));
    options = {};
    options.isLossless = false;
    QCOMPARE(write(image, "b.xrv", options).GetErrorMessage(), "Cells of 32 bits can only be written without loss.");
    QCOMPARE(folder.read("b.jp2") + folder.read("b.xrv"), QByteArray());
}

void TestCellTypes::damagedMappings_data()
{
    QTest::addColumn<int>("place"); ///< in the content
    QTest::addColumn<char>("value");
    QTest::newRow("number of bands") << 1 << '\2';
    QTest::newRow("unknown form") << 2 << '\4';
    QTest::newRow("base beyond 32 bits") << 3 << '\1';
    QTest::newRow("more bits than components have") << 11 << '\xff';
    QTest::newRow("more low bits than bits") << 15 << '\x1f';
    QTest::newRow("no component for the low bits") << 15 << '\0';
    QTest::newRow("steps that are no number") << 16 << '\x7f';
    QTest::newRow("neither hides nor does not") << 24 << '\2';
}

void TestCellTypes::damagedMappings()
{
    QFETCH(int, place);
    QFETCH(char, value);
    SyntheticImage image = imageOf(CellKind::Float, [](int, int x, int y) { return bitsOfFloat(terrain(x, y)); });
    QCOMPARE(write(image, "a.xrv").GetErrorMessage(), "");
    QByteArray file = folder.read("a.xrv");
    const int content = int(boxbuilder::findBox(file, "cell").start) + 8;
    file[content + place] = value;
    if (place == 16)
        file[content + 17] = char(0xf0); // infinity
    folder.write("b.xrv", file);
    PLK::CView view;
    QCOMPARE(view.Open(folder.path("b.xrv").c_str(), false, false).GetErrorNumber(), PLK_ERR_MALFORMED);
}

QTEST_GUILESS_MAIN(TestCellTypes)
#include "tst_celltypes.moc"
