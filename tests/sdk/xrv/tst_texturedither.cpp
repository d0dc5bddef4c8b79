#include "data/files.h"
#include "data/syntheticimage.h"
#include "data/views.h"

#include <QtTest>

#include <algorithm>
#include <cstdlib>

using namespace xrv;

/// The grain in smooth areas of lossy XRV images.
class TestTextureDither : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void onlyWhereItBelongs_data();
    void onlyWhereItBelongs();
    void sameCellsInEveryView();
    void followsTheConfiguration();

private:
    void write(const char *name, int bits, bool isLossless, FileKind kind) const;
    FileFolder folder;
};

namespace {

constexpr int kSide = 400, kRamp = 200; ///< the right half is rough

std::vector<std::int32_t> cellsOf(const std::string &path, bool isDithered, int band = 0)
{
    PLK::CView view;
    if (view.Open(path.c_str(), false, false))
        return {};
    view.ParametersDecompress().SetReaderDitherEnabled(isDithered);
    return readCells(view, band);
}

/// Cells that differ, and by how much at most, in columns [x0, x1).
std::pair<int, int> difference(const std::vector<std::int32_t> &a, const std::vector<std::int32_t> &b, int x0, int x1)
{
    int count = 0, largest = 0;
    for (int y = 0; y < kSide; ++y) {
        for (int x = x0; x < x1; ++x) {
            const int distance = std::abs(a[std::size_t(y * kSide + x)] - b[std::size_t(y * kSide + x)]);
            count += distance > 0 ? 1 : 0;
            largest = std::max(largest, distance);
        }
    }
    return {count, largest};
}

} // namespace

/// A ramp on the left, rough on the right, with opacity.
void TestTextureDither::write(const char *name, int bits, bool isLossless, FileKind kind) const
{
    SyntheticImage image(kSide, kSide, 2, bits);
    image.image.colourSpace = PLK_COLORSPACE_GREYSCALE;
    image.image.isLastOpacity = true;
    image.image.bands[0].description = "Greyscale";
    image.image.bands[1].description = "AllOpacity";
    const int scale = 1 << (bits - 8), most = (1 << bits) - 1;
    image.cell = [=](int band, int x, int y) {
        const int grey = x < kRamp ? 60 + x / 16 : (x * 37 + y * 91) % 200 + 20;
        return band == 1 ? most : grey * scale;
    };
    WriteOptions options;
    options.kind = kind;
    options.isLossless = isLossless;
    options.rate = 6;
    options.tileSize = 128;
    QVERIFY(writeImage(image, options, folder.path(name)).IsSuccess());
}

void TestTextureDither::initTestCase()
{
    write("lossy.xrv", 8, false, FileKind::Xrv);
    write("lossy16.xrv", 16, false, FileKind::Xrv);
    write("lossless.xrv", 8, true, FileKind::Xrv);
    write("lossy.jp2", 8, false, FileKind::GeoJp2);
}

void TestTextureDither::onlyWhereItBelongs_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("largest"); ///< change of a cell, 0 where there must be none
    QTest::newRow("lossy XRV") << QStringLiteral("lossy.xrv") << 1;
    QTest::newRow("lossy XRV of 16 bits") << QStringLiteral("lossy16.xrv") << 256;
    QTest::newRow("lossless XRV") << QStringLiteral("lossless.xrv") << 0;
    QTest::newRow("JPEG 2000") << QStringLiteral("lossy.jp2") << 0;
}

void TestTextureDither::onlyWhereItBelongs()
{
    QFETCH(QString, name);
    QFETCH(int, largest);
    const std::string path = folder.path(name.toStdString());
    const auto plain = cellsOf(path, false), dithered = cellsOf(path, true);
    QCOMPARE(plain.size(), std::size_t(kSide * kSide));
    QVERIFY(cellsOf(path, true, 1) == cellsOf(path, false, 1)); // opacity
    const auto [count, most] = difference(plain, dithered, 0, kSide);
    QCOMPARE(most, largest);
    if (largest == 0)
        return;
    // Three values of equal chance at 8 bits: two thirds of the smooth cells change, next to none of the others.
    QVERIFY2(count > kRamp * kSide / 3, qPrintable(QString::number(count)));
    const int rough = difference(plain, dithered, kRamp + 16, kSide).first;
    QVERIFY2(rough < kRamp * kSide / 100, qPrintable(QString::number(rough)));
    // No drift: what is added to smooth cells adds up to next to nothing.
    double sum = 0.0;
    for (std::size_t i = 0; i < plain.size(); ++i)
        sum += double(dithered[i] - plain[i]) / largest;
    QVERIFY2(std::abs(sum) / (kRamp * kSide) < 0.02, qPrintable(QString::number(sum)));
}

/// Wherever a view begins, at any level, and after the cells were decoded anew.
void TestTextureDither::sameCellsInEveryView()
{
    const auto whole = cellsOf(folder.path("lossy.xrv"), true);
    PLK::CView view;
    QVERIFY(view.Open(folder.path("lossy.xrv").c_str(), false, false).IsSuccess());
    view.ParametersDecompress().SetReaderDitherEnabled(true);
    for (const auto &[x, y] :
         {std::make_pair(0, 0), std::make_pair(1, 3), std::make_pair(117, 126), std::make_pair(240, 255)}) {
        constexpr int kSize = 140;
        const auto window = readCells(view, 0, x, y, x + kSize, y + kSize);
        QCOMPARE(window.size(), std::size_t(kSize * kSize));
        for (int row = 0; row < kSize; ++row)
            QVERIFY(std::equal(window.begin() + row * kSize, window.begin() + (row + 1) * kSize,
                               whole.begin() + (y + row) * kSide + x));
        view.Close(true); // drops what was decoded
        QVERIFY(view.Open(folder.path("lossy.xrv").c_str(), false, false).IsSuccess());
    }
    // Overlapping pictures of half the size, nearest cell: one begins 64 cells further to the right.
    const auto left = readCells(view, 0, {100, 100, 0, 0, 200, -200});
    const auto right = readCells(view, 0, {100, 100, 64, 0, 264, -200});
    QVERIFY(!left.empty() && !right.empty());
    for (int line = 0; line < 100; ++line)
        QVERIFY(
            std::equal(left.begin() + line * 100 + 32, left.begin() + (line + 1) * 100, right.begin() + line * 100));
}

void TestTextureDither::followsTheConfiguration()
{
    PLK::SDK::CConfig &config = PLK::SDK::CFileBase::sFilesHelper().Get()->Config();
    QVERIFY(!PLK::CView().ParametersDecompress().IsReaderDitherEnabled());
    config.SetTextureDitherEnabled(true);
    PLK::CView view;
    config.SetTextureDitherEnabled(false);
    QVERIFY(view.ParametersDecompress().IsReaderDitherEnabled());
    QVERIFY(view.Open(folder.path("lossy.xrv").c_str(), false, false).IsSuccess());
    QVERIFY(readCells(view, 0) == cellsOf(folder.path("lossy.xrv"), true));
}

QTEST_GUILESS_MAIN(TestTextureDither)
#include "tst_texturedither.moc"
