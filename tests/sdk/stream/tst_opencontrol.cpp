#include "webfile.h"

#include "data/jp2maker.h"

#include <xrv60/plkview.h>

#include <QElapsedTimer>
#include <QtTest>

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>
#include <vector>

using Handler = FaultServer::Handler;
using Request = FaultServer::Request;
using Connection = FaultServer::Connection;
Q_DECLARE_METATYPE(Handler)

/// Openings that another thread watches and ends.
class TestOpenControl : public QObject
{
    Q_OBJECT

private slots:
    void cancelEndsTheWait_data();
    void cancelEndsTheWait();
    void cancelledBeforehand();
    void tellsHowMuchCame();
    void saysNothingOfRanges();
};

namespace {

constexpr std::size_t kPiece = 100000;
constexpr int kPieceMs = 20;
constexpr int kSilenceMs = 20000;

/// 16 bits, which an opening renderer stretches, of noise, which does not shrink.
const WebFile &image()
{
    static const WebFile file = [] {
        jp2maker::Options options;
        options.width = options.height = 1500;
        options.components[0].bits = 16;
        options.cell = [](int, int x, int y) { return ((x * 7919) ^ (y * 104729) ^ (x * y)) & 0xFFFF; };
        const jp2maker::FileBytes bytes = jp2maker::make(options);
        WebFile made;
        made.bytes.assign(bytes.begin(), bytes.end());
        return made;
    }();
    return file;
}

bool keepSilent(const Request &, const Connection &connection)
{
    connection.linger(kSilenceMs);
    return false;
}

Handler silentAfter(int answers)
{
    const auto count = std::make_shared<std::atomic<int>>(0);
    return [=](const Request &request, const Connection &connection) {
        return count->fetch_add(1) < answers ? connection.send(image().answer(request))
                                             : keepSilent(request, connection);
    };
}

/// Gives the whole file whatever is asked for, a piece at a time.
bool giveWholeSlowly(const Request &, const Connection &connection)
{
    const std::string answer = image().whole();
    for (std::size_t done = 0; done < answer.size(); done += kPiece) {
        if (!connection.send(answer.substr(done, kPiece)))
            return false;
        connection.linger(kPieceMs);
    }
    return true;
}

/// Opens as the layer does: what a stretch of the cells needs belongs to it.
PLK::CError openAndStretch(PLK::CView &view, const std::string &address)
{
    if (PLK::CError error = view.Open(PLK::CString(address.c_str()), true, false))
        return error;
    const unsigned band = 0;
    std::vector<std::unique_ptr<PLK::API::CMinMaxTransform>> transforms;
    return view.CalculateMinMaxTransforms(1, &band, &transforms, 99.0, 100);
}

} // namespace

void TestOpenControl::cancelEndsTheWait_data()
{
    QTest::addColumn<Handler>("handler");
    QTest::addColumn<int>("requests"); // when these have come, the thread waits
    QTest::newRow("silent server") << Handler(keepSilent) << 1;
    QTest::newRow("falls silent after the header") << silentAfter(1) << 2;
    QTest::newRow("out of service, to be asked again") << Handler([](const Request &, const Connection &connection) {
        return connection.send(httpAnswer("503 Service Unavailable", "Retry-After: 4\r\n"));
    }) << 1;
    QTest::newRow("slow download of the whole") << Handler(giveWholeSlowly) << 1;
}

void TestOpenControl::cancelEndsTheWait()
{
    QFETCH(Handler, handler);
    QFETCH(int, requests);
    std::atomic<int> asked{0};
    FaultServer server([&](const Request &request, const Connection &connection) {
        ++asked;
        return handler(request, connection);
    });
    PLK::CView view;
    PLK::COpenControl control;
    view.SetOpenControl(control);
    PLK::CError error;
    std::atomic<bool> isDone{false};
    std::thread opener([&] {
        error = openAndStretch(view, server.address("/a.jp2"));
        isDone = true;
    });
    QElapsedTimer timer;
    timer.start();
    while (asked < requests && timer.elapsed() < 5000)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    const bool waited = !isDone;
    timer.start();
    PLK::COpenControl(control).Cancel();
    opener.join();
    const qint64 elapsed = timer.elapsed();
    QVERIFY(waited);
    QCOMPARE(asked.load(), requests);
    QVERIFY2(elapsed < 200, qPrintable(QString::number(elapsed)));
    QCOMPARE(error.GetErrorNumber(), int(PLK_ERR_CANCELLED));
}

void TestOpenControl::cancelledBeforehand()
{
    FaultServer server(image().handler());
    PLK::CView view;
    PLK::COpenControl control;
    control.Cancel();
    view.SetOpenControl(control);
    const PLK::CError error = view.Open(PLK::CString(server.address("/a.jp2").c_str()), true, false);
    QCOMPARE(error.GetErrorNumber(), int(PLK_ERR_CANCELLED));
    QCOMPARE(QByteArray(error.GetErrorMessage()), QByteArray("The opening was cancelled."));
    QVERIFY(!view.IsOpen());
    // With another control the same view opens the same file.
    view.SetOpenControl({});
    QVERIFY(!openAndStretch(view, server.address("/a.jp2")));
}

void TestOpenControl::tellsHowMuchCame()
{
    FaultServer server(giveWholeSlowly);
    PLK::CView view;
    const PLK::COpenControl control;
    view.SetOpenControl(control);
    PLK::CError error;
    std::atomic<bool> isDone{false};
    std::thread opener([&] {
        error = openAndStretch(view, server.address("/whole.jp2"));
        isDone = true;
    });
    std::vector<std::uint64_t> seen;
    bool isExpectedRight = true;
    while (!isDone) {
        const std::uint64_t received = control.GetBytesReceived();
        isExpectedRight = isExpectedRight && (received == 0 || control.GetBytesExpected() == image().bytes.size());
        if (seen.empty() || seen.back() != received)
            seen.push_back(received);
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    opener.join();
    QVERIFY2(!error, error.GetErrorMessage());
    QVERIFY(isExpectedRight);
    QVERIFY(std::is_sorted(seen.begin(), seen.end()));
    QVERIFY2(seen.size() > 5, qPrintable(QString::number(seen.size())));
    QCOMPARE(control.GetBytesReceived(), std::uint64_t(image().bytes.size()));
}

void TestOpenControl::saysNothingOfRanges()
{
    FaultServer server(image().handler());
    PLK::CView view;
    const PLK::COpenControl control;
    view.SetOpenControl(control);
    QVERIFY(!openAndStretch(view, server.address("/ranges.jp2")));
    QCOMPARE(control.GetBytesReceived(), std::uint64_t(0));
    QCOMPARE(control.GetBytesExpected(), std::uint64_t(0));
}

QTEST_GUILESS_MAIN(TestOpenControl)
#include "tst_opencontrol.moc"
