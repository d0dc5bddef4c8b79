#include "layerprobe.h"
#include "testimages.h"

#include "sdk/stream/webfile.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QElapsedTimer>
#include <QLabel>
#include <QTimer>
#include <QtTest>

#include <atomic>
#include <functional>
#include <memory>

using namespace Korvane;

using Handler = FaultServer::Handler;
using Request = FaultServer::Request;
using Connection = FaultServer::Connection;

/// Streams that take their time to open, beside windows that stay alive.
class TestLayerOpening : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void slowServer();
    void wholeFileShowsItsBytes();
    void withoutAWindow();
    void cancelledIsFailed_data();
    void cancelledIsFailed();
    void cancelledBackingStore();
    void asksForNothingElseMeanwhile();
    void deletedMeanwhile_data();
    void deletedMeanwhile();
    void reconnectingWaitsForNothing();

private:
    /// Has the server answer by \a answer from now on.
    void serve(const Handler &answer) { server->setHandler(answer); }
    QString address(const char *path = "/scene%20one.jp2") const
    {
        return QString::fromStdString(server->address(path, "me:sesame"));
    }
    /// Calls \a act once, as soon as the dialog is there.
    void whenWaiting(const std::function<void(QDialog &)> &act);

    std::unique_ptr<TestFolder> folder;
    std::unique_ptr<FaultServer> server;
    std::unique_ptr<QLabel> window;
    std::unique_ptr<QTimer> watch;
    bool hasWaited = false;
};

namespace {

constexpr int kSilenceMs = 20000;
constexpr int kSlownessMs = 800; // beyond a person's patience
constexpr std::size_t kPiece = 50000;
constexpr int kOpeningRequests = 2; // that the images below take before cells are asked for

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
    hasWaited = false;
}

void TestLayerOpening::cleanup()
{
    watch.reset();
    window.reset();
    server.reset();
    folder.reset();
}

void TestLayerOpening::whenWaiting(const std::function<void(QDialog &)> &act)
{
    watch = std::make_unique<QTimer>();
    connect(watch.get(), &QTimer::timeout, this, [this, act] {
        if (auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget())) {
            watch->stop();
            hasWaited = true;
            act(*dialog);
        }
    });
    watch->start(5);
}

void TestLayerOpening::slowServer()
{
    serve(slow(byteImage()));
    QString text;
    int ticks = 0;
    QTimer tick;
    connect(&tick, &QTimer::timeout, this, [&] { ++ticks; });
    tick.start(20);
    whenWaiting([&](QDialog &dialog) { text = textOf(dialog); });
    XRVJP2kLayer layer(nullptr);
    QVERIFY2(layer.setDataSource(address()), qPrintable(layer.getLastError()));
    QVERIFY(hasWaited);
    QCOMPARE(text, QStringLiteral("Opening scene one.jp2 from 127.0.0.1...|"));
    QVERIFY2(ticks > kSlownessMs / 20 / 2, qPrintable(QString::number(ticks)));
    QVERIFY(layer.isValid());
    QCOMPARE(layer.getSize(), QSize(700, 700));
    QVERIFY(!QApplication::activeModalWidget());
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
    QStringList texts;
    whenWaiting([&](QDialog &dialog) {
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
    for (const QString &text : qAsConst(texts))
        QVERIFY2(text.endsWith(QStringLiteral(" of ") + total), qPrintable(text));
}

void TestLayerOpening::withoutAWindow()
{
    window->hide();
    serve(slow(byteImage()));
    bool hasTurned = false;
    const QObject scope;
    QTimer::singleShot(0, &scope, [&] { hasTurned = true; });
    XRVJP2kLayer layer(nullptr);
    QVERIFY(layer.setDataSource(address()));
    QVERIFY(!hasTurned);
}

void TestLayerOpening::cancelledIsFailed_data()
{
    QTest::addColumn<int>("bits");
    QTest::addColumn<int>("answers");
    QTest::addColumn<int>("clip"); // of the image that was shown before
    QTest::newRow("silent from the beginning") << 8 << 0 << 100;
    QTest::newRow("silent in the header") << 8 << 1 << 100;
    QTest::newRow("silent when cells are to be stretched") << 16 << kOpeningRequests << 100;
    QTest::newRow("silent when cells are stretched as before") << 8 << kOpeningRequests << 90;
}

void TestLayerOpening::cancelledIsFailed()
{
    QFETCH(int, bits);
    QFETCH(int, answers);
    QFETCH(int, clip);
    TestFolder::setSetting("UseBackingstore", true);
    const QString local = folder->makeImage(QStringLiteral("local.jp2"), colourImage(64, 48));
    XRVJP2kLayer layer(nullptr);
    QVERIFY(layer.setDataSource(local));
    layer.setTransformClip(clip);

    serve(silentAfter(bits == 8 ? byteImage() : wordImage(), answers));
    QElapsedTimer sinceCancel;
    whenWaiting([&](QDialog &dialog) {
        sinceCancel.start();
        cancel(dialog);
    });
    QVERIFY(!layer.setDataSource(address()));
    QVERIFY(hasWaited);
    QVERIFY2(sinceCancel.elapsed() < 200, qPrintable(QString::number(sinceCancel.elapsed())));
    QCOMPARE(layer.getLastError(), QStringLiteral("The opening was cancelled."));
    QVERIFY(!layer.isValid());
    QVERIFY(!layer.getFile() && !LayerProbe::backingRenderer(layer));
    QVERIFY(layer.getBandList().isEmpty());

    QVERIFY(layer.setDataSource(local));
    QCOMPARE(layer.getBandList(), QVector<int>({0, 1, 2}));
    QCOMPARE(layer.getLastError(), QString());
}

void TestLayerOpening::cancelledBackingStore()
{
    TestFolder::setSetting("UseBackingstore", true);
    serve(silentAfter(byteImage(), kOpeningRequests));
    whenWaiting(cancel);
    XRVJP2kLayer layer(nullptr);
    QVERIFY(!layer.setDataSource(address("/backed.jp2")));
    QVERIFY(hasWaited);
    // The main renderer stays open, and the rest as it was.
    QVERIFY(layer.getFile() && !LayerProbe::backingRenderer(layer));
    QVERIFY(!layer.isValid());
    QCOMPARE(layer.getLastError(), QString());
    QVERIFY(layer.getBandList().isEmpty());
}

void TestLayerOpening::asksForNothingElseMeanwhile()
{
    const QString local = folder->makeImage(QStringLiteral("local.jp2"), colourImage(64, 48));
    serve(slow(byteImage()));
    XRVJP2kLayer layer(nullptr);
    QVERIFY(layer.setDataSource(local));
    viewWhole(layer);
    whenWaiting([&](QDialog &) {
        QVERIFY(!layer.getFile());
        QVERIFY(!layer.setDataSource(local));
        QCOMPARE(layer.getLastError(), QStringLiteral("Another source is being opened."));
        layer.setProgressive(false);
        layer.setTransformClip(50);
        viewWhole(layer);
        paintedWhole(layer);
        // Where the store was off, as here, this opens again.
        layer.setBackingStore(false);
    });
    QVERIFY2(layer.setDataSource(address()), qPrintable(layer.getLastError()));
    QVERIFY(hasWaited);
    QVERIFY(layer.isValid());
    QCOMPARE(layer.getLastError(), QString());
    QCOMPARE(layer.getSize(), QSize(700, 700));
    QCOMPARE(layer.getTransformClip(), 100);
    QVERIFY(LayerProbe::renderer(layer)->IsProgressive());
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
    whenWaiting([&](QDialog &) {
        sinceDeleted.start();
        delete layer;
    });
    if (way == QLatin1String("setDataSource"))
        QVERIFY(!layer->setDataSource(address("/other.jp2")));
    else if (way == QLatin1String("setProgressive"))
        layer->setProgressive(false);
    else
        layer->setBackingStore(true);
    QVERIFY(hasWaited);
    QVERIFY2(sinceDeleted.elapsed() < 200, qPrintable(QString::number(sinceDeleted.elapsed())));
}

void TestLayerOpening::reconnectingWaitsForNothing()
{
    TestFolder::setSetting("OpenProgressive", false);
    serve(byteImage().handler());
    XRVJP2kLayer layer(nullptr);
    QVERIFY(layer.setDataSource(address("/lost.jp2")));
    server->stop();
    viewWhole(layer);
    paintedWhole(layer); // the read that finds out
    QCOMPARE(layer.getFile()->GetLastError().GetErrorNumber(), int(PLK_ERR_CONNECTION_LOST));

    serve(keepSilent);
    server->start();
    qint64 &lastReconnect = LayerProbe::lastReconnectTime(layer);
    lastReconnect = 0;
    QElapsedTimer timer;
    timer.start();
    viewWhole(layer);
    QVERIFY(lastReconnect > 0);
    QVERIFY2(timer.elapsed() < 200, qPrintable(QString::number(timer.elapsed())));
    // And the map waits no longer than it must for a server that may be there again.
    paintedWhole(layer);
    QVERIFY2(timer.elapsed() < 6000, qPrintable(QString::number(timer.elapsed())));
}

QTEST_MAIN(TestLayerOpening)
#include "tst_layeropening.moc"
