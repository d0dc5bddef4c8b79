#include "pages/xrvjp2klayerrpcinfo.h"
#include "pagetest.h"

#include <QtTest>

using namespace PageTest;

class TestRpcPage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void shownAndCopied();

private:
    TestFolder folder;
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

void TestRpcPage::shownAndCopied()
{
    folder.writeText(QStringLiteral("image_RPC.TXT"), rpcFile());
    const auto layer = openLayer(folder.makeImage(QStringLiteral("image.jp2"), jp2maker::Options()));
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

QTEST_MAIN(TestRpcPage)
#include "tst_rpcpage.moc"
