#include "geo/geojp2.h"
#include "geotiffbuilder.h"

#include <QTest>

#include <limits>

using namespace xrv;

namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
using Keys = std::vector<std::pair<std::uint16_t, std::uint16_t>>;

constexpr std::uint16_t kScale = 33550, kTie = 33922, kMatrix = 34264;
constexpr std::uint16_t kModel = 1024, kRaster = 1025, kGeographic = 2048, kProjected = 3072, kLinearUnits = 3076;

GeoTiffBuilder northUp(bool bigEndian = false)
{
    GeoTiffBuilder builder(bigEndian);
    builder.doubles(kScale, {10, 20, 0}).doubles(kTie, {0, 0, 0, 300000, 5000000, 0});
    return builder;
}

} // namespace

Q_DECLARE_METATYPE(Bytes)
Q_DECLARE_METATYPE(Keys)

class TestGeoJp2 : public QObject
{
    Q_OBJECT

private slots:
    void place_data();
    void place();
    void system_data();
    void system();
    void userDefinedUtmGetsItsCode();
    void otherUnitsThanTheCodes();
    void brokenKeysLeaveThePlace();
    void rpcTag();
    void absurdEllipsoid();
    void damageIsNoCrash();
};

void TestGeoJp2::place_data()
{
    QTest::addColumn<Bytes>("content");
    QTest::addColumn<QVector<double>>("expected"); // empty: none
    const Keys point = {{kModel, 1}, {kRaster, 2}, {kProjected, 32633}};
    const QVector<double> plain{300000, 10, 0, 5000000, 0, -20};

    QTest::newRow("scale and tie point") << northUp().bytes() << plain;
    QTest::newRow("big-endian") << northUp(true).keys({{kModel, 1}, {kRaster, 1}}).bytes() << plain;
    // The numbers belong to the centre of the cell: the corner lies half a cell west and north.
    QTest::newRow("pixel is point") << northUp().keys(point).bytes() << QVector<double>{299995, 10, 0, 5000010, 0, -20};
    QTest::newRow("tie point in the middle")
        << GeoTiffBuilder().doubles(kScale, {2, 4, 0}).doubles(kTie, {100, 50, 0, 1000, 2000, 0}).bytes()
        << QVector<double>{800, 2, 0, 2200, 0, -4};
    QTest::newRow("more tie points than one: the first")
        << GeoTiffBuilder().doubles(kScale, {2, 4, 0}).doubles(kTie, {0, 0, 0, 7, 9, 0, 1, 1, 0, 99, 99, 0}).bytes()
        << QVector<double>{7, 2, 0, 9, 0, -4};
    QTest::newRow("negative ScaleY of a writer that means north-up")
        << GeoTiffBuilder().doubles(kScale, {10, -20, 0}).doubles(kTie, {0, 0, 0, 300000, 5000000, 0}).bytes() << plain;
    // What GDAL 3.6 wrote for a grid turned by 30 degrees.
    const std::vector<double> matrix = {8.66, 5, 0, 4000000, 5, -8.66, 0, 3000000, 0, 0, 0, 0, 0, 0, 0, 1};
    QTest::newRow("matrix") << GeoTiffBuilder().doubles(kMatrix, matrix).bytes()
                            << QVector<double>{4000000, 8.66, 5, 3000000, 5, -8.66};
    QTest::newRow("matrix, pixel is point") << GeoTiffBuilder().doubles(kMatrix, matrix).keys(point).bytes()
                                            << QVector<double>{4000000 - 6.83, 8.66, 5, 3000000 + 1.83, 5, -8.66};
    QTest::newRow("matrix under its old number")
        << GeoTiffBuilder().doubles(33920, matrix).bytes() << QVector<double>{4000000, 8.66, 5, 3000000, 5, -8.66};
    QTest::newRow("tie points only") << GeoTiffBuilder().doubles(kTie, {0, 0, 0, 7, 9, 0, 1, 1, 0, 99, 99, 0}).bytes()
                                     << QVector<double>{};
    QTest::newRow("scale of NaN")
        << GeoTiffBuilder().doubles(kScale, {kNan, 1, 0}).doubles(kTie, {0, 0, 0, 7, 9, 0}).bytes()
        << QVector<double>{};
    QTest::newRow("matrix without area")
        << GeoTiffBuilder().doubles(kMatrix, {1, 2, 0, 0, 2, 4, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}).bytes()
        << QVector<double>{};
    QTest::newRow("no TIFF") << Bytes{'x', 'y', 'z'} << QVector<double>{};
    QTest::newRow("empty") << Bytes{} << QVector<double>{};
}

void TestGeoJp2::place()
{
    QFETCH(Bytes, content);
    QFETCH(QVector<double>, expected);
    std::vector<std::string> warnings;
    const Placement placement = readGeoTiff(content, &warnings);
    QCOMPARE(placement.transform.has_value(), !expected.isEmpty());
    QCOMPARE(warnings.empty(), !expected.isEmpty());
    for (int i = 0; i < expected.size(); ++i)
        QCOMPARE((*placement.transform)[static_cast<std::size_t>(i)], expected[i]);
}

void TestGeoJp2::system_data()
{
    QTest::addColumn<Keys>("keys");
    QTest::addColumn<int>("epsg");
    QTest::addColumn<int>("units");
    QTest::addColumn<QString>("datum");
    const auto row = [](const char *name, const Keys &keys, int epsg, int units, const char *datum) {
        QTest::newRow(name) << keys << epsg << units << QString::fromUtf8(datum);
    };
    row("projected", {{kModel, 1}, {kProjected, 32633}}, 32633, PLK_UNITS_METERS, "WGS84");
    row("geographic", {{kModel, 2}, {kGeographic, 4267}}, 4267, PLK_UNITS_DEGREES, "NAD27");
    row("feet", {{kModel, 1}, {kProjected, 2263}, {kLinearUnits, 9003}}, 2263, PLK_UNITS_FEET, "NAD83");
    row("no model type", {{kProjected, 27700}}, 27700, PLK_UNITS_METERS, "OSGB36");
    row("code beyond the register", {{kModel, 2}, {kGeographic, 32767}}, 0, PLK_UNITS_DEGREES, "USER-DEFINED");
    row("code not in the register", {{kModel, 1}, {kProjected, 1999}}, 1999, PLK_UNITS_INVALID, "EPSG:1999");
}

void TestGeoJp2::system()
{
    QFETCH(Keys, keys);
    std::vector<std::string> warnings;
    const Placement placement = readGeoTiff(northUp().keys(keys).bytes(), &warnings);
    QVERIFY(placement.crs);
    QTEST(placement.crs->epsg, "epsg");
    QTEST(static_cast<int>(placement.crs->units), "units");
    QTEST(QString::fromStdString(placement.crs->datum), "datum");
    QVERIFY(warnings.empty());
}

void TestGeoJp2::userDefinedUtmGetsItsCode()
{
    // A transverse Mercator of its own on WGS 84; the doubles are longitude, latitude, scale, easting and northing.
    const auto content = [](const std::vector<double> &parameters) {
        return northUp()
            .shorts(
                34735,
                {1,    1,     0, 11,    kModel, 0,     1, 1, kGeographic,  0,     1, 4326, kProjected, 0,     1, 32767,
                 3074, 0,     1, 32767, 3075,   0,     1, 1, kLinearUnits, 0,     1, 9001, 3080,       34736, 1, 0,
                 3081, 34736, 1, 1,     3082,   34736, 1, 3, 3083,         34736, 1, 4,    3092,       34736, 1, 2})
            .doubles(34736, parameters)
            .bytes();
    };
    std::vector<std::string> warnings;
    Placement placement = readGeoTiff(content({-69, 0, 0.9996, 500000, 1e7}), &warnings);
    QVERIFY(placement.crs);
    QCOMPARE(placement.crs->epsg, 32719);

    placement = readGeoTiff(content({-69, 0, 0.9999, 500000, 1e7}), &warnings);
    QVERIFY(placement.crs);
    QCOMPARE(placement.crs->epsg, 0);
    QCOMPARE(placement.crs->projection, std::string("Transverse Mercator"));
    QCOMPARE(placement.crs->datum, std::string("WGS84"));
    QCOMPARE(placement.crs->units, PLK_UNITS_METERS);

    const Keys byZone = {{kModel, 1}, {kGeographic, 4269}, {kProjected, 32767}, {3074, 16014}, {kLinearUnits, 9001}};
    placement = readGeoTiff(northUp().keys(byZone).bytes(), &warnings);
    QVERIFY(placement.crs);
    QCOMPARE(placement.crs->epsg, 26914);
    QVERIFY(warnings.empty());
}

void TestGeoJp2::otherUnitsThanTheCodes()
{
    std::vector<std::string> warnings;
    const Keys keys = {{kModel, 1}, {kProjected, 32633}, {kLinearUnits, 9002}};
    const Placement placement = readGeoTiff(northUp().keys(keys).bytes(), &warnings);
    QVERIFY(placement.crs);
    QCOMPARE(placement.crs->epsg, 0);
    QCOMPARE(placement.crs->units, PLK_UNITS_FEET);
    QCOMPARE(warnings.size(), std::size_t(1));
}

void TestGeoJp2::brokenKeysLeaveThePlace()
{
    std::vector<std::string> warnings;
    // The directory claims 4000 keys and has one.
    const Placement placement =
        readGeoTiff(northUp().shorts(34735, {1, 1, 0, 4000, kModel, 0, 1, 1}).bytes(), &warnings);
    QVERIFY(placement.transform);
    QVERIFY(!placement.crs);
    QVERIFY(!warnings.empty());
}

void TestGeoJp2::rpcTag()
{
    std::vector<double> numbers;
    for (int i = 0; i < 92; ++i)
        numbers.push_back(i + 0.5);
    std::vector<std::string> warnings;
    const auto found = readRpcTag(GeoTiffBuilder().doubles(50844, numbers).bytes(), &warnings);
    QVERIFY(found);
    QVERIFY(std::equal(numbers.begin(), numbers.end(), found->begin()));
    QVERIFY(!readRpcTag(northUp().bytes(), &warnings));
    QVERIFY(warnings.empty());

    numbers.back() = kNan;
    QVERIFY(!readRpcTag(GeoTiffBuilder().doubles(50844, numbers).bytes(), &warnings));
    numbers.pop_back();
    QVERIFY(!readRpcTag(GeoTiffBuilder().doubles(50844, numbers).bytes(), &warnings));
    QCOMPARE(warnings.size(), std::size_t(2));
}

/// An ellipsoid as large as a double can be, whose decimal digits are more than a text of ordinary size holds.
void TestGeoJp2::absurdEllipsoid()
{
    const GeoTiffBuilder::Bytes content =
        northUp()
            .shorts(34735, {1, 1,     0,    6, kModel, 0,  1,    1,     kGeographic, 0, 1,    32767, kProjected, 0,
                            1, 32767, 3075, 0, 1,      24, 2057, 34736, 1,           0, 2058, 34736, 1,          0})
            .doubles(34736, {1.7e308})
            .bytes();
    std::vector<std::string> warnings;
    const Placement placement = readGeoTiff(content, &warnings);
    QVERIFY(placement.crs);
    QCOMPARE(placement.crs->projection, std::string("Sinusoidal"));
}

/// Cuts, changed bytes and counts that lie. Worth most under the sanitizers; here it also shows that damage is noticed.
void TestGeoJp2::damageIsNoCrash()
{
    const Bytes whole = northUp()
                            .keys({{kModel, 1}, {kRaster, 2}, {kGeographic, 4326}, {kProjected, 32767}, {3074, 16033}})
                            .text(34737, "UTM zone 33N|")
                            .doubles(50844, std::vector<double>(92, 1.0))
                            .bytes();
    std::vector<std::string> warnings;
    for (std::size_t length = 0; length < whole.size(); length += 3) {
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        readGeoTiff(cut, &warnings);
        readRpcTag(cut, &warnings);
    }
    QVERIFY(!warnings.empty());
    for (std::size_t i = 0; i < std::min<std::size_t>(whole.size(), 420); ++i) {
        for (int value : {0x00, 0x7f, 0x80, 0xff}) {
            Bytes changed = whole;
            changed[i] = static_cast<std::uint8_t>(value);
            readGeoTiff(changed, &warnings);
            readRpcTag(changed, &warnings);
        }
    }
    for (int type : {1, 2, 3, 4, 5, 7, 12, 13, 16, 99}) {
        for (int tag : {33550, 33922, 34264, 34735, 34736, 34737, 50844}) {
            const Bytes lying =
                GeoTiffBuilder().raw(std::uint16_t(tag), std::uint16_t(type), 0xfffffff0u, Bytes(64, 0x3f)).bytes();
            QVERIFY(!readGeoTiff(lying, &warnings).transform);
            readRpcTag(lying, &warnings);
        }
    }
}

QTEST_APPLESS_MAIN(TestGeoJp2)
#include "tst_geojp2.moc"
