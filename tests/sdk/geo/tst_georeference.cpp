#include "data/files.h"
#include "geotiffbuilder.h"

#include "geo/crsnames.h"
#include "geo/geojp2.h"
#include "geo/georeference.h"

#include <QTest>

#include <thread>

using namespace xrv;

namespace {

UuidBox geoBox(const Bytes &content)
{
    return {kGeoJp2Uuid, content};
}

/// 32633, corner (300000, 5000000), cells of 10 x 20.
Bytes plainGeoTiff(std::uint16_t epsg = 32633)
{
    return GeoTiffBuilder()
        .doubles(33550, {10, 20, 0})
        .doubles(33922, {0, 0, 0, 300000, 5000000, 0})
        .keys({{1024, 1}, {1025, 1}, {3072, epsg}})
        .bytes();
}

LabelledXml grid(const std::string &srsName, const std::string &origin)
{
    return {"gml.root-instance",
            "<RectifiedGrid srsName='" + srsName + "'><origin><pos>" + origin +
                "</pos></origin><offsetVector>10 0</offsetVector><offsetVector>0 -20</offsetVector>"
                "</RectifiedGrid>"};
}

} // namespace

class TestGeoReference : public QObject
{
    Q_OBJECT

private slots:
    void order_data();
    void order();
    void worldFileKeepsTheSystemOfABox();
    void secondGeoBox();
    void increments_data();
    void increments();
    void systems_data();
    void systems();
    void dataPath();
    void threads();
};

void TestGeoReference::order_data()
{
    using Origin = GeoReference::Origin;
    QTest::addColumn<bool>("hasBox");
    QTest::addColumn<QString>("gmlName"); // empty: no GML
    QTest::addColumn<QString>("gmlOrigin");
    QTest::addColumn<QByteArray>("world");
    QTest::addColumn<int>("origin");
    QTest::addColumn<int>("epsg");
    QTest::addColumn<double>("x");
    QTest::addColumn<int>("warningCount");
    const auto row = [](const char *name, bool box, const char *gmlName, const char *gmlOrigin, const char *world,
                        Origin origin, int epsg, double x, int warnings) {
        QTest::newRow(name) << box << QString::fromLatin1(gmlName) << QString::fromLatin1(gmlOrigin)
                            << QByteArray(world) << static_cast<int>(origin) << epsg << x << warnings;
    };
    const char *same = "10 0 0 -20 300005.0000001 4999990", *other = "10 0 0 -20 300015 4999990";
    row("all agree", true, "EPSG:32633", "300005 4999990", same, Origin::GeoJp2, 32633, 300000, 0);
    row("GML at another place", true, "EPSG:32633", "300009 4999990", same, Origin::GeoJp2, 32633, 300000, 1);
    row("GML in another system", true, "EPSG:32632", "300005 4999990", "", Origin::GeoJp2, 32633, 300000, 1);
    row("both, and another world file", true, "EPSG:32632", "7 4999990", other, Origin::GeoJp2, 32633, 300000, 3);
    row("GML before the world file", false, "EPSG:32632", "300005 4999990", other, Origin::Gml, 32632, 300000, 1);
    row("nothing", false, "", "", "", Origin::None, 0, 0, 0);
    row("world file alone", false, "", "", other, Origin::WorldFile, 0, 300010, 0);
    row("GML without a place", false, "EPSG:32632", "nowhere", other, Origin::WorldFile, 32632, 300010, 1);
}

void TestGeoReference::order()
{
    QFETCH(bool, hasBox);
    QFETCH(QString, gmlName);
    QFETCH(QString, gmlOrigin);
    QFETCH(QByteArray, world);
    const FileFolder folder;
    Jp2Structure structure;
    if (hasBox)
        structure.uuidBoxes.push_back(geoBox(plainGeoTiff()));
    if (!gmlName.isEmpty())
        structure.gml.push_back(grid(gmlName.toStdString(), gmlOrigin.toStdString()));
    if (!world.isEmpty())
        folder.write("a.j2w", world);
    std::vector<std::string> warnings;
    const GeoReference geo = readGeoReference(structure, 64, 48, folder.path("a.jp2"), &warnings);
    QTEST(static_cast<int>(geo.origin), "origin");
    QTEST(geo.epsg, "epsg");
    QFETCH(double, x);
    QVERIFY(std::abs(geo.transform[0] - x) < 1e-5);
    QCOMPARE(geo.transform[4], 0.0);
    QCOMPARE(geo.units, geo.epsg != 0 ? PLK_UNITS_METERS : PLK_UNITS_INVALID);
    QTEST(static_cast<int>(warnings.size()), "warningCount");
}

void TestGeoReference::worldFileKeepsTheSystemOfABox()
{
    const FileFolder folder;
    folder.write("a.wld", QByteArray("0.5\n0\n0\n-0.5\n10.25\n49.75\n"));
    Jp2Structure structure;
    structure.uuidBoxes.push_back(geoBox(GeoTiffBuilder().keys({{1024, 2}, {2048, 4326}}).bytes()));
    std::vector<std::string> warnings;
    const GeoReference placed = readGeoReference(structure, 8, 8, folder.path("a.jp2"), &warnings);
    QVERIFY(placed.origin == GeoReference::Origin::WorldFile);
    QCOMPARE(placed.epsg, 4326);
    QCOMPARE(placed.units, PLK_UNITS_DEGREES);
    QCOMPARE(placed.transform[0], 10.0);
    // Without a place the increments are cells, whatever the system.
    const GeoReference unplaced = readGeoReference(structure, 8, 8, {}, &warnings);
    QVERIFY(unplaced.origin == GeoReference::Origin::None);
    QCOMPARE(unplaced.epsg, 4326);
    QCOMPARE(unplaced.units, PLK_UNITS_INVALID);
    QVERIFY(warnings.empty());
}

void TestGeoReference::secondGeoBox()
{
    Jp2Structure structure;
    structure.uuidBoxes = {geoBox({'b', 'a', 'd'}), UuidBox{}, geoBox(plainGeoTiff())};
    std::vector<std::string> warnings;
    const GeoReference geo = readGeoReference(structure, 64, 48, {}, &warnings);
    QCOMPARE(geo.epsg, 32633);
    QCOMPARE(geo.transform[3], 5000000.0);
    QCOMPARE(warnings.size(), std::size_t(1));
}

void TestGeoReference::increments_data()
{
    QTest::addColumn<QVector<double>>("t"); // x per column, x per row, y per column, y per row
    QTest::addColumn<double>("incrementX");
    QTest::addColumn<double>("incrementY");
    QTest::addColumn<double>("rotation");
    const auto row = [](const char *name, const QVector<double> &t, double x, double y, double rotation) {
        QTest::newRow(name) << t << x << y << rotation;
    };
    row("north-up", {2, 0, 0, -3}, 2, -3, 0);
    row("south-up", {2, 0, 0, 3}, 2, 3, 0);
    row("mirrored", {-2, 0, 0, -3}, -2, -3, 0);
    row("upside down", {-2, 0, 0, 3}, -2, 3, 0);
    // A step along a row goes 3 east and 4 south: clockwise by the angle of that triangle.
    row("clockwise", {3, -4, -4, -3}, 5, -5, 53.13010235415598);
    row("counter-clockwise", {3, 4, 4, -3}, 5, -5, -53.13010235415598);
    row("rows run south", {0, -2, -2, 0}, 2, -2, 90);
    row("rows run north", {0, 2, 2, 0}, 2, -2, -90);
    row("south-up, clockwise", {3, 4, -4, 3}, 5, 5, 53.13010235415598);
}

void TestGeoReference::increments()
{
    QFETCH(QVector<double>, t);
    GeoReference geo;
    geo.transform = {7, t[0], t[1], 9, t[2], t[3]};
    QTEST(geo.incrementX(), "incrementX");
    QTEST(geo.incrementY(), "incrementY");
    QTEST(geo.clockwiseRotationDegrees(), "rotation");
}

void TestGeoReference::systems_data()
{
    QTest::addColumn<int>("epsg");
    QTest::addColumn<QString>("datum");
    QTest::addColumn<QString>("projection");
    QTest::addColumn<int>("units");
    QTest::addColumn<bool>("isNorthFirst");
    const auto row = [](int epsg, const char *datum, const char *projection, PLKCellSizeUnits units,
                        bool isNorthFirst) {
        QTest::addRow("%d", epsg) << epsg << QString::fromUtf8(datum) << QString::fromUtf8(projection)
                                  << static_cast<int>(units) << isNorthFirst;
    };
    // Names, units and axes as the EPSG register has them.
    row(4326, "WGS84", "GEODETIC", PLK_UNITS_DEGREES, true);
    row(4269, "NAD83", "GEODETIC", PLK_UNITS_DEGREES, true);
    row(32633, "WGS84", "UTM zone 33N", PLK_UNITS_METERS, false);
    row(26914, "NAD83", "UTM zone 14N", PLK_UNITS_METERS, false);
    row(3857, "WGS84", "Popular Visualisation Pseudo-Mercator", PLK_UNITS_METERS, false);
    row(3035, "ETRS89", "Europe Equal Area 2001", PLK_UNITS_METERS, true);
    row(31468, "DHDN", "3-degree Gauss-Kruger zone 4", PLK_UNITS_METERS, true);
    row(3031, "WGS84", "Antarctic Polar Stereographic", PLK_UNITS_METERS, false);
    row(32661, "WGS84", "Universal Polar Stereographic North", PLK_UNITS_METERS, true);
    row(2263, "NAD83", "SPCS83 New York Long Island zone (US Survey feet)", PLK_UNITS_FEET, false);
    row(4807, "NTF (Paris)", "GEODETIC", PLK_UNITS_INVALID, true); // in grads
    row(7415, "Amersfoort", "RD New", PLK_UNITS_METERS, false);    // with heights
    row(0, "RAW", "RAW", PLK_UNITS_INVALID, false);
    row(-5, "RAW", "RAW", PLK_UNITS_INVALID, false);
}

void TestGeoReference::systems()
{
    QFETCH(int, epsg);
    const CrsDescription crs = crsOfEpsg(epsg);
    QCOMPARE(crs.epsg, std::max(epsg, 0));
    QTEST(QString::fromStdString(crs.datum), "datum");
    QTEST(QString::fromStdString(crs.projection), "projection");
    QTEST(static_cast<int>(crs.units), "units");
    QTEST(crs.isNorthFirst, "isNorthFirst");
}

void TestGeoReference::dataPath()
{
    const FileFolder folder;
    setGeodeticDataPath(folder.path()); // has no proj.db
    QCOMPARE(crsOfEpsg(27700).projection, std::string("British National Grid"));
    folder.write("proj.db", QByteArray("no database"));
    setGeodeticDataPath(folder.path());
    QCOMPARE(crsOfEpsg(2154).projection, std::string("Lambert-93"));
    setGeodeticDataPath("C:\\nowhere\\..\\..");
    setGeodeticDataPath({});
    QCOMPARE(crsOfEpsg(2154).projection, std::string("Lambert-93"));
}

void TestGeoReference::threads()
{
    const auto work = [](int first) {
        for (int i = 0; i < 40; ++i) {
            crsOfEpsg(32601 + (first + i) % 60);
            Jp2Structure structure;
            structure.uuidBoxes.push_back(geoBox(plainGeoTiff(32767)));
            std::vector<std::string> warnings;
            readGeoReference(structure, 64, 48, {}, &warnings);
            if (i % 10 == 0)
                setGeodeticDataPath({});
        }
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back(work, i * 7);
    for (std::thread &thread : threads)
        thread.join();
    QCOMPARE(crsOfEpsg(32601).projection, std::string("UTM zone 1N"));
}

QTEST_APPLESS_MAIN(TestGeoReference)
#include "tst_georeference.moc"
