#include "identify/placetext.h"
#include "views/viewtexts.h"

#include <QLocale>
#include <QTest>

#include <limits>

namespace ViewTexts = Viewer::ViewTexts;

class TestViewTexts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); }
    void tellsPixelsApart_data();
    void tellsPixelsApart();
    void zoom_data();
    void zoom();
    void followsLocale();
    void places_data();
    void places();
};

void TestViewTexts::tellsPixelsApart_data()
{
    QTest::addColumn<double>("unitsPerPixel");
    QTest::addColumn<QString>("text");
    QTest::newRow("metres, coarse") << 240.0 << "X 299940  Y -4100000";
    QTest::newRow("metres, one") << 1.0 << "X 299940.1  Y -4100000.3";
    QTest::newRow("centimetres") << 0.01 << "X 299940.125  Y -4100000.250";
    QTest::newRow("nothing") << 0.0 << "X 299940  Y -4100000";
    QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN() << "X 299940  Y -4100000";
}

void TestViewTexts::tellsPixelsApart()
{
    QFETCH(double, unitsPerPixel);
    QTEST(ViewTexts::coordinates(QPointF(299940.125, -4100000.25), unitsPerPixel), "text");
}

void TestViewTexts::zoom_data()
{
    QTest::addColumn<double>("cellSize");
    QTest::addColumn<double>("unitsPerPixel");
    QTest::addColumn<QString>("text");
    QTest::newRow("native") << 60.0 << 60.0 << "100 %";
    QTest::newRow("south up") << -60.0 << 240.0 << "25 %";
    QTest::newRow("far out") << 1.0 << 1234.0 << "0.081 %";
    QTest::newRow("far in") << 1.0 << 0.001 << "100,000 %";
    QTest::newRow("third") << 1.0 << 3.0 << "33.3 %";
    QTest::newRow("no cells") << 0.0 << 3.0 << "";
}

void TestViewTexts::zoom()
{
    QFETCH(double, cellSize);
    QFETCH(double, unitsPerPixel);
    QTEST(ViewTexts::zoomPercent(cellSize, unitsPerPixel), "text");
}

void TestViewTexts::followsLocale()
{
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    QCOMPARE(ViewTexts::unitsPerPixel(0.25), QStringLiteral("0,25 units per pixel"));
    QCOMPARE(ViewTexts::unitsPerPixel(2500), QStringLiteral("2.500 units per pixel"));
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

void TestViewTexts::places_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QPointF>("place"); // in UTM zone 32; null for what is none
    const QPointF corner(570581.33, 5174875.07);
    const auto row = [](const char *text, const QPointF &place) {
        QTest::newRow(text) << QString::fromUtf8(text) << place;
    };
    for (const char *text :
         {"570581.33, 5174875.07", "570581.33 5174875.07", " 570581,33 ; 5174875,07 ", "570581,33 5174875,07",
          "46.723702 N 9.923641 E", "9.923641\302\260 E, 46.723702\302\260 N",
          "46\302\26043'25.327\"N 9\302\26055'25.108\"E", "46 43.42212n, 9 55.41846e"})
        row(text, corner);
    for (const char *text :
         {"", "570581", "1,2,3", "a, b", "46.7 N 9.9 N", "95 N 9 E", "46 61 N 9 E", "nan, 1", "46 N 9 E x"})
        row(text, QPointF());
}

void TestViewTexts::places()
{
    QFETCH(QString, text);
    QFETCH(QPointF, place);
    const auto found = Viewer::PlaceText::parse(text, 32632);
    QCOMPARE(found.has_value(), !place.isNull());
    QVERIFY(!found || QLineF(*found, place).length() < 0.5);
    QVERIFY(!Viewer::PlaceText::parse(QStringLiteral("46 N 9 E"), 0)); // of no known system
}

QTEST_MAIN(TestViewTexts)
#include "tst_viewtexts.moc"
