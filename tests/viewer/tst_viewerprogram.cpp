#include "identify/identifydock.h"
#include "views/maparea.h"
#include "window/mainactions.h"
#include "window/mainwindow.h"

#include "data/testfolder.h"
#include "viewerprogram.h"

#include <QDGui/mapview.h>
#include <QDGui/pluginregistry.h>

#include <QAction>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QSettings>
#include <QStatusBar>
#include <QTest>
#include <QWheelEvent>

#include <memory>

using Korvane::Map::MapView;
using Viewer::MainWindow;

/// The program as a whole with the JPEG 2000 plug-in. To be run under a thread sanitizer too.
class TestViewerProgram : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void picturesAreExact();
    void picturesGoIntoPipes();
    void worksInPoorSurroundings();
    void describesWhatTheFileHolds();
    void endsOnDamagedFiles_data();
    void endsOnDamagedFiles();
    void tellsOfDamageWhenStrict();
    void usesTheSettingsFileGiven();
    void livesWithBadSettings();
    void refusesInOneLine_data();
    void refusesInOneLine();
    void handlesBusyPeople();
    void readsTheNumbers();
    void wheelNeverMeetsAnEmptyMap();

private:
    /// With a settings file of the program's own.
    ProgramRun run(const QStringList &arguments, const QStringList &variables = {}) const
    {
        return runViewer(QStringList{QStringLiteral("--settings"), folder.path(QStringLiteral("own.ini"))} + arguments,
                         variables);
    }

    TestFolder folder;
    QString gradient;
    jp2maker::FileBytes gradientBytes;
};

static constexpr int kWidth = 200;
static constexpr int kHeight = 150;
void TestViewerProgram::initTestCase()
{
    jp2maker::Options options = colourImage(kWidth, kHeight);
    options.tileWidth = options.tileHeight = 64;
    gradientBytes = jp2maker::make(options);
    gradient = folder.write(QString::fromUtf8("Übersicht 東京.jp2"), gradientBytes);
}

void TestViewerProgram::picturesAreExact()
{
    const QString picture = folder.path(QStringLiteral("exact.png"));
    const ProgramRun outcome = run({QStringLiteral("--screenshot"), picture, QStringLiteral("--size"),
                                    QStringLiteral("%1x%2").arg(kWidth).arg(kHeight), gradient});
    QVERIFY2(outcome.status == 0 && outcome.err.isEmpty(), outcome.err.constData());
    const QImage image(picture);
    QCOMPARE(image.size(), QSize(kWidth, kHeight));
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x)
            QCOMPARE(image.pixelColor(x, y), QColor(x, y, 50));
}

void TestViewerProgram::picturesGoIntoPipes()
{
#ifdef Q_OS_UNIX
    const ProgramRun outcome = run({QStringLiteral("--screenshot"), QStringLiteral("/dev/stdout"), gradient});
    QVERIFY2(outcome.status == 0 && outcome.err.isEmpty(), outcome.err.constData());
    QVERIFY(!QImage::fromData(outcome.out, "PNG").isNull());
#else
    QSKIP("Standard output has no name here.");
#endif
}

void TestViewerProgram::worksInPoorSurroundings()
{
    const QString picture = folder.path(QString::fromUtf8("Bild 画.png"));
    const ProgramRun outcome = run({QStringLiteral("--screenshot"), picture, gradient},
                                   {QStringLiteral("LC_ALL=C"), QStringLiteral("DISPLAY=no-such-host:1")});
    QVERIFY2(outcome.status == 0, outcome.err.constData());
    QVERIFY(QFile::exists(picture));
}

void TestViewerProgram::describesWhatTheFileHolds()
{
    jp2maker::FileBytes bytes = jp2maker::withBox(gradientBytes, "xml ", "<one/>\n");
    bytes = jp2maker::withBox(bytes, "xml ", "<two/>");
    const ProgramRun outcome = run({QStringLiteral("--describe"), folder.write(QStringLiteral("boxes.jp2"), bytes)});
    QCOMPARE(outcome.status, 0);
    const QJsonObject object = QJsonDocument::fromJson(outcome.out).object();
    const QJsonObject pages = object.value(QStringLiteral("pages")).toObject();
    QCOMPARE(pages.keys(),
             QStringList({QStringLiteral("JP2 Info"), QStringLiteral("Metadata"), QStringLiteral("RPC Info"),
                          QStringLiteral("Statistics"), QStringLiteral("XRV Info")}));
    const QString boxes = pages.value(QStringLiteral("Metadata")).toString();
    const int second = boxes.indexOf(QLatin1String("'xml ' Box #2:"));
    QVERIFY2(second > boxes.indexOf(QLatin1String("<one/>")), qPrintable(boxes));
    QVERIFY2(boxes.indexOf(QLatin1String("<two/>")) > second, qPrintable(boxes));
    QVERIFY(pages.value(QStringLiteral("JP2 Info")).toString().contains(QLatin1String("\rBand Bit Depths = 8,8,8\r")));

    const QJsonArray histograms = object.value(QStringLiteral("histograms")).toArray();
    QCOMPARE(histograms.size(), 3);
    const QJsonObject blue = histograms[2].toObject();
    QCOMPARE(blue.value(QStringLiteral("bandName")).toString(), QStringLiteral("Blue"));
    QCOMPARE(blue.value(QStringLiteral("bucketsPerEntry")).toInt(), 1);
    double cells = 0;
    for (const QJsonValue &count : blue.value(QStringLiteral("buckets")).toArray())
        cells += count.toDouble();
    QCOMPARE(cells, double(kWidth * kHeight));
}

void TestViewerProgram::endsOnDamagedFiles_data()
{
    QTest::addColumn<int>("sixteenths");
    for (int sixteenths : {1, 4, 9, 15})
        QTest::newRow(qPrintable(QString::number(sixteenths))) << sixteenths;
}

void TestViewerProgram::endsOnDamagedFiles()
{
    QFETCH(int, sixteenths);
    const QString picture = folder.path(QStringLiteral("cut.png"));
    QFile::remove(picture);
    jp2maker::FileBytes bytes = gradientBytes;
    bytes.resize(bytes.size() * static_cast<size_t>(sixteenths) / 16);
    const ProgramRun outcome =
        run({QStringLiteral("--screenshot"), picture, folder.write(QStringLiteral("cut.jp2"), bytes)});
    // What can be saved, or nothing, and a sentence in either case.
    QVERIFY2(outcome.status == 3 || outcome.status == 1, outcome.err.constData());
    QCOMPARE(QFile::exists(picture), outcome.status == 3);
    QCOMPARE(int(outcome.err.count('\n')), 1);
    QCOMPARE(outcome.err.contains("is damaged and shown as well as can be: "), outcome.status == 3);
}

void TestViewerProgram::tellsOfDamageWhenStrict()
{
    const QString settingsFile = folder.path(QStringLiteral("own.ini"));
    {
        QSettings settings(settingsFile, QSettings::IniFormat);
        settings.setValue(QStringLiteral("XRVJP2kLayer/ResilientDecoding"), false);
    }
    jp2maker::FileBytes bytes = gradientBytes;
    bytes.resize(bytes.size() / 2);
    const QString picture = folder.path(QStringLiteral("strict.png"));
    const QString cut = folder.write(QStringLiteral("strict.jp2"), bytes);
    const ProgramRun broken = run({QStringLiteral("--screenshot"), picture, cut});
    QCOMPARE(broken.status, 1);
    QCOMPARE(broken.err.count('\n'), 1);
    QVERIFY2(broken.err.contains("strict.jp2"), broken.err.constData());
    QVERIFY(!QFile::exists(picture));
    QVERIFY(QFile::remove(settingsFile));
}

void TestViewerProgram::usesTheSettingsFileGiven()
{
    {
        QSettings settings(folder.path(QStringLiteral("own.ini")), QSettings::IniFormat);
        settings.setValue(QStringLiteral("XRVJP2kLayer/DrawOutline"), true);
        settings.setValue(QStringLiteral("XRVJP2kLayer/OutlineColor"), QColor(Qt::red));
    }
    const QString picture = folder.path(QStringLiteral("outline.png"));
    QCOMPARE(
        run({QStringLiteral("--screenshot"), picture, QStringLiteral("--size"), QStringLiteral("400x400"), gradient})
            .status,
        0);
    // Two pixels per cell, so the picture's rows 50 to 349 are image, and the outermost of them is outline.
    QCOMPARE(QImage(picture).pixelColor(200, 50), QColor(Qt::red));
    QVERIFY(QFile::remove(folder.path(QStringLiteral("own.ini"))));
}

void TestViewerProgram::livesWithBadSettings()
{
    folder.writeText(QStringLiteral("own.ini"),
                     "[XRVJP2kLayer]\nCacheMaxMemMb=much\nDiskCacheMaxSizeMb=1000000000000\nDefaultClipTransform=-5\n"
                     "XrvpCacheDir=/proc/none/such\nOutlineColor=no colour\nOpenProgressive=perhaps\n"
                     "TextureDither=@Invalid()\nResampleType=nearest\nXRVPUserAgent=\"a\\r\\nb\"\n"
                     "[Viewer]\nGeometry=none\nState=@ByteArray(xyz)\n");
    const QString picture = folder.path(QStringLiteral("picture.png"));
    const ProgramRun window = run({QStringLiteral("--window"), picture, gradient});
    QVERIFY2(window.status == 0, window.err.constData());
    const ProgramRun map = run({QStringLiteral("--screenshot"), picture, QStringLiteral("--size"),
                                QStringLiteral("%1x%2").arg(kWidth).arg(kHeight), gradient});
    QVERIFY2(map.status == 0, map.err.constData());
    QCOMPARE(QImage(picture).pixel(32, 21), colourOf(32, 21));
    QVERIFY(QFile::remove(folder.path(QStringLiteral("own.ini"))));
}

void TestViewerProgram::refusesInOneLine_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("reason");
    QTest::addColumn<QStringList>("variables");
    const QString describe = QStringLiteral("--describe");
    const QString settings = QStringLiteral("--settings");
    const QStringList none;
    QTest::newRow("wrong option") << QStringList{QStringLiteral("--nonsense")} << 2 << QByteArray("nonsense") << none;
    QTest::newRow("no display") << QStringList{gradient} << 1 << QByteArray("display") << none;
    QTest::newRow("display out of reach")
        << QStringList{QStringLiteral("--window"), folder.path(QStringLiteral("w.png")), gradient} << 1
        << QByteArray("(could not connect to display :4321)") << QStringList{QStringLiteral("DISPLAY=:4321")};
    QTest::newRow("settings in a folder")
        << QStringList{describe, gradient, settings, folder.path()} << 1 << QByteArray("settings") << none;
    QTest::newRow("folder as source") << QStringList{describe, folder.path()} << 1 << QByteArray("folder") << none;
    QTest::newRow("nothing as source") << QStringList{describe, QString()} << 2 << QByteArray("empty") << none;
}

void TestViewerProgram::refusesInOneLine()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, reason);
    QFETCH(QStringList, variables);
    const ProgramRun outcome = run(arguments, variables);
    QTEST(outcome.status, "status");
    QCOMPARE(int(outcome.err.count('\n')), 1);
    QVERIFY2(outcome.err.startsWith("qdviewer: ") && outcome.err.contains(reason), outcome.err.constData());
}

void TestViewerProgram::handlesBusyPeople()
{
    const QString noise = folder.makeImage(QStringLiteral("noise.jp2"), noiseImage());
    Korvane::PluginRegistry registry;
    QCOMPARE(registry.loadFolder(QStringLiteral(PLUGIN_FOLDER)), 1);
    MainWindow window(registry);
    window.resize(900, 700);
    window.show();
    for (int round = 0; round < 12; ++round) {
        QCOMPARE(window.addSources({noise}, nullptr), QStringList());
        MapView *view = window.mapArea()->currentView();
        for (int i = 0; i < 10; ++i) {
            const QPointF pointer(100.0 + 40 * i, 300);
            QWheelEvent wheel(pointer, view->mapToGlobal(pointer.toPoint()), QPoint(), QPoint(0, i < 7 ? 120 : -240),
                              Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
            QApplication::sendEvent(view, &wheel);
            QTest::mousePress(view, Qt::LeftButton, Qt::NoModifier, QPoint(200, 200));
            QTest::mouseMove(view, QPoint(200 + 9 * i, 180));
            QTest::mouseRelease(view, Qt::LeftButton, Qt::NoModifier, QPoint(200 + 9 * i, 180));
            QTest::keyClick(view, i % 2 ? Qt::Key_Left : Qt::Key_Plus);
            QCoreApplication::processEvents();
        }
        if (round % 3 == 0)
            window.mainActions()->closeView->trigger();
        else if (round % 3 == 1)
            view->removeLayer(view->getLayer(0));
    }
    // Every third of the twelve was closed and goes from the event loop.
    QTRY_COMPARE(window.mapArea()->views().size(), 8);
    for (MapView *view : window.mapArea()->views())
        QVERIFY(view->waitUntilComplete(60000));
    window.mapArea()->closeAllViews();
}

/// Cells of the gradient hold their column, their row and 50.
void TestViewerProgram::readsTheNumbers()
{
    Korvane::PluginRegistry registry;
    QCOMPARE(registry.loadFolder(QStringLiteral(PLUGIN_FOLDER)), 1);
    MainWindow window(registry);
    window.resize(1200, 800);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QCOMPARE(window.addSources({gradient}, nullptr), QStringList());
    MapView *view = window.mapArea()->currentView();
    view->setUnitsPerPixel(0.25);
    view->setCenter(QPointF(100, -80));
    const QPoint pointer = view->worldToWidget(QPointF(120.3, -77.8)).toPoint();
    const auto says = [&](const QString &text) {
        const QList<QLabel *> fields = window.statusBar()->findChildren<QLabel *>();
        return std::any_of(fields.begin(), fields.end(), [&](const QLabel *field) { return field->text() == text; });
    };
    QMouseEvent move(QEvent::MouseMove, pointer, Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(view, &move);
    QTRY_VERIFY(says(QStringLiteral("120 77 50")));
    const QPointF place = view->widgetToWorld(pointer);
    view->setUnitsPerPixel(4); // the pointer stays, the map moves below it
    QVERIFY(!says(QStringLiteral("120 77 50")) || place != view->widgetToWorld(pointer));
    view->setCenter(place);
    view->panBy(pointer - view->worldToWidget(place)); // and the place comes back
    QTRY_VERIFY(says(QStringLiteral("\u2248 120 76 50")) || says(QStringLiteral("\u2248 120 80 50")));

    auto *dock = window.findChild<Viewer::IdentifyDock *>();
    QTest::mouseClick(view, Qt::LeftButton, Qt::NoModifier, view->worldToWidget(QPointF(60, -70)).toPoint());
    QVERIFY(!dock->text().contains(QLatin1String("60, 70"))); // nobody sees it yet
    dock->identify(QPointF(199.5, -149.5));
    QTRY_VERIFY2(dock->text().contains(QLatin1String("\t199, 149\n")), qPrintable(dock->text()));
    QVERIFY(dock->text().contains(QLatin1String("\t199\n")) && dock->text().contains(QLatin1String("\t50\n")));
    dock->identify(QPointF(201, -1));
    QTRY_VERIFY2(dock->text().contains(QLatin1String("lies elsewhere")), qPrintable(dock->text()));
    window.mapArea()->closeAllViews();
}

/// From the whole image to where one cell is larger than the window.
void TestViewerProgram::wheelNeverMeetsAnEmptyMap()
{
    Korvane::PluginRegistry registry;
    QCOMPARE(registry.loadFolder(QStringLiteral(PLUGIN_FOLDER)), 1);
    MainWindow window(registry);
    window.resize(3840, 2160);
    window.show();
    QCOMPARE(window.addSources({folder.makeImage(QStringLiteral("noise.jp2"), noiseImage())}, nullptr), QStringList());
    MapView *view = window.mapArea()->currentView();
    view->zoomToAll();
    const QPointF pointer = QRectF(view->rect()).center() + QPointF(7, 5);
    for (int notch = 0; view->getUnitsPerPixel() > 1.0 / 4000; ++notch) {
        QVERIFY(view->waitUntilComplete(60000));
        const QImage picture = view->grab().toImage();
        for (const QPoint &offset : {QPoint(0, 0), QPoint(-300, -200), QPoint(300, 200)})
            QVERIFY2(picture.pixelColor(pointer.toPoint() + offset) != QColor(Qt::white),
                     qPrintable(QString::number(notch)));
        QWheelEvent wheel(pointer, view->mapToGlobal(pointer.toPoint()), QPoint(), QPoint(0, 120), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(view, &wheel);
    }
    window.mapArea()->closeAllViews();
}

QTEST_MAIN(TestViewerProgram)
#include "tst_viewerprogram.moc"
