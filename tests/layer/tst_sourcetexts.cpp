#include "data/testfolder.h"
#include "layer/sourcetexts.h"
#include "layer/tonetable.h"
#include "layer/urlfile.h"

#include <QtTest>

#include <limits>

using namespace Korvane;

class TestSourceTexts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void urlFile_data();
    void urlFile();
    void urlFileThatIsMissing();
    void gigaPixels_data();
    void gigaPixels();
    void description_data();
    void description();
    void widenedNamesAreFoundAgain();
    void toneTable_data();
    void toneTable();

private:
    TestFolder folder;
};

void TestSourceTexts::urlFile_data()
{
    using Status = UrlFile::Status;
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("address");
    const auto row = [](const char *name, const QByteArray &text, Status status, const char *address) {
        QTest::newRow(name) << text << int(status) << QString::fromUtf8(address);
    };
    row("capitals", "URL=xrvp://server/a.xrv\n", Status::Ok, "xrvp://server/a.xrv");
    row("small letters", "url=xrvps://server/a.xrv", Status::Ok, "xrvps://server/a.xrv");
    row("mixed letters do not count", "Url=xrvp://server/a.xrv\n", Status::Ok, "");
    row("leading blank does not count", " URL=xrvp://server/a.xrv\n", Status::Ok, "");
    row("line ends of DOS", "[InternetShortcut]\r\nURL=xrvp://server/a.xrv\r\nX=1\r\n", Status::Ok,
        "xrvp://server/a.xrv");
    row("cut at the second equals sign", "URL=xrvp://server/a.xrv?x=1\n", Status::Ok, "xrvp://server/a.xrv?x");
    row("last address wins", "URL=xrvp://server/a.xrv\nurl=xrvp://server/b.xrv\n", Status::Ok, "xrvp://server/b.xrv");
    row("capitals in the protocol", "URL=XRVP://Server/A.xrv\n", Status::Ok, "XRVP://Server/A.xrv");
    row("jpip is passed on", "URL=jpip://server/a.jp2\n", Status::Ok, "jpip://server/a.jp2");
    row("other protocol", "URL=http://server/a.jp2\n", Status::BadProtocol, "");
    row("refused although a good one follows", "URL=http://a/\nURL=xrvp://server/a.xrv\n", Status::BadProtocol, "");
    row("empty address", "URL=\n", Status::BadProtocol, "");
    row("beyond ASCII", "URL=xrvp://server/\xc3\x9c.xrv\n", Status::Ok, "xrvp://server/\xc3\x9c.xrv");
    row("no address at all", "hello\n", Status::Ok, "");
    row("not a text", QByteArray(200000, '\0') + "URL=xrvp://server/a.xrv", Status::Ok, "");
}

void TestSourceTexts::urlFile()
{
    QFETCH(QByteArray, text);
    const UrlFile read = readUrlFile(folder.writeText(QStringLiteral("a.url"), text));
    QTEST(int(read.status), "status");
    QTEST(read.address, "address");
}

void TestSourceTexts::urlFileThatIsMissing()
{
    QCOMPARE(readUrlFile(folder.path(QStringLiteral("none.url"))).status, UrlFile::Status::CannotOpen);
    QCOMPARE(readUrlFile(folder.path(QString())).status, UrlFile::Status::CannotOpen);
}

void TestSourceTexts::gigaPixels_data()
{
    QTest::addColumn<quint32>("width");
    QTest::addColumn<quint32>("height");
    QTest::addColumn<QString>("text");
    QTest::newRow("small") << 20000U << 20000U << QStringLiteral("< 1 GP");
    QTest::newRow("product beyond 32 bits") << 40000U << 40000U << QStringLiteral("1.60 GP");
    QTest::newRow("just one") << 31623U << 31623U << QStringLiteral("1.00 GP");
    QTest::newRow("just below one") << 31622U << 31622U << QStringLiteral("< 1 GP");
    QTest::newRow("largest") << 4294967295U << 4294967295U << QStringLiteral("18446744065.12 GP");
}

void TestSourceTexts::gigaPixels()
{
    QFETCH(quint32, width);
    QFETCH(quint32, height);
    QTEST(gigaPixelText(width, height), "text");
}

void TestSourceTexts::description_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("text");
    QTest::newRow("path") << QStringLiteral("/maps/image.jp2") << QStringLiteral("image.jp2");
    QTest::newRow("bar") << QStringLiteral("/maps/image.jp2|extra") << QStringLiteral("image.jp2");
    QTest::newRow("bar in front stays") << QStringLiteral("/maps/|extra") << QStringLiteral("|extra");
    QTest::newRow("address") << QStringLiteral("xrvp://server/maps/site.xrv") << QStringLiteral("site.xrv");
}

void TestSourceTexts::description()
{
    QFETCH(QString, source);
    QTEST(sourceDescription(source), "text");
}

void TestSourceTexts::widenedNamesAreFoundAgain()
{
    const QString file = folder.writeText(QString::fromUtf8("\xc3\x9c"
                                                            "bersicht \xe6\x9d\xb1.jp2"),
                                          "x");
    const QString widened = widenedName(file.toStdString());
    QVERIFY(widened != file);
    QCOMPARE(localFileName(widened), file);
    QCOMPARE(localFileName(file), file);
    const QString missing = folder.path(QString::fromUtf8("f\xc3\xbcr.jp2"));
    QCOMPARE(localFileName(missing), missing);
}

void TestSourceTexts::toneTable_data()
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    QTest::addColumn<double>("contrast");
    QTest::addColumn<double>("brightness");
    QTest::addColumn<int>("at0");
    QTest::addColumn<int>("at100");
    QTest::addColumn<int>("at255");
    QTest::newRow("neutral") << 1.0 << 1.0 << 0 << 100 << 255;
    QTest::newRow("all white") << 1.0 << 2.0 << 255 << 255 << 255;
    QTest::newRow("all black") << 1.0 << 0.0 << 0 << 0 << 0;
    QTest::newRow("half a range brighter, truncated") << 1.0 << 1.5 << 127 << 227 << 255;
    QTest::newRow("flat") << 0.0 << 1.0 << 127 << 127 << 127;
    QTest::newRow("steep") << 2.0 << 1.0 << 0 << 72 << 255;
    QTest::newRow("negative") << -1.0 << 1.0 << 255 << 155 << 0;
    QTest::newRow("not a number") << nan << nan << 0 << 0 << 0;
}

void TestSourceTexts::toneTable()
{
    QFETCH(double, contrast);
    QFETCH(double, brightness);
    const ToneTable table = makeToneTable(contrast, brightness);
    QTEST(int(table[0]), "at0");
    QTEST(int(table[100]), "at100");
    QTEST(int(table[255]), "at255");
    QRgb pixel = qRgba(0, 100, 255, 77);
    applyToneTable(table, &pixel, &pixel, 1);
    QCOMPARE(pixel, qRgba(table[0], table[100], table[255], 77));
}

QTEST_GUILESS_MAIN(TestSourceTexts)
#include "tst_sourcetexts.moc"
