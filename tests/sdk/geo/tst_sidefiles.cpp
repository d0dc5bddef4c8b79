#include "data/files.h"

#include "geo/georeference.h"
#include "geo/rpc.h"
#include "geo/worldfile.h"

#include <QTest>

using namespace xrv;

namespace {

constexpr const char *kTextKeys[] = {"ERR_BIAS",   "ERR_RAND",  "LINE_OFF",   "SAMP_OFF",
                                     "LAT_OFF",    "LONG_OFF",  "HEIGHT_OFF", "LINE_SCALE",
                                     "SAMP_SCALE", "LAT_SCALE", "LONG_SCALE", "HEIGHT_SCALE"};
constexpr const char *kRpbKeys[] = {"errBias",   "errRand",    "lineOffset",   "sampOffset",
                                    "latOffset", "longOffset", "heightOffset", "lineScale",
                                    "sampScale", "latScale",   "longScale",    "heightScale"};
constexpr const char *kTextPolynomials[] = {"LINE_NUM_COEFF", "LINE_DEN_COEFF", "SAMP_NUM_COEFF", "SAMP_DEN_COEFF"};
constexpr const char *kRpbPolynomials[] = {"lineNumCoef", "lineDenCoef", "sampNumCoef", "sampDenCoef"};

/// The n-th number of the record in these files is n + 1; the coefficients are written in exponents.
QByteArray rpcText()
{
    QByteArray text;
    int n = 0;
    for (const char *key : kTextKeys)
        text += QByteArray(key) + ": +" + QByteArray::number(++n).rightJustified(6, '0') + ".00 pixels\r\n";
    for (const char *key : kTextPolynomials) {
        for (int i = 1; i <= 20; ++i)
            text +=
                QByteArray(key) + '_' + QByteArray::number(i) + ": +" + QByteArray::number(++n / 100.0) + "E+02\r\n";
    }
    return text;
}

QByteArray rpbText()
{
    QByteArray text = "satId = \"QB02\";\nbandId = \"P\";\nSpecId = \"RPC00B\";\nBEGIN_GROUP = IMAGE\n";
    int n = 0;
    for (const char *key : kRpbKeys)
        text += '\t' + QByteArray(key) + " = " + QByteArray::number(++n) + ";\n";
    for (const char *key : kRpbPolynomials) {
        text += '\t' + QByteArray(key) + " = (\n";
        for (int i = 1; i <= 20; ++i)
            text += "\t\t\t" + QByteArray::number(++n / 1000.0) + "E+03" + (i < 20 ? ",\n" : ");\n");
    }
    return text + "END_GROUP = IMAGE\nEND;\n";
}

bool isCounting(const PLKRPCData &data)
{
    const double *numbers = &data.fErrorBias;
    for (int i = 0; i < 92; ++i) {
        if (std::abs(numbers[i] - (i + 1)) > 1e-9)
            return false;
    }
    return true;
}

} // namespace

class TestSideFiles : public QObject
{
    Q_OBJECT

private slots:
    void worldText_data();
    void worldText();
    void worldFileNames_data();
    void worldFileNames();
    void rpcWhole();
    void rpcDamage_data();
    void rpcDamage();
    void rpcNames_data();
    void rpcNames();
    void rpcBoxBeforeFile();
    void manyRepeatedKeys();
    void hugeAndOddFiles();
};

void TestSideFiles::worldText_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QVector<double>>("expected"); // empty: refused
    const QVector<double> plain{300000, 10, 0, 5000000, 0, -20};
    QTest::newRow("line feeds") << QByteArray("10\n0\n0\n-20\n300005\n4999990\n") << plain;
    QTest::newRow("byte order mark is the reader's, CRLF, blanks, signs, exponents")
        << QByteArray("+10.0\r\n 0.0 \r\n-0\r\n-2e1\r\n\r\n3.00005E+05\r\n4999990.000\r\n\x1a") << plain;
    QTest::newRow("carriage returns alone") << QByteArray("10\r0\r0\r-20\r300005\r4999990") << plain;
    // Line 2 is the y of a step along a row, line 3 the x of a step down a column.
    QTest::newRow("turned") << QByteArray("8\n3\n4\n-6\n106\n198.5") << QVector<double>{100, 8, 4, 200, 3, -6};
    QTest::newRow("decimal comma") << QByteArray("10,0\n0\n0\n-20\n300005\n4999990\n") << QVector<double>{};
    QTest::newRow("five numbers") << QByteArray("10\n0\n0\n-20\n300005\n") << QVector<double>{};
    QTest::newRow("seven numbers") << QByteArray("10\n0\n0\n-20\n300005\n4999990\n1\n") << QVector<double>{};
    QTest::newRow("word") << QByteArray("10\n0\n0\n-20\nx\n4999990\n") << QVector<double>{};
    QTest::newRow("NaN") << QByteArray("10\n0\n0\n-20\nnan\n4999990\n") << QVector<double>{};
    QTest::newRow("no area") << QByteArray("0\n0\n0\n-20\n1\n4999990\n") << QVector<double>{};
    QTest::newRow("empty") << QByteArray() << QVector<double>{};
}

void TestSideFiles::worldText()
{
    QFETCH(QByteArray, text);
    QFETCH(QVector<double>, expected);
    std::vector<std::string> warnings;
    const auto transform =
        parseWorldFile({text.constData(), static_cast<std::size_t>(text.size())}, "a.j2w", &warnings);
    QCOMPARE(transform.has_value(), !expected.isEmpty());
    QCOMPARE(warnings.size(), std::size_t(expected.isEmpty() ? 1 : 0));
    for (int i = 0; i < expected.size(); ++i)
        QCOMPARE((*transform)[static_cast<std::size_t>(i)], expected[i]);
}

void TestSideFiles::worldFileNames_data()
{
    QTest::addColumn<QString>("image");
    QTest::addColumn<QString>("world");
    QTest::addColumn<bool>("isFound");
    const auto row = [](const char *image, const char *world, bool isFound) {
        QTest::addRow("%s %s", image, world) << QString::fromUtf8(image) << QString::fromUtf8(world) << isFound;
    };
    row("a.jp2", "a.j2w", true);
    row("a.jp2", "a.J2W", true);
    row("a.JP2", "a.j2w", true);
    row("a.jp2", "a.jp2w", true);
    row("a.j2k", "a.jkw", true);
    row("a.j2k", "a.j2w", true);
    row("a.jpx", "a.JPXW", true);
    row("a.jp2", "a.wld", true);
    row("a", "a.wld", true);
    row("a.b.jp2", "a.b.j2w", true);
    row("Übersicht 東京.jp2", "Übersicht 東京.j2w", true);
    row("a.jp2", "a.tfw", false);
    row("a.jp2", "ab.j2w", false);
}

void TestSideFiles::worldFileNames()
{
    QFETCH(QString, image);
    QFETCH(QString, world);
    const FileFolder folder;
    folder.write(world.toStdString(), QByteArray("\xEF\xBB\xBF"
                                                 "10\n0\n0\n-20\n300005\n4999990\n"));
    std::vector<std::string> warnings;
    const auto transform = readWorldFile(folder.path(image.toStdString()), &warnings);
    QTEST(transform.has_value(), "isFound");
    QVERIFY(warnings.empty());
}

void TestSideFiles::rpcWhole()
{
    std::vector<std::string> warnings;
    const auto text = parseRpcText(rpcText().toStdString(), "a_RPC.TXT", &warnings);
    QVERIFY(text && isCounting(*text));
    const auto rpb = parseRpb(rpbText().toStdString(), "a.RPB", &warnings);
    QVERIFY(rpb && isCounting(*rpb));
    QByteArray crlf = rpbText();
    const auto windows = parseRpb(crlf.replace("\n", "\r\n").toStdString(), "a.RPB", &warnings);
    QVERIFY(windows && isCounting(*windows));
    QVERIFY(warnings.empty());
}

void TestSideFiles::rpcDamage_data()
{
    QTest::addColumn<bool>("isRpb");
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<bool>("isUsed");
    QTest::addColumn<int>("warningCount");
    const auto row = [](const char *name, bool isRpb, const char *before, const char *after, bool isUsed,
                        int warnings) {
        QTest::newRow(name) << isRpb << QByteArray(before) << QByteArray(after) << isUsed << warnings;
    };
    row("equals sign instead of a colon", false, "LINE_OFF:", "line_off =", true, 0);
    row("no errors given", false, "ERR_BIAS", "OTHER", true, 0);
    row("unknown keys", false, "LINE_OFF:", "CLOUDS: many\nLINE_OFF:", true, 0);
    row("a repeated key: the first one", false, "LINE_SCALE:", "LINE_OFF: 99\nLINE_SCALE:", true, 1);
    row("no latitude offset", false, "LAT_OFF", "LAT_OF", false, 1);
    row("no nineteenth coefficient", false, "SAMP_DEN_COEFF_19:", "SAMP_DEN_COEFF_99:", false, 1);
    row("a scale of zero", false, "LAT_SCALE: +000010.00", "LAT_SCALE: 0", false, 1);
    row("an infinite offset", false, "LAT_OFF: +000005.00", "LAT_OFF: inf", false, 1);
    row("a number run into its unit", false, "LAT_OFF: +000005.00", "LAT_OFF: 5degrees", false, 1);
    row("a comma for the decimal point", false, "LAT_OFF: +000005.00", "LAT_OFF: 5,00", false, 1);
    row("no number at all", false, "LAT_OFF: +000005.00", "LAT_OFF: nan", false, 1);
    row("a key that only begins like one", false, "LINE_SCALE:", "LINE_OFF_OLD: 99\nLINE_SCALE:", true, 0);
    row("a comma in a number", true, "latOffset = 5", "latOffset = 5,0", false, 1);
    row("repeated group", true, "lineScale", "lineOffset = 99;\n\tlineScale", true, 1);
    row("comment of an unknown key", true, "lineScale", "note = \"lineOffset\";\n\tlineScale", true, 0);
    row("twenty-one coefficients", true, "sampNumCoef = (", "sampNumCoef = ( 1, ", false, 1);
    row("nineteen coefficients", true, "0.092E+03)", ")", false, 1);
    row("a coefficient that is none", true, "0.092E+03", "none", false, 1);
    row("list without an end", true, "0.092E+03);\n", "0.092E+03", false, 1);
}

void TestSideFiles::rpcDamage()
{
    QFETCH(bool, isRpb);
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    QByteArray text = isRpb ? rpbText() : rpcText();
    QVERIFY(text.contains(before));
    text.replace(before, after);
    std::vector<std::string> warnings;
    const auto data = isRpb ? parseRpb(text.toStdString(), "a.RPB", &warnings)
                            : parseRpcText(text.toStdString(), "a_RPC.TXT", &warnings);
    QTEST(data.has_value(), "isUsed");
    QTEST(static_cast<int>(warnings.size()), "warningCount");
    if (data)
        QCOMPARE(data->fLineOffset, 3.0);
    if (data && after == "OTHER")
        QCOMPARE(data->fErrorBias, kUnknownRpcError);
}

void TestSideFiles::rpcNames_data()
{
    QTest::addColumn<QString>("side");
    for (const char *name : {"img_RPC.TXT", "img_rpc.txt", "img.RPB", "img.rpb"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void TestSideFiles::rpcNames()
{
    QFETCH(QString, side);
    const FileFolder folder;
    const std::string image = folder.path("img.jp2");
    std::vector<std::string> warnings;
    QVERIFY(!readRpc({}, image, &warnings));
    folder.write(side.toStdString(), side.endsWith(QStringLiteral("b"), Qt::CaseInsensitive) ? rpbText() : rpcText());
    const auto data = readRpc({}, image, &warnings);
    QVERIFY(data && isCounting(*data));
    QVERIFY(warnings.empty());
}

void TestSideFiles::rpcBoxBeforeFile()
{
    const FileFolder folder;
    const std::string image = folder.path("img.jp2");
    folder.write("img_RPC.TXT", QByteArray("damaged"));
    folder.write("img.RPB", rpbText());
    std::vector<std::string> warnings;
    const auto data = readRpc({}, image, &warnings);
    QVERIFY(data && isCounting(*data)); // the damaged one is passed over
    QCOMPARE(warnings.size(), std::size_t(1));
    QVERIFY(!readRpc({}, std::string(), &warnings)); // a stream has no side files
}

void TestSideFiles::manyRepeatedKeys()
{
    QByteArray text = rpcText();
    while (text.size() < 1000000)
        text += "LINE_OFF: 99\nLINE_NUM_COEFF_7: 1\nLINE_NUM_COEFF_" + QByteArray(100, '1') + ": 1\n";
    std::vector<std::string> warnings;
    const auto data = parseRpcText(text.toStdString(), "a_RPC.TXT", &warnings);
    QVERIFY(data && isCounting(*data));
    QCOMPARE(warnings.size(), std::size_t(2)); // one for each key
}

void TestSideFiles::hugeAndOddFiles()
{
    const FileFolder folder;
    const std::string image = folder.path("img.jp2");
    QVERIFY(QDir(QString::fromStdString(folder.path())).mkdir(QStringLiteral("img.jp2w")));
    QFile large(QString::fromStdString(folder.path("img_RPC.TXT")));
    QVERIFY(large.open(QIODevice::WriteOnly) && large.resize(3000000000LL));
    std::vector<std::string> warnings;
    QVERIFY(!readRpc({}, image, &warnings));
    QCOMPARE(warnings.size(), std::size_t(1));
    QVERIFY(!readWorldFile(image, &warnings));
    QCOMPARE(warnings.size(), std::size_t(1));
}

QTEST_APPLESS_MAIN(TestSideFiles)
#include "tst_sidefiles.moc"
