#include "decode/cache/bytebudgetmap.h"
#include "decode/cache/tilecache.h"
#include "decode/transform/planeops.h"
#include "decode/transform/rectset.h"

#include <QtTest>

#include <random>

using namespace xrv;

namespace {

TileCache::Key keyOf(std::uint64_t file, std::uint32_t tile)
{
    TileCache::Key key;
    key.file = file;
    key.tile = tile;
    return key;
}

struct FortyBytes
{
    std::size_t memoryUse() const { return 40; }
};

TileCache::PlanePtr planeOf(const IntRect &rect)
{
    return std::make_shared<const Plane>(makePlane(0, rect, SampleType::UInt8));
}

} // namespace

class TestTileCache : public QObject
{
    Q_OBJECT

private slots:
    void leastRecentlyUsedGoesFirst();
    void coveredPlanesGo();
    void dropsOneFile();
    void indexesKeepToTheirBudget();
    void subtractionLeavesTheRest();
};

void TestTileCache::leastRecentlyUsedGoesFirst()
{
    TileCache cache;
    cache.setBudget(35000);
    for (std::uint32_t tile = 0; tile < 3; ++tile)
        cache.insert(keyOf(1, tile), planeOf({0, 0, 100, 100}));
    QCOMPARE(cache.find(keyOf(1, 0)).size(), std::size_t(1)); // used again
    cache.insert(keyOf(1, 3), planeOf({0, 0, 100, 100}));
    QVERIFY(cache.contains(keyOf(1, 0)));
    QVERIFY(!cache.contains(keyOf(1, 1)));
    QVERIFY(cache.contains(keyOf(1, 3)));
    QVERIFY(cache.bytesUsed() <= cache.budget());
    cache.insert(keyOf(1, 4), planeOf({0, 0, 1000, 1000})); // alone larger than the budget
    QVERIFY(!cache.contains(keyOf(1, 4)));
    QVERIFY(cache.contains(keyOf(1, 3)));
    cache.setBudget(15000);
    QVERIFY(cache.bytesUsed() <= 15000);
    QVERIFY(cache.contains(keyOf(1, 3)));
}

void TestTileCache::coveredPlanesGo()
{
    TileCache cache;
    const TileCache::Key key = keyOf(1, 0);
    cache.insert(key, planeOf({0, 0, 10, 10}));
    cache.insert(key, planeOf({20, 0, 30, 10}));
    QCOMPARE(cache.find(key).size(), std::size_t(2));
    cache.insert(key, planeOf({0, 0, 15, 10}));
    QCOMPARE(cache.find(key).size(), std::size_t(2));
    cache.insert(key, planeOf({0, 0, 64, 64}));
    QCOMPARE(cache.find(key).size(), std::size_t(1));
}

void TestTileCache::dropsOneFile()
{
    TileCache cache;
    const std::uint64_t a = cache.fileNumber("a"), b = cache.fileNumber("b");
    QVERIFY(a != b);
    QCOMPARE(cache.fileNumber("a"), a);
    cache.insert(keyOf(a, 0), planeOf({0, 0, 10, 10}));
    cache.insert(keyOf(b, 0), planeOf({0, 0, 10, 10}));
    cache.addReader(a);
    cache.addReader(a);
    cache.drop(a); // the other one still needs it
    QVERIFY(cache.contains(keyOf(a, 0)));
    cache.removeReader(a);
    cache.drop(a);
    QVERIFY(!cache.contains(keyOf(a, 0)));
    QVERIFY(cache.contains(keyOf(b, 0)));
    cache.drop(b);
    QCOMPARE(cache.bytesUsed(), std::uint64_t(0));
}

void TestTileCache::indexesKeepToTheirBudget()
{
    ByteBudgetMap<int, FortyBytes> map(100);
    for (const int key : {0, 1, 2})
        map.insert(key, std::make_shared<const FortyBytes>());
    QVERIFY(!map.find(0) && map.find(1) && map.find(2));
}

/// Cell by cell, with made up rectangles.
void TestTileCache::subtractionLeavesTheRest()
{
    std::mt19937 random(3);
    const auto below = [&random](unsigned limit) { return static_cast<std::int64_t>(random() % limit); };
    const auto anyRect = [&below] {
        const std::int64_t x = below(20), y = below(20);
        return IntRect{x, y, x + 1 + below(12), y + 1 + below(12)};
    };
    for (int round = 0; round < 200; ++round) {
        const IntRect rect = anyRect();
        const std::vector<IntRect> holes{anyRect(), anyRect(), anyRect()};
        const std::vector<IntRect> rest = subtract(rect, holes);
        for (std::int64_t y = 0; y < 34; ++y)
            for (std::int64_t x = 0; x < 34; ++x) {
                const IntRect cell{x, y, x + 1, y + 1};
                bool wanted = rect.contains(cell);
                for (const IntRect &hole : holes)
                    wanted &= !hole.contains(cell);
                int count = 0;
                for (const IntRect &part : rest)
                    count += part.contains(cell) ? 1 : 0;
                QCOMPARE(count, wanted ? 1 : 0);
            }
    }
}

QTEST_APPLESS_MAIN(TestTileCache)
#include "tst_tilecache.moc"
