#include "data/boxbuilder.h"
#include "data/files.h"
#include "data/syntheticimage.h"
#include "sdk/hostile/attempt.h"

#include "io/memorysource.h"
#include "xrv/xrvstructure.h"

#include <xrv60/plkinit.h>

#include <QtEndian>
#include <QtTest>

using namespace xrv;

/// XRV files that are damaged or lying: a clear error or the picture.
class TestXrvDamage : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void refusedWithASentence_data();
    void refusedWithASentence();
    void laterMinorVersionsAreRead();
    void recordsThatThePictureCanDoWithout_data();
    void recordsThatThePictureCanDoWithout();
    void lyingIndex();

private:
    int placeOf(const char *type) const { return int(boxbuilder::findBox(good, type).start); }

    FileFolder folder;
    QByteArray good;
    std::vector<std::uint8_t> picture;
};

void TestXrvDamage::initTestCase()
{
    SyntheticImage image(500, 400, 3, 16); // nobody would guess that three bands of 16 bits are colours
    image.image.colourSpace = PLK_COLORSPACE_SRGB;
    image.image.place.origin = GeoReference::Origin::XrvInfo;
    image.image.place.epsg = 32633;
    image.image.texts[4] = "Author";
    image.image.rpc = PLKRPCData{};
    image.image.xmls = {"<a/>"};
    WriteOptions options;
    options.tileSize = 128;
    QVERIFY(writeImage(image, options, folder.path("good.xrv")).IsSuccess());
    good = folder.read("good.xrv");
    PLK::CView view;
    const Attempt shown = attempt(&view, folder.path("good.xrv"), Damage::Strict);
    QVERIFY(shown.isShown());
    picture = shown.picture;
}

void TestXrvDamage::refusedWithASentence_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("words");
    const auto changed = [this](int place, const QByteArray &bytes) {
        QByteArray file = good;
        return file.replace(place, bytes.size(), bytes);
    };
    const auto notXrv = QStringLiteral("This file is not an XRV image that this library can read.");
    QTest::newRow("a picture of another format")
        << QByteArray("\x89PNG\r\n\x1a\n and more") << int(PLK_ERR_UNKNOWN_FORMAT) << notXrv;
    QTest::newRow("text") << QByteArray("just text") << int(PLK_ERR_UNKNOWN_FORMAT) << notXrv;
    QTest::newRow("line ends were changed") << changed(8, "\n\x87\n") << int(PLK_ERR_UNKNOWN_FORMAT) << notXrv;
    QTest::newRow("empty") << QByteArray() << int(PLK_ERR_UNKNOWN_FORMAT) << notXrv;
    QTest::newRow("signature alone") << good.left(12) << int(PLK_ERR_TRUNCATED)
                                     << QStringLiteral("ends before its version");
    QTest::newRow("newer version") << changed(20, "\x03") << int(PLK_ERR_UNSUPPORTED)
                                   << QStringLiteral("is of version 3.0; this library reads versions 1.x and 2.x");
    QTest::newRow("no version") << changed(16, "free") << int(PLK_ERR_MALFORMED) << QStringLiteral("has no version");
    QTest::newRow("no file information") << changed(placeOf("finf") + 4, "free") << int(PLK_ERR_MALFORMED)
                                         << QStringLiteral("has no file information");
    QTest::newRow("damaged file information") << changed(placeOf("finf") + 8, "\xff") << int(PLK_ERR_MALFORMED)
                                              << QStringLiteral("file information of the XRV file is damaged");
    QTest::newRow("cut before the codestream")
        << good.left(placeOf("pidx") + 20) << int(PLK_ERR_TRUNCATED) << QStringLiteral("ends before its codestream");
}

void TestXrvDamage::refusedWithASentence()
{
    QFETCH(QByteArray, file);
    QFETCH(int, code);
    QFETCH(QString, words);
    PLK::CView view;
    const PLK::CError error = view.Open(folder.write("refused.XRV", file).c_str(), false, false);
    QVERIFY2(QString::fromUtf8(error.GetErrorMessage()).contains(words), error.GetErrorMessage());
    QCOMPARE(error.GetErrorNumber(), code);
    QVERIFY(!view.IsOpen());
}

void TestXrvDamage::laterMinorVersionsAreRead()
{
    QByteArray file = good;
    file[21] = 7;
    file.insert(placeOf("finf"), QByteArray("\0\0\0\x0c"
                                            "newb"
                                            "????",
                                            12));
    PLK::CView view;
    const Attempt shown = attempt(&view, folder.write("later.xrv", file), Damage::Strict);
    QVERIFY2(shown.isShown(), shown.error.GetErrorMessage());
    QVERIFY(shown.picture == picture);
}

void TestXrvDamage::recordsThatThePictureCanDoWithout_data()
{
    QTest::addColumn<QByteArray>("box");
    QTest::addColumn<QByteArray>("words"); // of the warning that its content is damaged
    for (const char *box : {"toc ", "jp2h", "auth", "uuid", "stat", "xml ", "pidx"})
        QTest::newRow(box) << QByteArray(box) << QByteArray();
    QTest::newRow("band") << QByteArray("band") << QByteArray("descriptions of the bands");
    QTest::newRow("rpc ") << QByteArray("rpc ") << QByteArray("RPC coefficients are damaged");
}

/// Without the box, and with its content gone bad.
void TestXrvDamage::recordsThatThePictureCanDoWithout()
{
    QFETCH(QByteArray, box);
    QFETCH(QByteArray, words);
    const int place = placeOf(box.constData());
    QByteArray missing = good, bad = good;
    missing.replace(place + 4, 4, "free");
    const int length = qFromBigEndian<int>(good.constData() + place);
    bad.replace(place + 8, length - 8, QByteArray(length - 8, '\xff'));
    for (const QByteArray &file : {missing, bad}) {
        PLK::CView view;
        const Attempt shown = attempt(&view, folder.write("without.xrv", file), Damage::Strict);
        QVERIFY2(shown.isShown(), shown.error.GetErrorMessage());
        QVERIFY(shown.picture == picture);
        QCOMPARE(int(view.GetFileInfo()->eColorSpace), int(PLK_COLORSPACE_SRGB));
        PLKFileStatistics *statistics = nullptr;
        QVERIFY(view.GetClientStatistics(&statistics).IsSuccess());
        QCOMPARE(statistics->nBands, 3u);
        PLKFreeStatistics(statistics);
    }
    MemorySource source(Bytes(bad.begin(), bad.end()));
    XrvStructure structure;
    std::vector<std::string> warnings;
    QVERIFY(readXrvStructure(source, &structure, &warnings).IsSuccess());
    const auto tells = [&words](const std::string &warning) { return QByteArray(warning.c_str()).contains(words); };
    QVERIFY(words.isEmpty() || std::any_of(warnings.begin(), warnings.end(), tells));
}

/// Lengths that were moved from one packet to the next add up as before.
void TestXrvDamage::lyingIndex()
{
    QByteArray file = good;
    const int place = placeOf("pidx") + 8;
    // Number of tile-parts, then tile, header length, number of packets and the packets' lengths.
    QVERIFY((quint8(file[place + 4]) & 0x80) != 0 && (quint8(file[place + 6]) & 0x80) != 0);
    file[place + 5] = char(file[place + 5] + 1);
    file[place + 7] = char(file[place + 7] - 1);
    PLK::CView view;
    const Attempt shown = attempt(&view, folder.write("lying.xrv", file), Damage::Resilient);
    QVERIFY2(shown.complaint().isEmpty(), shown.complaint().constData());
}

QTEST_GUILESS_MAIN(TestXrvDamage)
#include "tst_xrvdamage.moc"
