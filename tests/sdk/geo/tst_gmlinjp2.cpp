#include "geo/gmlcrs.h"
#include "geo/gmlinjp2.h"

#include <QTest>

using namespace xrv;

namespace {

// A root instance with one grid as GDAL 3.6 writes it in version 1 (GML 3.1.1).
const char kVersionOne[] =
    "<gml:FeatureCollection xmlns:gml='http://www.opengis.net/gml'><gml:boundedBy><gml:Envelope srsName='SRS'>"
    "<gml:lowerCorner>0 0</gml:lowerCorner><gml:upperCorner>1 1</gml:upperCorner></gml:Envelope></gml:boundedBy>"
    "<gml:featureMember><gml:FeatureCollection><gml:featureMember><gml:RectifiedGridCoverage dimension='2' "
    "gml:id='RGC0001'>"
    "<gml:rectifiedGridDomain><gml:RectifiedGrid dimension='2'><gml:limits><gml:GridEnvelope><gml:low>0 0</gml:low>"
    "<gml:high>63 47</gml:high></gml:GridEnvelope></gml:limits><gml:axisName>AXIS1</gml:axisName>"
    "<gml:axisName>AXIS2</gml:axisName><gml:origin><gml:Point gml:id='P0001' srsName='SRS'><gml:pos>ORIGIN</gml:pos>"
    "</gml:Point></gml:origin><gml:offsetVector srsName='SRS'>ROW</gml:offsetVector>"
    "<gml:offsetVector srsName='SRS'>COLUMN</gml:offsetVector></gml:RectifiedGrid></gml:rectifiedGridDomain>"
    "</gml:RectifiedGridCoverage></gml:featureMember></gml:FeatureCollection></gml:featureMember></"
    "gml:FeatureCollection>";

// The same in version 2 (GML 3.2), with other prefixes, as any writer may choose, and the name at the grid only.
const char kVersionTwo[] =
    "<?xml version='1.0' encoding='UTF-8'?><jp:GMLJP2CoverageCollection xmlns:g='http://www.opengis.net/gml/3.2' "
    "xmlns:jp='http://www.opengis.net/gmljp2/2.0'><g:domainSet nilReason='inapplicable'/><jp:featureMember>"
    "<jp:GMLJP2ReferenceableGridCoverage><g:domainSet><g:RectifiedGrid dimension='2' srsName='SRS'><g:limits>"
    "<g:GridEnvelope><g:low>0 0</g:low><g:high>63 47</g:high></g:GridEnvelope></g:limits><g:axisLabels>i "
    "j</g:axisLabels>"
    "<g:origin><g:Point><g:pos>ORIGIN</g:pos></g:Point></g:origin><g:offsetVector>ROW</g:offsetVector>"
    "<g:offsetVector>COLUMN</g:offsetVector></g:RectifiedGrid></g:domainSet></jp:GMLJP2ReferenceableGridCoverage>"
    "</jp:featureMember></jp:GMLJP2CoverageCollection>";

std::string filled(const char *text, const QVector<QPair<const char *, std::string>> &values)
{
    QByteArray result(text);
    for (const auto &value : values)
        result.replace(value.first, QByteArray::fromStdString(value.second));
    return result.toStdString();
}

std::string versionOne(const std::string &srsName, const std::string &origin, const std::string &alongRow,
                       const std::string &downColumn, const std::string &firstAxis = "x",
                       const std::string &secondAxis = "y")
{
    return filled(kVersionOne, {{"SRS", srsName},
                                {"AXIS1", firstAxis},
                                {"AXIS2", secondAxis},
                                {"ORIGIN", origin},
                                {"ROW", alongRow},
                                {"COLUMN", downColumn}});
}

std::string versionTwo(const std::string &srsName, const std::string &origin, const std::string &alongRow,
                       const std::string &downColumn)
{
    return filled(kVersionTwo, {{"SRS", srsName}, {"ORIGIN", origin}, {"ROW", alongRow}, {"COLUMN", downColumn}});
}

std::vector<LabelledXml> rootOf(const std::string &xml)
{
    return {{"gml.root-instance", xml}};
}

} // namespace

class TestGmlInJp2 : public QObject
{
    Q_OBJECT

private slots:
    void srsName_data();
    void srsName();
    void grid_data();
    void grid();
    void rootInstanceComesFirst();
    void dictionary();
    void envelopeOnly();
    void damage_data();
    void damage();
};

void TestGmlInJp2::srsName_data()
{
    QTest::addColumn<int>("epsg");
    QTest::addColumn<bool>("isRegisterOrder");
    const auto row = [](const char *name, int epsg, bool order) { QTest::newRow(name) << epsg << order; };
    row("urn:ogc:def:crs:EPSG::4326", 4326, true);
    row("urn:ogc:def:crs:EPSG:6.17:3035", 3035, true);
    row("urn:x-ogc:def:crs:EPSG:32633", 32633, true);
    row("urn:ogc:def:crs,crs:EPSG::27700,crs:EPSG::5701", 27700, true);
    row("http://www.opengis.net/def/crs/EPSG/0/3857", 3857, true);
    row("https://www.opengis.net/def/crs/EPSG/8.9/31468", 31468, true);
    row("http://www.opengis.net/gml/srs/epsg.xml#4326", 4326, false);
    row("EPSG:32633", 32633, false);
    row(" epsg:4326 ", 4326, false);
    row("urn:ogc:def:crs:OGC::CRS84", 4326, false);
    row("http://www.opengis.net/def/crs/OGC/1.3/CRS84", 4326, false);
    row("urn:ogc:def:crs:EPSG::", 0, false);
    row("urn:ogc:def:crs:EPSG::99999999999999", 0, false);
    row("urn:ogc:def:crs:EPSG::-4326", 0, false);
    row("something else", 0, false);
    row("", 0, false);
}

void TestGmlInJp2::srsName()
{
    const SrsName name = parseSrsName(QTest::currentDataTag());
    QTEST(name.epsg, "epsg");
    QTEST(name.isRegisterOrder, "isRegisterOrder");
}

void TestGmlInJp2::grid_data()
{
    QTest::addColumn<QString>("xml");
    QTest::addColumn<int>("epsg");
    QTest::addColumn<QVector<double>>("expected");
    const auto row = [](const char *name, const std::string &xml, int epsg, const QVector<double> &expected) {
        QTest::newRow(name) << QString::fromStdString(xml) << epsg << expected;
    };
    const char *wgs84 = "urn:ogc:def:crs:EPSG::4326";
    const QVector<double> plain{10.5, 0.01, 0, 47.25, 0, -0.02};

    // Origins and vectors as GDAL 3.6 wrote them for grids with these corners (gdal_create -a_ullr).
    row("v1 latitude first", versionOne(wgs84, "47.24 10.505", "0 0.01", "-0.02 0"), 4326, plain);
    row("v2 latitude first",
        versionTwo("http://www.opengis.net/def/crs/EPSG/0/4326", "47.24 10.505", "0 0.01", "-0.02 0"), 4326, plain);
    row("v1 northing first", versionOne("urn:ogc:def:crs:EPSG::3035", "3209975 4321012.5", "0 25", "-50 0"), 3035,
        {4321000, 25, 0, 3210000, 0, -50});
    row("v2 northing first, axes called X and Y by the register",
        versionTwo("http://www.opengis.net/def/crs/EPSG/0/31468", "5332998.5 4468001", "0 2", "-3 0"), 31468,
        {4468000, 2, 0, 5333000, 0, -3});
    row("v1 easting first", versionOne("urn:ogc:def:crs:EPSG::2154", "700002.5 6599997.5", "5 0", "0 -5"), 2154,
        {700000, 5, 0, 6600000, 0, -5});
    row("polar: both axes point north, easting first",
        versionTwo("http://www.opengis.net/def/crs/EPSG/0/3031", "-999950 499900", "100 0", "0 -200"), 3031,
        {-1000000, 100, 0, 500000, 0, -200});
    row("short name: x before y", versionOne("EPSG:4326", "10.505 47.24", "0.01 0", "0 -0.02"), 4326, plain);
    row("CRS84: x before y", versionTwo("urn:ogc:def:crs:OGC::CRS84", "10.505 47.24", "0.01 0", "0 -0.02"), 4326,
        plain);

    row("vectors in x, y order though the name says latitude first",
        versionOne(wgs84, "47.24 10.505", "0.01 0", "0 -0.02"), 4326, plain);
    row("everything in x, y order, off the globe as latitude", versionOne(wgs84, "100.505 47.24", "0.01 0", "0 -0.02"),
        4326, {100.5, 0.01, 0, 47.25, 0, -0.02});
    row("axes named easting, northing",
        versionOne("urn:ogc:def:crs:EPSG::3035", "4321012.5 3209975", "25 0", "0 -50", "Easting", "Northing"), 3035,
        {4321000, 25, 0, 3210000, 0, -50});

    // South-up, turned by 30 degrees and turned by a quarter: all as GDAL 3.6 wrote them, latitude first.
    row("south-up", versionOne(wgs84, "50.0004 10.0004", "0 0.0008", "0.0008 0"), 4326, {10, 0.0008, 0, 50, 0, 0.0008});
    row("turned", versionOne(wgs84, "49.999817 10.000683", "0.0005 0.000866", "-0.000866 0.0005"), 4326,
        {10, 0.000866, 0.0005, 50, 0.0005, -0.000866});
    row("turned, vectors in x, y order",
        versionOne(wgs84, "49.999817 10.000683", "0.000866 0.0005", "0.0005 -0.000866"), 4326,
        {10, 0.000866, 0.0005, 50, 0.0005, -0.000866});
    row("a quarter turn", versionOne(wgs84, "49.9996 9.9996", "-0.0008 0", "0 -0.0008"), 4326,
        {10, 0, -0.0008, 50, -0.0008, 0});

    row("numbers with a third dimension, commas and line breaks",
        versionOne("EPSG:32633", "\n 300005,4999990, 12", "10\t0 0", "0 -20 0"), 32633,
        {300000, 10, 0, 5000000, 0, -20});
}

void TestGmlInJp2::grid()
{
    QFETCH(QString, xml);
    QFETCH(QVector<double>, expected);
    std::vector<std::string> warnings;
    const Placement placement = readGml(rootOf(xml.toStdString()), &warnings);
    QVERIFY(warnings.empty());
    QVERIFY(placement.crs && placement.transform);
    QTEST(placement.crs->epsg, "epsg");
    for (int i = 0; i < expected.size(); ++i) {
        const double actual = (*placement.transform)[static_cast<std::size_t>(i)];
        QVERIFY2(std::abs(actual - expected[i]) <= 1e-9 * std::max(1.0, std::abs(expected[i])),
                 qPrintable(QStringLiteral("%1: %2").arg(i).arg(actual, 0, 'g', 15)));
    }
}

void TestGmlInJp2::rootInstanceComesFirst()
{
    std::vector<std::string> warnings;
    const Placement placement =
        readGml({{"other.gml", versionOne("EPSG:32601", "0 0", "1 0", "0 -1")},
                 {"gml.root-instance", versionTwo("EPSG:32633", "300005 4999990", "10 0", "0 -20")}},
                &warnings);
    QVERIFY(placement.crs && placement.transform);
    QCOMPARE(placement.crs->epsg, 32633);
    QCOMPARE((*placement.transform)[0], 300000.0);
}

void TestGmlInJp2::dictionary()
{
    const std::string definition =
        "<gml:Dictionary><gml:dictionaryEntry><gml:ProjectedCRS gml:id='ogrcrs1'><gml:srsName>unknown</gml:srsName>"
        "<gml:baseCRS><gml:GeographicCRS gml:id='ogrcrs2'><gml:usesGeodeticDatum><gml:GeodeticDatum gml:id='ogrcrs6'>"
        "<gml:datumName>WGS_1984</gml:datumName></gml:GeodeticDatum></gml:usesGeodeticDatum></gml:GeographicCRS></"
        "gml:baseCRS>"
        "<gml:definedByConversion><gml:Conversion><gml:coordinateOperationName>Sinusoidal</gml:coordinateOperationName>"
        "</gml:Conversion></gml:definedByConversion><gml:usesCartesianCS><gml:CartesianCS><gml:usesAxis>"
        "<gml:CoordinateSystemAxis gml:uom='urn:ogc:def:uom:EPSG::9003'/></gml:usesAxis></gml:CartesianCS>"
        "</gml:usesCartesianCS></gml:ProjectedCRS></gml:dictionaryEntry></gml:Dictionary>";
    std::vector<std::string> warnings;
    const Placement placement =
        readGml({{"gml.root-instance", versionOne("gmljp2://xml/CRSDictionary.gml#ogrcrs1", "101 199", "2 0", "0 -2")},
                 {"CRSDictionary.gml", definition}},
                &warnings);
    QVERIFY(placement.crs && placement.transform);
    QCOMPARE((*placement.transform)[0], 100.0);
    QCOMPARE(placement.crs->epsg, 0);
    QCOMPARE(placement.crs->datum, std::string("WGS_1984"));
    QCOMPARE(placement.crs->projection, std::string("Sinusoidal"));
    QCOMPARE(placement.crs->units, PLK_UNITS_FEET);
}

void TestGmlInJp2::envelopeOnly()
{
    std::vector<std::string> warnings;
    const Placement placement = readGml(rootOf("<a><Envelope srsName='EPSG:27700'/></a>"), &warnings);
    QVERIFY(placement.crs && !placement.transform);
    QCOMPARE(placement.crs->epsg, 27700);
    QVERIFY(warnings.empty());
}

void TestGmlInJp2::damage_data()
{
    QTest::addColumn<QString>("xml");
    const auto row = [](const char *name, const std::string &xml) {
        QTest::newRow(name) << QString::fromStdString(xml);
    };
    row("no XML", "\x01\x02");
    row("empty", "");
    row("cut", versionOne("EPSG:32633", "1 2", "1 0", "0 -1").substr(0, 700));
    row("one vector", "<RectifiedGrid><origin><pos>1 2</pos></origin><offsetVector>1 0</offsetVector></RectifiedGrid>");
    row("no origin", "<RectifiedGrid><offsetVector>1 0</offsetVector><offsetVector>0 1</offsetVector></RectifiedGrid>");
    row("infinite", versionOne("EPSG:32633", "inf 2", "1 0", "0 -1"));
    row("not a number", versionOne("EPSG:4326", "nan nan", "nan 0", "0 -1"));
    row("too large a number", versionOne("EPSG:4326", "1e999 0", "1 0", "0 -1"));
    row("no area", versionOne("EPSG:4326", "1 2", "1 1", "1 1"));
    row("one number only", versionOne("EPSG:4326", "1", "1 0", "0 -1"));
    row("entities that grow",
        "<!DOCTYPE a [<!ENTITY b \"&c;&c;&c;\"><!ENTITY c \"&d;&d;&d;\">]><RectifiedGrid>&b;</RectifiedGrid>");
    std::string deep;
    for (int i = 0; i < 100000; ++i)
        deep += "<a>";
    row("a hundred thousand levels", deep);
}

void TestGmlInJp2::damage()
{
    QFETCH(QString, xml);
    std::vector<std::string> warnings;
    const Placement placement = readGml(rootOf(xml.toStdString()), &warnings);
    QVERIFY(!placement.transform);
    QCOMPARE(warnings.size(), std::size_t(1));
}

QTEST_APPLESS_MAIN(TestGmlInJp2)
#include "tst_gmlinjp2.moc"
