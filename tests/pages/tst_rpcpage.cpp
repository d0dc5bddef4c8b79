#include "pages/xrvjp2klayerrpcinfo.h"
#include "pagetest.h"

#include <QFile>
#include <QtTest>

using namespace PageTest;
using Korvane::XRVJP2kLayer;

class TestRpcPage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void shownAndCopied();
    void damagedFiles_data();
    void damagedFiles();
    void layersThatShowNothing();
    void secondLayer();

private:
    std::unique_ptr<XRVJP2kLayer> open(const QByteArray &rpc);

    TestFolder folder;
    int fileNumber = 0;
};

namespace {

/// Coefficient i (from 1) of polynomial p (from 0) is p + i / 100, with a minus where i is even.
double coefficient(int polynomial, int i)
{
    return (i % 2 ? 1 : -1) * (polynomial + i / 100.0);
}

QByteArray rpcFile()
{
    QByteArray text = "ERR_BIAS: 1.5 meters\nERR_RAND: 0.25 meters\nLINE_OFF: 5000 pixels\nSAMP_OFF: 4000.5 pixels\n"
                      "LAT_OFF: 48.123456789 degrees\nLONG_OFF: -11.5 degrees\nHEIGHT_OFF: 500 meters\n"
                      "LINE_SCALE: 5001 pixels\nSAMP_SCALE: 4001 pixels\nLAT_SCALE: 0.0001 degrees\n"
                      "LONG_SCALE: 1e-7 degrees\nHEIGHT_SCALE: 501 meters\n";
    int polynomial = 0;
    for (const char *key : {"LINE_NUM_COEFF", "LINE_DEN_COEFF", "SAMP_NUM_COEFF", "SAMP_DEN_COEFF"}) {
        for (int i = 1; i <= 20; ++i)
            text += QByteArray(key) + '_' + QByteArray::number(i) + ": " +
                    QByteArray::number(coefficient(polynomial, i), 'f', 8) + '\n';
        ++polynomial;
    }
    return text;
}

QString coefficients()
{
    QString text;
    int polynomial = 0;
    for (const char *heading : {"Line Numerator Coefficients:\n", "Line Denominator Coefficients:\n",
                                "Sample Numerator Coefficients:\n", "Sample Denominator Coefficients:\n"}) {
        QStringList numbers;
        for (int i = 1; i <= 20; ++i)
            numbers.append(QString::asprintf("%.6f", coefficient(polynomial, i)));
        text += QLatin1String(heading) + numbers.join(QStringLiteral(", ")) + QStringLiteral("\n ");
        ++polynomial;
    }
    return text;
}

} // namespace

std::unique_ptr<XRVJP2kLayer> TestRpcPage::open(const QByteArray &rpc)
{
    const QString name = QString::number(++fileNumber);
    folder.writeText(name + QStringLiteral("_RPC.TXT"), rpc);
    return openLayer(folder.makeImage(name + QStringLiteral(".jp2"), jp2maker::Options()));
}

void TestRpcPage::shownAndCopied()
{
    const auto layer = open(rpcFile());
    XRVJP2kLayerRPCInfo page;
    page.setLayer(layer.get());
    const char *const rows[][3] = {{"errorBias", "Error Bias", "1.500000"},
                                   {"errorRandom", "Error Random", "0.250000"},
                                   {"lineOffset", "Line Offset", "5000.000000"},
                                   {"lineScale", "Line Scale", "5001.000000"},
                                   {"latitudeOffset", "Latitude Offset", "48.123457"},
                                   {"latitudeScale", "Latitude Scale", "0.000100"},
                                   {"longitudeOffset", "Longitude Offset", "-11.500000"},
                                   {"longitudeScale", "Longitude Scale", "0.000000"},
                                   {"heightOffset", "Height Offset", "500.000000"},
                                   {"heightScale", "Height Scale", "501.000000"},
                                   {"sampleOffset", "Sample Offset", "4000.500000"},
                                   {"sampleScale", "Sample Scale", "4001.000000"}};
    QString text;
    for (const auto &[field, label, value] : rows) {
        QCOMPARE(textOf(page, field), QString::fromLatin1(value));
        text += QStringLiteral("%1 = %2\r").arg(QLatin1String(label), QLatin1String(value));
    }
    QCOMPARE(textOf(page, "coefficients"), coefficients());
    QCOMPARE(copiedText(page), text + coefficients());
}

void TestRpcPage::damagedFiles_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<QString>("lineOffset");
    QTest::newRow("missing key") << QByteArray("LAT_OFF: 48.123456789 degrees\n") << QByteArray() << QString();
    QTest::newRow("repeated key") << QByteArray("SAMP_OFF") << QByteArray("LINE_OFF: 1\nSAMP_OFF")
                                  << QStringLiteral("5000.000000");
    QTest::newRow("huge number") << QByteArray("500 meters") << QByteArray("-1e300") << QStringLiteral("5000.000000");
    QTest::newRow("not text") << rpcFile() << QByteArray(1000, '\xff') << QString();
}

void TestRpcPage::damagedFiles()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    QFETCH(QString, lineOffset);
    QByteArray text = rpcFile();
    QVERIFY(text.contains(before));
    const auto layer = open(text.replace(before, after));
    XRVJP2kLayerRPCInfo page;
    page.setLayer(layer.get());
    QCOMPARE(textOf(page, "lineOffset"), lineOffset);
    QCOMPARE(copiedText(page) == kUntouched, lineOffset.isEmpty());
}

void TestRpcPage::layersThatShowNothing()
{
    XRVJP2kLayerRPCInfo page;
    ForeignLayer foreign;
    XRVJP2kLayer fresh(nullptr);
    const auto plain = openLayer(folder.makeImage(QStringLiteral("plain.jp2"), jp2maker::Options()));
    for (Korvane::Map::Layer *layer :
         {static_cast<Korvane::Map::Layer *>(nullptr), static_cast<Korvane::Map::Layer *>(&foreign),
          static_cast<Korvane::Map::Layer *>(&fresh), static_cast<Korvane::Map::Layer *>(plain.get())}) {
        page.setLayer(layer);
        QCOMPARE(filledFields(page), QStringList());
        QCOMPARE(textOf(page, "coefficients"), QString());
        QCOMPARE(copiedText(page), kUntouched);
    }
}

void TestRpcPage::secondLayer()
{
    XRVJP2kLayerRPCInfo page;
    page.setLayer(open(rpcFile()).get());
    ForeignLayer foreign;
    page.setLayer(&foreign);
    page.setLayer(nullptr);
    QVERIFY(copiedText(page) != kUntouched); // the record is the page's own
    page.setLayer(open(rpcFile().replace("5000", "6000")).get());
    QCOMPARE(textOf(page, "lineOffset"), QStringLiteral("6000.000000"));
    // Without a record what is shown stays, but there is nothing to copy.
    XRVJP2kLayer fresh(nullptr);
    page.setLayer(&fresh);
    QCOMPARE(textOf(page, "lineOffset"), QStringLiteral("6000.000000"));
    QCOMPARE(copiedText(page), kUntouched);
}

QTEST_MAIN(TestRpcPage)
#include "tst_rpcpage.moc"
