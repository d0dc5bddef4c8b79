#include "config/configuration.h"
#include "decode/cache/tilecache.h"

#include <xrv60/plkfile.h>
#include <xrv60/plkinit.h>

#include <QtTest>

using PLK::SDK::CConfig;

class TestConfig : public QObject
{
    Q_OBJECT

private slots:
    void memoryLimit_data();
    void memoryLimit();
    void limitReachesTheCache();
    void textsAreKeptApart();
    void oneConfigurationForAll();
    void shutDownEmptiesTheCacheOnlyAtTheLast();
    void version();
};

void TestConfig::memoryLimit_data()
{
    // Megabytes as a caller has them, shifted left by 20 in 32 bits and widened with their sign, on a machine of 8 GiB.
    QTest::addColumn<quint64>("wish");
    QTest::addColumn<quint64>("megabytes");
    QTest::newRow("100 MB") << quint64(0x6400000) << quint64(100);
    QTest::newRow("512 MB") << quint64(0x20000000) << quint64(512);
    QTest::newRow("2047 MB, the last that fits") << quint64(0x7FF00000) << quint64(2047);
    QTest::newRow("2048 MB wraps") << quint64(0xFFFFFFFF80000000) << quint64(2048);
    QTest::newRow("3000 MB wraps") << quint64(0xFFFFFFFFBB800000) << quint64(3000);
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
    CConfig &config = PLK::SDK::CFileBase::sFilesHelper().Get()->Config();
    const std::uint64_t before = config.GetCacheMaxmem();
    config.SetCacheMaxmem(100u << 20);
    QCOMPARE(config.GetCacheMaxmem(), std::uint64_t(100) << 20);
    QCOMPARE(xrv::TileCache::instance().budget(), std::uint64_t(100) << 20);
    config.SetCacheMaxmem(before);
    QVERIFY(xrv::physicalMemory() > (std::uint64_t(64) << 20));
}

void TestConfig::textsAreKeptApart()
{
    CConfig config;
    config.SetXrvpCacheLocation("/somewhere");
    config.SetXrvpClientHttpUserAgent("agent/1");
    QCOMPARE(config.GetXrvpCacheLocation(), std::string("/somewhere"));
    QCOMPARE(config.GetXrvpClientHttpUserAgent(), std::string("agent/1"));
    config.SetXrvpCacheLocation(nullptr);
    QCOMPARE(config.GetXrvpCacheLocation(), std::string());
    config.SetXrvpCacheSizeMb(-3);
    QCOMPARE(config.GetXrvpCacheSizeMb(), 0);
}

void TestConfig::oneConfigurationForAll()
{
    PLK::SDK::CFileFactory *factory = PLK::SDK::CFileBase::sFilesHelper().Get();
    QCOMPARE(factory, PLK::SDK::CFileBase::sFilesHelper().Get());
    factory->Config().SetResilientDecodingEnabled(false);
    QVERIFY(!xrv::configuration().resilientDecoding);
    factory->Config().SetResilientDecodingEnabled(true);
    QVERIFY(xrv::configuration().resilientDecoding);
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
