#include "data/jp2maker.h"
#include "geo/geojp2.h"
#include "sdk/geo/geotiffbuilder.h"

#include <xrv60/plkview.h>

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

/// What the global configuration does to views and files that are opened under it.
class TestConfigEffects : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();
    void resilientDecoding();
    void nearestNeighbour();
    void projectionNames();
    void everyMemoryLimitWorks_data();
    void everyMemoryLimitWorks();

private:
    static PLK::SDK::CConfig &config() { return PLK::SDK::CFileBase::sFilesHelper().Get()->Config(); }
    std::string write(const QString &name, const jp2maker::FileBytes &bytes) const;

    QTemporaryDir folder;
    std::string good, damaged, placed;
};

namespace {

constexpr int kSize = 256;

std::int32_t noise(int x, int y)
{
    const std::uint32_t mixed = (static_cast<std::uint32_t>(x) * 7919u + static_cast<std::uint32_t>(y) * 104729u);
    return static_cast<std::int32_t>((mixed ^ (mixed >> 7)) % 256u);
}

jp2maker::FileBytes noiseFile()
{
    jp2maker::Options options;
    options.width = options.height = kSize;
    options.tileWidth = options.tileHeight = 64;
    options.cell = [](int, int x, int y) { return noise(x, y); };
    return jp2maker::make(options);
}

/// \a file with the cells of its last tiles overwritten.
jp2maker::FileBytes withDamage(jp2maker::FileBytes file)
{
    for (std::size_t at = file.size() - 9000; at + 400 < file.size(); ++at) {
        const bool isHeader = file[at] == 0xFF || file[at - 1] == 0xFF; // markers stay whole
        if (!isHeader && at % 2 == 0)
            file[at] = 0x55;
    }
    file.resize(file.size() - 3000);
    return file;
}

/// Somewhere in UTM zone 33N.
jp2maker::FileBytes placedFile()
{
    const std::vector<std::uint8_t> tiff = GeoTiffBuilder()
                                               .doubles(33550, {10, 10, 0})
                                               .doubles(33922, {0, 0, 0, 500000, 5000000, 0})
                                               .keys({{1024, 1}, {3072, 32633}})
                                               .bytes();
    jp2maker::FileBytes box(xrv::kGeoJp2Uuid.begin(), xrv::kGeoJp2Uuid.end());
    box.insert(box.end(), tiff.begin(), tiff.end());
    return jp2maker::withBox(jp2maker::make({}), "uuid", box);
}

/// All of the image in \a size by \a size pixels; empty when a line could not be read.
std::vector<std::uint8_t> show(PLK::CView &view, int size)
{
    const int band = 0;
    if (view.SetView(1, &band, size, size, 0, 0, kSize, -kSize))
        return {};
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(size * size));
    for (int y = 0; y < size; ++y) {
        void *line = pixels.data() + y * size;
        if (view.ReadLineBIL(PLKCT_UINT8, &line) != PLK_READ_SUCCESS)
            return {};
    }
    return pixels;
}

std::vector<std::uint8_t> showFile(const std::string &name, int size)
{
    PLK::CView view;
    const bool isOpen = view.Open(name.c_str(), false, false).IsSuccess();
    const std::vector<std::uint8_t> pixels = isOpen ? show(view, size) : std::vector<std::uint8_t>();
    view.Close(true);
    return pixels;
}

} // namespace

std::string TestConfigEffects::write(const QString &name, const jp2maker::FileBytes &bytes) const
{
    QFile file(folder.filePath(name));
    if (!file.open(QIODevice::WriteOnly) ||
        file.write(reinterpret_cast<const char *>(bytes.data()), qint64(bytes.size())) != qint64(bytes.size()))
        qFatal("cannot write the test file");
    return file.fileName().toStdString();
}

void TestConfigEffects::initTestCase()
{
    good = write(QStringLiteral("good.jp2"), noiseFile());
    damaged = write(QStringLiteral("damaged.jp2"), withDamage(noiseFile()));
    placed = write(QStringLiteral("placed.jp2"), placedFile());
}

void TestConfigEffects::cleanup()
{
    config().SetResilientDecodingEnabled(true);
    config().SetOptimizeUseNearestNeighbour(true);
    config().SetProjectionFormat(PLK_PROJECTION_EPSG);
    config().SetCacheMaxmem(std::uint64_t(512) << 20);
}

void TestConfigEffects::resilientDecoding()
{
    config().SetResilientDecodingEnabled(false);
    QVERIFY(showFile(damaged, kSize).empty());
    QVERIFY(!showFile(good, kSize).empty());
    config().SetResilientDecodingEnabled(true);
    const std::vector<std::uint8_t> pixels = showFile(damaged, kSize);
    QCOMPARE(pixels.size(), std::size_t(kSize) * kSize);
    for (int x = 0; x < kSize; ++x) // the first tiles are whole
        QCOMPARE(int(pixels[static_cast<std::size_t>(x)]), noise(x, 0));
}

void TestConfigEffects::nearestNeighbour()
{
    constexpr int kPixels = 160; // 1.6 cells each
    const auto cellOf = [](int pixel) { return static_cast<int>((pixel + 0.5) * kSize / kPixels); };
    const auto isOfTheImage = [cellOf](const std::vector<std::uint8_t> &pixels) {
        int same = 0;
        for (int y = 0; y < kPixels; ++y)
            for (int x = 0; x < kPixels; ++x)
                same += pixels[static_cast<std::size_t>(y * kPixels + x)] == noise(cellOf(x), cellOf(y)) ? 1 : 0;
        return same == kPixels * kPixels;
    };
    config().SetOptimizeUseNearestNeighbour(false);
    QVERIFY(isOfTheImage(showFile(good, kPixels)));
    config().SetOptimizeUseNearestNeighbour(true); // means of neighbours, from a coarser level
    const std::vector<std::uint8_t> pixels = showFile(good, kPixels);
    QCOMPARE(pixels.size(), std::size_t(kPixels) * kPixels);
    QVERIFY(!isOfTheImage(pixels));
}

void TestConfigEffects::projectionNames()
{
    const auto namesOf = [](const std::string &name, int *epsg) {
        PLK::CView view;
        if (view.Open(name.c_str(), false, false))
            return std::string("not opened");
        *epsg = view.GetEPSGCode();
        return std::string(view.GetFileInfo()->szDatum) + ", " + view.GetFileInfo()->szProjection;
    };
    int epsg = 0;
    QCOMPARE(namesOf(placed, &epsg), std::string("WGS84, UTM zone 33N"));
    config().SetProjectionFormat(PLK_PROJECTION_NONE);
    QCOMPARE(namesOf(placed, &epsg), std::string("RAW, RAW"));
    QCOMPARE(epsg, 32633); // a number is no name
}

void TestConfigEffects::everyMemoryLimitWorks_data()
{
    QTest::addColumn<quint64>("bytes");
    QTest::newRow("nothing") << quint64(0);
    QTest::newRow("one byte") << quint64(1);
    QTest::newRow("2048 MB, widened with its sign") << quint64(0xFFFFFFFF80000000);
    QTest::newRow("3000 MB, widened with its sign") << quint64(0xFFFFFFFFBB800000);
    QTest::newRow("minus one") << ~quint64(0);
    QTest::newRow("largest positive") << quint64(0x7FFFFFFFFFFFFFFF);
}

void TestConfigEffects::everyMemoryLimitWorks()
{
    QFETCH(quint64, bytes);
    config().SetCacheMaxmem(bytes);
    QVERIFY(config().GetCacheMaxmem() >= (std::uint64_t(16) << 20));
    const std::vector<std::uint8_t> pixels = showFile(good, kSize);
    QCOMPARE(pixels.size(), std::size_t(kSize) * kSize);
    QCOMPARE(int(pixels.back()), noise(kSize - 1, kSize - 1));
}

QTEST_APPLESS_MAIN(TestConfigEffects)
#include "tst_configeffects.moc"
