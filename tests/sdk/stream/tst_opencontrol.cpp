#include "webfile.h"

#include "data/jp2maker.h"

#include <xrv60/plkview.h>

#include <QElapsedTimer>
#include <QtTest>

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

private:
    /// Calls \a reached before \a next.
    Handler telling(const Handler &next) const
    {
        return [=](const Request &request, const Connection &connection) {
            reached();
            return next(request, connection);
        };
    }
    std::function<void()> reached; ///< called on the server's thread: the opening waits
};

namespace {

constexpr std::size_t kPiece = 100000;

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

/// Gives the whole file whatever is asked for, a piece at a time, and calls \a sent after each.
Handler givingWholeSlowly(const std::function<void()> &sent)
{
    return [sent](const Request &, const Connection &connection) {
        const std::string answer = image().whole();
        for (std::size_t done = 0; done < answer.size(); done += kPiece) {
            if (!connection.send(answer.substr(done, kPiece)))
                return false;
            connection.linger(20);
            sent();
        }
        return true;
    };
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
    QTest::newRow("silent server") << telling(silence());
    QTest::newRow("falls silent after the header") << afterOpening(image(), telling(silence()));
    QTest::newRow("out of service, to be asked again")
        << Handler([this](const Request &, const Connection &connection) {
               const bool goesOn = connection.send(httpAnswer("503 Service Unavailable", "Retry-After: 4\r\n"));
               reached();
               return goesOn;
           });
    QTest::newRow("slow download of the whole") << givingWholeSlowly([this] { reached(); });
}

void TestOpenControl::cancelEndsTheWait()
{
    QFETCH(Handler, handler);
    PLK::CView view;
    PLK::COpenControl control;
    view.SetOpenControl(control);
    QElapsedTimer timer;
    reached = [&] {
        if (!timer.isValid())
            timer.start();
        PLK::COpenControl(control).Cancel();
    };
    FaultServer server(handler);
    const PLK::CError error = openAndStretch(view, server.address("/a.jp2"));
    QVERIFY2(timer.elapsed() < 200, qPrintable(QString::number(timer.elapsed())));
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
    const PLK::COpenControl control;
    std::vector<std::uint64_t> seen;
    bool isExpectedRight = true;
    FaultServer server(givingWholeSlowly([&] {
        const std::uint64_t received = control.GetBytesReceived();
        isExpectedRight = isExpectedRight && (received == 0 || control.GetBytesExpected() == image().bytes.size());
        if (seen.empty() || seen.back() != received)
            seen.push_back(received);
    }));
    PLK::CView view;
    view.SetOpenControl(control);
    const PLK::CError error = openAndStretch(view, server.address("/whole.jp2"));
    server.stop();
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
