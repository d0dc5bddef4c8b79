#include "data/boxbuilder.h"
#include "data/files.h"
#include "data/jp2maker.h"
#include "data/views.h"
#include "sdk/geo/geotiffbuilder.h"

#include "config/configuration.h"
#include "decode/cache/tilecache.h"
#include "geo/geojp2.h"

#include <xrv60/plkinit.h>

#include <QtTest>

using PLK::SDK::CConfig;

/// The global configuration, and what it does to views and files that are opened under it.
class TestConfig : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void memoryLimit_data();
    void memoryLimit();
    void limitReachesTheCache();
    void textsMayBeMissing();
    void nearestNeighbour();
    void projectionNames();
    void shutDownEmptiesTheCacheOnlyAtTheLast();
    void version();

private:
    static CConfig &config() { return PLK::SDK::CFileBase::sFilesHelper().Get()->Config(); }
    FileFolder folder;
};

namespace {

constexpr int kSize = 256;

std::int32_t noise(int, int x, int y)
{
    const std::uint32_t mixed = (static_cast<std::uint32_t>(x) * 7919u + static_cast<std::uint32_t>(y) * 104729u);
    return static_cast<std::int32_t>((mixed ^ (mixed >> 7)) % 256u);
}

jp2maker::FileBytes noiseFile()
{
    jp2maker::Options options;
    options.width = options.height = kSize;
    options.cell = noise;
    return jp2maker::make(options);
}

/// All of the image in \a size by \a size pixels; empty when a line could not be read.
std::vector<std::int32_t> showFile(const std::string &name, int size)
{
    PLK::CView view;
    if (view.Open(name.c_str(), false, false))
        return {};
    return readCells(view, 0, {size, size, 0, 0, kSize, -kSize});
}

} // namespace

void TestConfig::cleanup()
{
    config().SetOptimizeUseNearestNeighbour(true);
    config().SetProjectionFormat(PLK_PROJECTION_EPSG);
    config().SetCacheMaxmem(std::uint64_t(512) << 20);
}

void TestConfig::memoryLimit_data()
{
    // Megabytes as a caller has them, shifted left by 20 in 32 bits and widened with their sign, on a machine of 8 GiB.
    QTest::addColumn<quint64>("wish");
    QTest::addColumn<quint64>("megabytes");
    QTest::newRow("512 MB") << quint64(0x20000000) << quint64(512);
    QTest::newRow("2047 MB, the last that fits") << quint64(0x7FF00000) << quint64(2047);
    QTest::newRow("2048 MB wraps") << quint64(0xFFFFFFFF80000000) << quint64(2048);
    QTest::newRow("4095 MB wraps") << quint64(0xFFFFFFFFFFF00000) << quint64(4095);
    QTest::newRow("4096 MB wraps to nothing") << quint64(0) << quint64(16);
    QTest::newRow("6000 MB, all 64 bits given") << quint64(6000) * 1048576 << quint64(6000);
    QTest::newRow("more than three quarters of the machine") << quint64(7000) * 1048576 << quint64(6144);
    QTest::newRow("largest positive") << quint64(0x7FFFFFFFFFFFFFFF) << quint64(6144);
    QTest::newRow("one byte") << quint64(1) << quint64(16);
}

void TestConfig::memoryLimit()
{
    QFETCH(quint64, wish);
    QFETCH(quint64, megabytes);
    QCOMPARE(quint64(xrv::cacheBudget(wish, quint64(8192) * 1048576)), megabytes * 1048576);
}

void TestConfig::limitReachesTheCache()
{
    config().SetCacheMaxmem(0);
    QCOMPARE(config().GetCacheMaxmem(), std::uint64_t(16) << 20);
    QCOMPARE(xrv::TileCache::instance().budget(), std::uint64_t(16) << 20);
    const std::vector<std::int32_t> cells = showFile(folder.write("good.jp2", noiseFile()), kSize);
    QCOMPARE(cells.size(), std::size_t(kSize) * kSize);
    QCOMPARE(cells.back(), noise(0, kSize - 1, kSize - 1));
}

void TestConfig::textsMayBeMissing()
{
    CConfig own;
    own.SetXrvpCacheLocation("/somewhere");
    own.SetXrvpCacheLocation(nullptr);
    QCOMPARE(own.GetXrvpCacheLocation(), std::string());
    own.SetXrvpCacheSizeMb(-3);
    QCOMPARE(own.GetXrvpCacheSizeMb(), 0);
}

void TestConfig::nearestNeighbour()
{
    constexpr int kPixels = 160; // 1.6 cells each
    const auto cellOf = [](int pixel) { return static_cast<int>((pixel + 0.5) * kSize / kPixels); };
    std::vector<std::int32_t> expected;
    for (int y = 0; y < kPixels; ++y)
        for (int x = 0; x < kPixels; ++x)
            expected.push_back(noise(0, cellOf(x), cellOf(y)));
    const std::string name = folder.write("good.jp2", noiseFile());
    config().SetOptimizeUseNearestNeighbour(false);
    QVERIFY(showFile(name, kPixels) == expected);
    config().SetOptimizeUseNearestNeighbour(true); // means of neighbours, from a coarser level
    QVERIFY(showFile(name, kPixels) != expected);
}

void TestConfig::projectionNames()
{
    const std::vector<std::uint8_t> tiff = GeoTiffBuilder()
                                               .doubles(33550, {10, 10, 0})
                                               .doubles(33922, {0, 0, 0, 500000, 5000000, 0})
                                               .keys({{1024, 1}, {3072, 32633}})
                                               .bytes();
    const jp2maker::FileBytes uuid(xrv::kGeoJp2Uuid.begin(), xrv::kGeoJp2Uuid.end());
    const std::string name =
        folder.write("placed.jp2", jp2maker::withBox(jp2maker::make({}), "uuid", boxbuilder::join({uuid, tiff})));
    for (const bool isNamed : {true, false}) {
        config().SetProjectionFormat(isNamed ? PLK_PROJECTION_EPSG : PLK_PROJECTION_NONE);
        PLK::CView view;
        QVERIFY(view.Open(name.c_str(), false, false).IsSuccess());
        QCOMPARE(view.GetFileInfo()->szDatum, isNamed ? "WGS84" : "RAW");
        QCOMPARE(view.GetFileInfo()->szProjection, isNamed ? "UTM zone 33N" : "RAW");
        QCOMPARE(view.GetEPSGCode(), 32633); // a number is no name
    }
}

void TestConfig::shutDownEmptiesTheCacheOnlyAtTheLast()
{
    auto plane = std::make_shared<xrv::Plane>();
    plane->bytes.resize(1000);
    plane->rect = {0, 0, 100, 10};
    PLKInit();
    PLKInit();
    xrv::TileCache::instance().insert({}, plane);
    PLKShutdown();
    QVERIFY(xrv::TileCache::instance().bytesUsed() > 0);
    PLKShutdown();
    QCOMPARE(xrv::TileCache::instance().bytesUsed(), std::uint64_t(0));
    PLKShutdown(); // one too many
    PLKInit();
    PLKShutdown();
}

void TestConfig::version()
{
    QCOMPARE(PLKGetLibraryVersion(), "6.0.0.1513");
}

QTEST_APPLESS_MAIN(TestConfig)
#include "tst_config.moc"
