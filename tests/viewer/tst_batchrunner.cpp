#include "batch/batchrunner.h"
#include "viewertest.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QImage>
#include <QImageReader>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTextStream>

using Viewer::BatchRunner;
using Viewer::CommandLine;

class TestBatchRunner : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void screenshotShowsFirstLayer();
    void screenshotOfExtent();
    void screenshotWaits();
    void noPicture_data();
    void noPicture();
    void failuresDoNotStopTheRest();
    void describes();
    void windowPicture();
    void projectAsSource();

private:
    int run(const QStringList &arguments, int timeoutMs = 20000);
    QJsonObject line(int index) const { return QJsonDocument::fromJson(out.split('\n').value(index)).object(); }

    ViewerTest test;
    QByteArray out;
    QByteArray err;
    QString picture;
};

void TestBatchRunner::init()
{
    picture = test.path(QStringLiteral("picture.png"));
    QFile::remove(picture);
}

int TestBatchRunner::run(const QStringList &arguments, int timeoutMs)
{
    out.clear();
    err.clear();
    QTextStream outStream(&out);
    QTextStream errStream(&err);
    outStream.setCodec("UTF-8");
    const CommandLine commandLine = CommandLine::parse(QStringList{QStringLiteral("qdviewer")} + arguments);
    if (commandLine.outcome != CommandLine::Outcome::Run)
        return -1;
    BatchRunner runner(commandLine, test.registry, outStream, errStream);
    runner.setTimeout(timeoutMs);
    return runner.run();
}

void TestBatchRunner::screenshotShowsFirstLayer()
{
    // 40 x 20 cells fitted into 80 x 80 pixels: two pixels per cell, 20 rows of background above and below.
    const QString first = test.quad(QStringLiteral("first.quad"));
    const QString far = test.quad(QStringLiteral("far.quad"), "QUAD 40 20 90000 1000 2");
    QCOMPARE(
        run({QStringLiteral("--screenshot"), picture, QStringLiteral("--size"), QStringLiteral("80x80"), first, far}),
        0);
    QCOMPARE(err, QByteArray());
    const QImage image(picture);
    QCOMPARE(image.size(), QSize(80, 80));
    QCOMPARE(image.pixelColor(0, 20), QColor(Qt::red));
    QCOMPARE(image.pixelColor(39, 39), QColor(Qt::red));
    QCOMPARE(image.pixelColor(40, 39), QColor(Qt::green));
    QCOMPARE(image.pixelColor(39, 40), QColor(Qt::blue));
    QCOMPARE(image.pixelColor(79, 59), QColor(Qt::white));
    QVERIFY(image.pixelColor(40, 19) == image.pixelColor(40, 60));
    QVERIFY(image.pixelColor(40, 19) != QColor(Qt::red));
}

void TestBatchRunner::screenshotOfExtent()
{
    const QString file = test.quad(QStringLiteral("extent.quad"));
    QCOMPARE(run({QStringLiteral("--screenshot"), picture, QStringLiteral("--size"), QStringLiteral("20x20"),
                  QStringLiteral("--extent"), QStringLiteral("480,1020,520,980"), file}),
             0);
    // As a whole it would be a thousandth of a pixel high.
    const QString thin = test.path(QStringLiteral("thin.png"));
    QCOMPARE(run({QStringLiteral("--screenshot"), thin, QStringLiteral("--size"), QStringLiteral("80x80"),
                  test.quad(QStringLiteral("thin.quad"), "QUAD 100000 1 0 0 1")}),
             0);
    QVERIFY(QImage(thin).pixelColor(30, 39) != QColor(Qt::white) ||
            QImage(thin).pixelColor(30, 40) != QColor(Qt::white));
    const QString jpeg = test.path(QStringLiteral("PICTURE.JPG"));
    QCOMPARE(run({QStringLiteral("--screenshot"), jpeg, file}), 0);
    QCOMPARE(QImageReader(jpeg).format(), QByteArray("jpeg"));
    const QImage image(picture);
    // The layer's north-west corner (500, 1000) is the middle of the picture.
    QCOMPARE(image.pixelColor(10, 10), QColor(Qt::red));
    QCOMPARE(image.pixelColor(19, 19), QColor(Qt::red));
    QVERIFY(image.pixelColor(9, 10) != QColor(Qt::red));
    QVERIFY(image.pixelColor(10, 9) != QColor(Qt::red));
}

void TestBatchRunner::screenshotWaits()
{
    const QString file = test.quad(QStringLiteral("slow.quad"), "QUAD 40 20 0 0 1 slow");
    QCOMPARE(run({QStringLiteral("--screenshot"), picture, QStringLiteral("--size"), QStringLiteral("40x20"), file}),
             0);
    QCOMPARE(QImage(picture).pixelColor(0, 0), QColor(Qt::red));
}

void TestBatchRunner::noPicture_data()
{
    QTest::addColumn<QString>("option");
    QTest::addColumn<QByteArray>("quad"); // empty: there is no such file
    QTest::addColumn<QString>("target");
    QTest::addColumn<QByteArray>("reason");
    const auto row = [](const char *name, const char *option, const char *quad, const char *pictureName,
                        const char *reason) {
        QTest::newRow(name) << QString::fromLatin1(option) << QByteArray(quad) << QString::fromLatin1(pictureName)
                            << QByteArray(reason);
    };
    row("layer that never ends", "--screenshot", "QUAD 40 20 0 0 1 never", "picture.png", "not complete");
    row("broken layer", "--screenshot", "QUAD 40 20 0 0 1 broken", "picture.png", "The quad is broken.");
    row("broken layer in a window", "--window", "QUAD 40 20 0 0 1 broken", "picture.png", "The quad is broken.");
    row("no layer", "--screenshot", "", "picture.png", "x.quad");
    row("no layer in a window", "--window", "", "picture.png", "x.quad");
    row("no place for the picture", "--screenshot", "QUAD 40 20 0 0 1", "no/folder/p.png", "p.png");
}

void TestBatchRunner::noPicture()
{
    QFETCH(QString, option);
    QFETCH(QByteArray, quad);
    QFETCH(QByteArray, reason);
    QFETCH(QString, target);
    const QString file = quad.isEmpty() ? test.path(QStringLiteral("x.quad")) : test.quad(QStringLiteral("q"), quad);
    QCOMPARE(run({option, test.path(target), file}, quad.endsWith("never") ? 300 : 20000), 1);
    QVERIFY2(err.contains(reason) && err.count('\n') == 1, err.constData());
    QVERIFY(!QFile::exists(test.path(target)));
}

void TestBatchRunner::failuresDoNotStopTheRest()
{
    const QString good = test.quad(QStringLiteral("good.quad"));
    const QString bad = test.writeText(QStringLiteral("bad.quad"), "something else");
    const QString missing = test.path(QStringLiteral("missing.quad"));
    QCOMPARE(run({QStringLiteral("--describe"), QStringLiteral("--screenshot"), picture, bad, missing, good}), 1);
    QCOMPARE(err.count('\n'), 2);
    QVERIFY2(err.contains("bad.quad") && err.contains("not a quad") && err.contains("missing.quad"), err.constData());
    QCOMPARE(out.count('\n'), 3);
    QCOMPARE(line(0).value(QStringLiteral("source")).toString(), bad);
    QVERIFY(line(0).value(QStringLiteral("error")).toString().contains(QLatin1String("not a quad")));
    QVERIFY(line(1).contains(QStringLiteral("error")));
    QCOMPARE(line(2).value(QStringLiteral("width")).toInt(), 40);
    QVERIFY(!QImage(picture).isNull());
}

void TestBatchRunner::describes()
{
    QGuiApplication::clipboard()->setText(QStringLiteral("mine"));
    const QString file = test.quad(QString::fromUtf8("Übersicht 東京.quad"));
    QCOMPARE(run({QStringLiteral("--describe"), file}), 0);
    QCOMPARE(out.count('\n'), 1);
    const QJsonObject object = line(0);
    const QJsonObject expected = QJsonDocument::fromJson(R"({
        "valid": true, "visible": true, "format": "Quad", "protocol": "Local file", "coordSysName": "epsg:32633",
        "bounds": {"x1": 500, "y1": 1000, "x2": 580, "y2": 960}, "width": 40, "height": 20, "cellSizeX": 2,
        "cellSizeY": -2, "cellType": "UInt8", "colorSpace": "RGB", "numberOfBands": 3, "bandList": [0, 1, 2],
        "hasOpacity": false, "opacityBandNumber": -1, "rotation": 0, "epsgCode": 32633, "className": "QuadLayer"})")
                                     .object();
    for (auto it = expected.begin(); it != expected.end(); ++it)
        QVERIFY2(object.value(it.key()) == it.value(), qPrintable(it.key()));
    QCOMPARE(object.value(QStringLiteral("source")).toString(), file);
    QCOMPARE(object.value(QStringLiteral("dataSource")).toString(), file);
    const QJsonObject properties = object.value(QStringLiteral("properties")).toObject();
    QCOMPARE(properties.value(QStringLiteral("SizeText")).toString(), QStringLiteral("40x20"));
    QCOMPARE(properties.value(QStringLiteral("Tint")).toString(), QStringLiteral("#ffffffff"));
    QCOMPARE(properties.value(QStringLiteral("BandList")).toArray().size(), 3);
    QCOMPARE(object.value(QStringLiteral("pages")).toObject().value(QStringLiteral("Quad Info")).toString(),
             QString::fromUtf8("page of Übersicht 東京.quad"));
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("mine"));
}

void TestBatchRunner::windowPicture()
{
    const QString file = test.quad(QStringLiteral("slow.quad"), "QUAD 40 20 0 0 1 slow");
    QCOMPARE(run({QStringLiteral("--window"), picture, QStringLiteral("--size"), QStringLiteral("1000x700"), file}), 0);
    const QImage image(picture);
    QCOMPARE(image.size(), QSize(1000, 700));
    // Everything right of the docks is map; the layer is fitted into it.
    int red = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            red += image.pixelColor(x, y) == QColor(Qt::red) ? 1 : 0;
    QVERIFY2(red > 10000, qPrintable(QString::number(red)));

    QCOMPARE(run({QStringLiteral("--window"), picture, QStringLiteral("--size"), QStringLiteral("20x20"), file}), 1);
    QVERIFY2(err.contains("at least"), err.constData());
}

void TestBatchRunner::projectAsSource()
{
    test.quad(QStringLiteral("in.quad"));
    const QString project = test.writeText(QStringLiteral("p.qdproject"),
                                           "<QDViewerProject version='1'><View>"
                                           "<Extent x1='500' y1='1000' x2='540' y2='980'/>"
                                           "<Layer class='QuadLayer'><DataSource>in.quad</DataSource></Layer>"
                                           "<Layer class='QuadLayer'><DataSource>out.quad</DataSource></Layer>"
                                           "</View></QDViewerProject>");
    QCOMPARE(run({QStringLiteral("--describe"), QStringLiteral("--screenshot"), picture, QStringLiteral("--size"),
                  QStringLiteral("40x20"), project}),
             1);
    QCOMPARE(out.count('\n'), 2);
    QVERIFY2(err.contains("out.quad"), err.constData());
    QCOMPARE(QImage(picture).pixelColor(39, 19), QColor(Qt::red));
}

QTEST_MAIN(TestBatchRunner)
#include "tst_batchrunner.moc"
