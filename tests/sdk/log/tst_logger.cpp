#include "data/latch.h"
#include "data/logrecorder.h"

#include "log/logger.h"

#include <QtTest>

#include <thread>

class TestLogger : public QObject
{
    Q_OBJECT

private slots:
    void levelsAreAsked();
    void narrowAndWide();
    void removalWaitsForTheCall();
    void sinkMayLogAndRemoveItself();
    void threadsLogWhileSinksChange();
    void threadsAreAttachedAndDetached();
};

void TestLogger::levelsAreAsked()
{
    QVERIFY(!xrv::logEnabled(PLK_LOG_FATAL));
    LogRecorder<char> sink;
    sink.threshold = PLK_LOG_WARNING;
    QVERIFY(xrv::logEnabled(PLK_LOG_WARNING));
    QVERIFY(!xrv::logEnabled(PLK_LOG_INFO));
    xrv::log(PLK_LOG_INFO, std::string("dropped"));
    xrv::log(PLK_LOG_ERROR, std::string("kept"));
    QCOMPARE(sink.lines.size(), std::size_t(1));
    QCOMPARE(sink.lines[0].first, int(PLK_LOG_ERROR));
    QCOMPARE(sink.lines[0].second, std::string("kept"));
}

void TestLogger::narrowAndWide()
{
    LogRecorder<char> narrow;
    LogRecorder<wchar_t> wide;
    xrv::log(PLK_LOG_INFO, std::string("a"));
    xrv::log(PLK_LOG_INFO, std::wstring(L"東京"));
    QCOMPARE(narrow.lines.size(), std::size_t(1));
    QCOMPARE(wide.lines.size(), std::size_t(1));
    QVERIFY(wide.lines[0].second == L"東京");
    wide.remove(); // then the other one takes them
    xrv::log(PLK_LOG_INFO, std::wstring(L"東京"));
    QCOMPARE(narrow.lines.back().second, std::string("東京"));
}

void TestLogger::removalWaitsForTheCall()
{
    LogRecorder<char> sink;
    Latch entered;
    std::atomic<bool> removing{false}, left{false};
    sink.onWrite = [&](int) {
        entered.open();
        waitUntil([&] { return removing.load(); });
        letOthersRun();
        left = true;
    };
    std::thread writer([] { xrv::log(PLK_LOG_INFO, std::string("slow")); });
    QVERIFY(entered.wait());
    removing = true;
    sink.remove();
    const bool waited = left;
    writer.join();
    QVERIFY(waited);
}

void TestLogger::sinkMayLogAndRemoveItself()
{
    LogRecorder<char> sink;
    int depth = 0;
    sink.onWrite = [&](int) {
        if (++depth == 1)
            xrv::log(PLK_LOG_INFO, std::string("from within"));
        else
            sink.remove();
    };
    xrv::log(PLK_LOG_INFO, std::string("first"));
    xrv::log(PLK_LOG_INFO, std::string("to nobody"));
    QCOMPARE(sink.lines.size(), std::size_t(2));
}

void TestLogger::threadsLogWhileSinksChange()
{
    std::atomic<bool> stop{false};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&stop] {
            while (!stop) {
                xrv::log(PLK_LOG_INFO, std::string("narrow"));
                xrv::log(PLK_LOG_DEBUG, std::wstring(L"wide"));
            }
        });
    std::size_t lines = 0;
    for (int i = 0; i < 50 || lines == 0; ++i) {
        LogRecorder<char> narrow; // gone at once after its removal
        LogRecorder<wchar_t> wide;
        std::this_thread::yield();
        narrow.remove();
        wide.remove();
        lines += narrow.lines.size() + wide.lines.size();
        QCOMPARE(narrow.strangers + wide.strangers, 0);
    }
    stop = true;
    for (std::thread &thread : threads)
        thread.join();
}

void TestLogger::threadsAreAttachedAndDetached()
{
    LogRecorder<char> sink;
    for (int t = 0; t < 3; ++t)
        std::thread([] {
            xrv::log(PLK_LOG_INFO, std::string("one"));
            xrv::log(PLK_LOG_INFO, std::string("two"));
        }).join();
    QCOMPARE(sink.lines.size(), std::size_t(6));
    QVERIFY(!sink.attached.empty());
    QVERIFY(sink.attached == sink.detached); // all have ended
}

QTEST_GUILESS_MAIN(TestLogger)
#include "tst_logger.moc"
