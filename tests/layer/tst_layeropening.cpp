#include "layertest.h"

#include "data/dialogwatch.h"
#include "sdk/stream/webfile.h"

#include <QElapsedTimer>
#include <QLabel>
#include <QTimer>
#include <QtTest>

#include <atomic>

using namespace Korvane;

using Handler = FaultServer::Handler;
using Request = FaultServer::Request;
using Connection = FaultServer::Connection;

using Dialogs = DialogWatch<QDialog>;

/// Streams that take their time to open, beside windows that stay alive, and streams that are lost.
class TestLayerOpening : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void wholeFileShowsItsBytes();
    void cancelledChangesNothing_data();
    void cancelledChangesNothing();
    void cancelledBackingStore();
    void askedForMeanwhile();
    void anotherSourceMeanwhile();
    void modeSwitch_data();
    void modeSwitch();
    void deletedMeanwhile_data();
    void deletedMeanwhile();
    void reconnecting_data();
    void reconnecting();
    void reconnectingWaitsForNothing();
    void backingPictureWhileRoaming_data();
    void backingPictureWhileRoaming();

private:
    /// Has the server answer by \a answer from now on.
    void serve(const Handler &answer) { server->setHandler(answer); }
    QString address(const char *path = "/scene%20one.jp2") const
    {
        return QString::fromStdString(server->address(path, "me:sesame"));
    }
    /// \a layer, of cells that are decoded while they are painted, finds out that its server has gone.
    void lose(XRVJP2kLayer &layer);

    std::unique_ptr<TestFolder> folder;
    std::unique_ptr<FaultServer> server;
    std::unique_ptr<QLabel> window;
};

namespace {

constexpr int kSilenceMs = 20000;
constexpr int kSlownessMs = 800; // beyond a person's patience
constexpr std::size_t kPiece = 50000;
constexpr int kOpeningRequests = 1; // that the images below take before cells are asked for

WebFile webFile(int bits)
{
    jp2maker::Options options;
    options.width = options.height = 700;
    options.components[0].bits = bits;
    options.cell = [bits](int, int x, int y) { return ((x * 7919) ^ (y * 104729) ^ (x * y)) & ((1 << bits) - 1); };
    const jp2maker::FileBytes bytes = jp2maker::make(options);
    WebFile file;
    file.bytes.assign(bytes.begin(), bytes.end());
    return file;
}

const WebFile &byteImage()
{
    static const WebFile file = webFile(8);
    return file;
}

const WebFile &wordImage()
{
    static const WebFile file = webFile(16);
    return file;
}

bool keepSilent(const Request &, const Connection &connection)
{
    connection.linger(kSilenceMs);
    return false;
}

/// Answers so many requests before it falls silent.
Handler silentAfter(const WebFile &file, int answers)
{
    const auto count = std::make_shared<std::atomic<int>>(0);
    return [=](const Request &request, const Connection &connection) {
        return count->fetch_add(1) < answers ? connection.send(file.answer(request)) : keepSilent(request, connection);
    };
}

Handler slow(const WebFile &file)
{
    return [=](const Request &request, const Connection &connection) {
        connection.linger(kSlownessMs);
        return connection.send(file.answer(request));
    };
}

QString textOf(const QDialog &dialog)
{
    QStringList texts;
    for (const QLabel *label : dialog.findChildren<QLabel *>())
        texts.append(label->text());
    return texts.join(QLatin1Char('|'));
}

void cancel(QDialog &dialog)
{
    dialog.findChild<QAbstractButton *>()->click();
}

} // namespace

void TestLayerOpening::init()
{
    folder = std::make_unique<TestFolder>();
    server = std::make_unique<FaultServer>(keepSilent);
    window = std::make_unique<QLabel>(QStringLiteral("Window"));
    window->show();
}

void TestLayerOpening::cleanup()
{
    window.reset();
    server.reset();
    folder.reset();
}

void TestLayerOpening::wholeFileShowsItsBytes()
{
    const WebFile &file = wordImage();
    const QString total = QString::number(double(file.bytes.size()) / 1024, 'f', 1) + QStringLiteral(" KB");
    serve([&](const Request &, const Connection &connection) {
        const std::string answer = file.whole();
        for (std::size_t done = 0; done < answer.size(); done += kPiece) {
            if (!connection.send(answer.substr(done, kPiece)))
                return false;
            connection.linger(int(2 * kSlownessMs * kPiece / answer.size()));
        }
        return true;
    });
    int ticks = 0;
    QTimer tick;
    connect(&tick, &QTimer::timeout, this, [&] { ++ticks; });
    tick.start(20);
    QStringList texts;
    const Dialogs watch([&](QDialog &dialog) {
        auto *look = new QTimer(&dialog);
        connect(look, &QTimer::timeout, this, [&] {
            const QString text = textOf(dialog);
            if (texts.isEmpty() || texts.last() != text)
                texts.append(text);
        });
        look->start(10);
    });
    XRVJP2kLayer layer(nullptr);
    QVERIFY2(layer.setDataSource(address()), qPrintable(layer.getLastError()));
    QVERIFY2(texts.size() > 3, qPrintable(texts.join(QLatin1Char('\n'))));
    for (const QString &text : qAsConst(texts)) {
        QVERIFY2(text.startsWith(QStringLiteral("Opening scene one.jp2 from 127.0.0.1...|")), qPrintable(text));
        QVERIFY2(text.endsWith(QStringLiteral(" of ") + total), qPrintable(text));
    }
    QVERIFY2(ticks > kSlownessMs / 20 / 2, qPrintable(QString::number(ticks)));
    QVERIFY(layer.isValid() && !QApplication::activeModalWidget());
}

void TestLayerOpening::cancelledChangesNothing_data()
{
    QTest::addColumn<int>("bits");
    QTest::addColumn<int>("answers");
    QTest::addColumn<int>("clip"); // of the image that was shown before
    QTest::newRow("silent from the beginning") << 8 << 0 << 100;
    QTest::newRow("silent in the header") << 8 << 1 << 100;
    QTest::newRow("silent when cells are to be stretched") << 16 << kOpeningRequests << 100;
    QTest::newRow("silent when cells are stretched as before") << 8 << kOpeningRequests << 90;
}

void TestLayerOpening::cancelledChangesNothing()
{
    QFETCH(int, bits);
    QFETCH(int, answers);
    QFETCH(int, clip);
    TestFolder::setSetting("UseBackingstore", true);
    const QString local = folder->makeImage(QStringLiteral("local.jp2"), colourImage(64, 48));
    const auto layer = openLayer(local);
    layer->setTransformClip(clip);

    serve(silentAfter(bits == 8 ? byteImage() : wordImage(), answers));
    QElapsedTimer sinceCancel;
    const Dialogs watch([&](QDialog &dialog) {
        sinceCancel.start();
        cancel(dialog);
    });
    QVERIFY(!layer->setDataSource(address()));
    QCOMPARE(watch.shown, 1);
    QVERIFY2(sinceCancel.elapsed() < 200, qPrintable(QString::number(sinceCancel.elapsed())));
    QCOMPARE(layer->getLastError(), QStringLiteral("The opening was cancelled."));
    QVERIFY(layer->isValid() && backingOf(*layer));
    QCOMPARE(layer->getSize(), QSize(64, 48));
    QCOMPARE(layer->getTransformClip(), clip);
    QCOMPARE(layer->getBandList(), QVector<int>({0, 1, 2}));
}

void TestLayerOpening::cancelledBackingStore()
{
    TestFolder::setSetting("UseBackingstore", true);
    serve(silentAfter(byteImage(), kOpeningRequests));
    const Dialogs watch(cancel);
    XRVJP2kLayer layer(nullptr);
    QVERIFY(!layer.setDataSource(address("/backed.jp2")));
    QCOMPARE(watch.shown, 1);
    QVERIFY(!layer.getFile() && !backingOf(layer));
    QVERIFY(!layer.isValid());
    QCOMPARE(layer.getLastError(), QStringLiteral("The opening was cancelled."));
}

void TestLayerOpening::askedForMeanwhile()
{
    const QString local = folder->makeImage(QStringLiteral("local.jp2"), colourImage(64, 48));
    serve(slow(byteImage()));
    XRVJP2kLayer layer(nullptr);
    QVERIFY(layer.setDataSource(local));
    viewWhole(layer);
    const Dialogs watch([&](QDialog &) {
        if (layer.getSize() != QSize(64, 48))
            return; // the other mode is opened
        layer.setTransformClip(50);
        viewWhole(layer);
        QVERIFY(paintedWhole(layer).pixel(20, 20) != QColor(Qt::white).rgb());
        layer.setProgressive(true);
        layer.setProgressive(false);
    });
    QVERIFY2(layer.setDataSource(address()), qPrintable(layer.getLastError()));
    QCOMPARE(watch.shown, 2);
    QCOMPARE(layer.getSize(), QSize(700, 700));
    QCOMPARE(layer.getTransformClip(), 50);
    QVERIFY(!layer.getProgressive() && !layer.getFile()->IsProgressive());
}

void TestLayerOpening::anotherSourceMeanwhile()
{
    const QString local = folder->makeImage(QStringLiteral("local.jp2"), colourImage(64, 48));
    serve(silentAfter(byteImage(), 0));
    XRVJP2kLayer layer(nullptr);
    const Dialogs watch([&](QDialog &) {
        QVERIFY(!layer.setDataSource(QStringLiteral("jpip://refused/image.jp2"))); // does not stop the other
        QVERIFY(!layer.getFile());
        QVERIFY(layer.setDataSource(local));
        viewWhole(layer);
    });
    QVERIFY(!layer.setDataSource(address()));
    QCOMPARE(watch.shown, 1);
    QVERIFY(layer.isValid() && layer.isOpeningCancelled() && layer.getLastError().isEmpty());
    QCOMPARE(layer.getSize(), QSize(64, 48));
    QTRY_VERIFY(paintedWhole(layer).pixel(20, 20) != QColor(Qt::white).rgb());
}

void TestLayerOpening::modeSwitch_data()
{
    QTest::addColumn<bool>("toProgressive");
    QTest::addColumn<QString>("outcome");
    for (const bool toProgressive : {true, false})
        for (const char *outcome : {"opened", "cancelled", "failed"})
            QTest::addRow("%s, %s", toProgressive ? "to progressive" : "to blocking", outcome)
                << toProgressive << outcome;
}

void TestLayerOpening::modeSwitch()
{
    QFETCH(bool, toProgressive);
    QFETCH(QString, outcome);
    TestFolder::setSetting("OpenProgressive", !toProgressive);
    serve(byteImage().handler());
    const auto layer = openLayer(address("/switched.jp2"));
    layer->setView(400, 400, 0, 0, 400, -400);
    serve(outcome == QLatin1String("failed") ? [](const Request &, const Connection &connection) {
        connection.linger(kSlownessMs);
        return connection.send("HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n");
    } : slow(byteImage()));

    const QRectF bounds = layer->getBounds();
    const Dialogs watch([&](QDialog &dialog) {
        QCOMPARE(layer->getBounds(), bounds);
        layer->setView(700, 500, 0, 0, 700, -500); // moved and resized
        if (outcome == QLatin1String("cancelled"))
            cancel(dialog);
    });
    layer->setProgressive(toProgressive);
    QCOMPARE(watch.shown, 1);
    const bool isSwitched = outcome == QLatin1String("opened");
    QVERIFY(layer->isValid());
    QCOMPARE(layer->getProgressive(), isSwitched == toProgressive);
    QCOMPARE(layer->getFile()->IsProgressive(), isSwitched == toProgressive);
    const PLKSetViewInfo view = layer->getFile()->GetSetViewInfo();
    QCOMPARE(QSize(int(view.nSizeX), int(view.nSizeY)), QSize(700, 500));
    if (isSwitched) {
        QTRY_COMPARE_WITH_TIMEOUT(int(layer->getPercentComplete()), toProgressive ? 100 : 0, 20000);
        const QImage picture = paintedWhole(*layer);
        QVERIFY(picture.pixel(650, 450) != QColor(Qt::white).rgb());
    }
}

void TestLayerOpening::deletedMeanwhile_data()
{
    QTest::addColumn<QString>("way");
    for (const char *way : {"setDataSource", "setProgressive", "setBackingStore"})
        QTest::newRow(way) << way;
}

void TestLayerOpening::deletedMeanwhile()
{
    QFETCH(QString, way);
    serve(silentAfter(byteImage(), kOpeningRequests));
    auto *layer = new XRVJP2kLayer(nullptr);
    QVERIFY(layer->setDataSource(address()));
    QElapsedTimer sinceDeleted;
    const Dialogs watch([&](QDialog &) {
        sinceDeleted.start();
        delete layer;
    });
    if (way == QLatin1String("setDataSource"))
        QVERIFY(!layer->setDataSource(address("/other.jp2")));
    else if (way == QLatin1String("setProgressive"))
        layer->setProgressive(false);
    else
        layer->setBackingStore(true);
    QCOMPARE(watch.shown, 1);
    QVERIFY2(sinceDeleted.elapsed() < 200, qPrintable(QString::number(sinceDeleted.elapsed())));
}

void TestLayerOpening::lose(XRVJP2kLayer &layer)
{
    TestFolder::setSetting("OpenProgressive", false);
    serve(byteImage().handler());
    layer.setProgressive(false);
    static int number = 0; // nothing of this one is in any cache
    QVERIFY(layer.setDataSource(address(("/lost" + std::to_string(++number) + ".jp2").c_str())));
    server->stop();
    viewWhole(layer);
    paintedWhole(layer);
    QCOMPARE(layer.getFile()->GetLastError().GetErrorNumber(), int(PLK_ERR_CONNECTION_LOST));
    server->takeRequests();
    server->start();
}

void TestLayerOpening::reconnecting_data()
{
    QTest::addColumn<qint64>("milliseconds"); // since the layer was made
    QTest::addColumn<bool>("isTried");
    QTest::newRow("nearly due") << qint64(20000) << false;
    QTest::newRow("due") << qint64(20001) << true;
}

void TestLayerOpening::reconnecting()
{
    QFETCH(qint64, milliseconds);
    QFETCH(bool, isTried);
    qint64 now = 7;
    TestFolder::setSetting("OpenProgressive", false);
    XRVJP2kLayer layer(nullptr, [&] { return now; });
    lose(layer);
    now += milliseconds;
    viewWhole(layer); // fails, and reconnects
    viewWhole(layer);
    const QImage picture = paintedWhole(layer, Qt::magenta);
    QCOMPARE(picture.pixelColor(5, 5) != QColor(Qt::magenta), isTried);
    QCOMPARE(!server->takeRequests().empty(), isTried);
    QVERIFY(layer.isValid());
    QCOMPARE(layer.getLastError(), QString());

    // Where it was tried, the next time counts from then.
    lose(layer);
    now += 20000;
    viewWhole(layer);
    paintedWhole(layer);
    QVERIFY(server->takeRequests().empty() || !isTried);
}

void TestLayerOpening::reconnectingWaitsForNothing()
{
    qint64 now = 0;
    TestFolder::setSetting("OpenProgressive", false);
    XRVJP2kLayer layer(nullptr, [&] { return now; });
    lose(layer);
    serve(keepSilent);
    now = 30000;
    QElapsedTimer timer;
    timer.start();
    viewWhole(layer);
    QVERIFY2(timer.elapsed() < 200, qPrintable(QString::number(timer.elapsed())));
    // And the map waits no longer than it must for a server that may be there again.
    paintedWhole(layer);
    QVERIFY2(timer.elapsed() < 6000, qPrintable(QString::number(timer.elapsed())));
}

void TestLayerOpening::backingPictureWhileRoaming_data()
{
    QTest::addColumn<bool>("updating");
    QTest::addColumn<double>("transparency");
    QTest::addColumn<bool>("isShown");
    QTest::newRow("at rest") << false << 1.0 << false;
    QTest::newRow("roaming") << true << 1.0 << true;
    QTest::newRow("partly transparent, roaming") << true << 0.5 << false;
}

/// Of an image with an opacity band, which hides what it is to hide once it is there.
void TestLayerOpening::backingPictureWhileRoaming()
{
    QFETCH(bool, updating);
    QFETCH(double, transparency);
    TestFolder::setSetting("UseBackingstore", true);
    jp2maker::Options options;
    options.components.resize(2);
    options.opacityLast = true;
    options.cell = [](int component, int, int) { return component == 1 ? 255 : 90; };
    WebFile file;
    const jp2maker::FileBytes bytes = jp2maker::make(options);
    file.bytes.assign(bytes.begin(), bytes.end());
    serve(file.handler());
    const auto layer = openLayer(address("/roaming.jp2"));
    layer->setTransparency(transparency);
    viewWhole(*layer);
    QTRY_COMPARE(int(layer->getPercentComplete()), 100);
    QTRY_VERIFY(!layer->hasPendingRefresh());
    rendererOf(*layer)->clearImage();
    if (updating)
        layer->beginUpdate(true);
    QTEST(paintedWhole(*layer).pixelColor(30, 20) != QColor(Qt::white), "isShown");
}

QTEST_MAIN(TestLayerOpening)
#include "tst_layeropening.moc"
