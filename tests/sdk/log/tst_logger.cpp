#include "log/logger.h"

#include <xrv60/plklog.h>

#include <QtTest>

#include <condition_variable>
#include <functional>
#include <set>
#include <thread>

namespace {

template <typename Char> class Sink : public PLK::ILogger<Char>
{
public:
    void attach(void *context) override
    {
        const std::lock_guard<std::mutex> lock(mutex);
        attached.insert(context);
    }
    void detach(void *context) override
    {
        const std::lock_guard<std::mutex> lock(mutex);
        detached.insert(context);
    }
    bool isLevelEnabled(void *, int level) override { return level >= threshold; }
    void write(void *context, int level, const Char *text) override
    {
        {
            const std::lock_guard<std::mutex> lock(mutex);
            if (attached.count(context) == 0)
                ++strangers;
            lines.emplace_back(level, text);
        }
        if (onWrite)
            onWrite(level);
    }

    int threshold = PLK_LOG_TRACE;
    std::function<void(int)> onWrite;
    std::mutex mutex; ///< guards what follows
    std::vector<std::pair<int, std::basic_string<Char>>> lines;
    std::set<void *> attached, detached;
    int strangers = 0;
};

/// Lets one side wait for the other.
class Gate
{
public:
    void open()
    {
        const std::lock_guard<std::mutex> lock(mutex);
        isOpen = true;
        changed.notify_all();
    }
    bool wait(int milliseconds = 10000)
    {
        std::unique_lock<std::mutex> lock(mutex);
        return changed.wait_for(lock, std::chrono::milliseconds(milliseconds), [this] { return isOpen; });
    }

private:
    std::mutex mutex;
    std::condition_variable changed;
    bool isOpen = false;
};

void registerNarrow(PLK::ILogger<char> *sink)
{
    PLK::CLog::RegisterLogger(sink);
}

void registerWide(PLK::ILogger<wchar_t> *sink)
{
    PLK::CLog::RegisterLogger(sink);
}

} // namespace

class TestLogger : public QObject
{
    Q_OBJECT

private slots:
    void cleanup()
    {
        registerNarrow(nullptr);
        registerWide(nullptr);
    }
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
    Sink<char> sink;
    sink.threshold = PLK_LOG_WARNING;
    registerNarrow(&sink);
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
    Sink<char> narrow;
    Sink<wchar_t> wide;
    registerNarrow(&narrow);
    registerWide(&wide);
    xrv::log(PLK_LOG_INFO, std::string("a"));
    xrv::log(PLK_LOG_INFO, std::wstring(L"東京"));
    QCOMPARE(narrow.lines.size(), std::size_t(1));
    QCOMPARE(wide.lines.size(), std::size_t(1));
    QVERIFY(wide.lines[0].second == L"東京");
    registerWide(nullptr); // then the other one takes them
    xrv::log(PLK_LOG_INFO, std::wstring(L"東京"));
    QCOMPARE(narrow.lines.back().second, std::string("東京"));
}

void TestLogger::removalWaitsForTheCall()
{
    Sink<char> sink;
    Gate entered, leave;
    std::atomic<bool> left{false}, removed{false};
    sink.onWrite = [&](int) {
        entered.open();
        leave.wait();
        left = true;
    };
    registerNarrow(&sink);
    std::thread writer([] { xrv::log(PLK_LOG_INFO, std::string("slow")); });
    QVERIFY(entered.wait());
    std::thread remover([&] {
        registerNarrow(nullptr);
        removed = true;
        if (!left)
            qFatal("the sink was given back while it was in a call");
    });
    QTest::qWait(20);
    QVERIFY(!removed);
    leave.open();
    writer.join();
    remover.join();
    QVERIFY(removed);
}

void TestLogger::sinkMayLogAndRemoveItself()
{
    Sink<char> sink;
    int depth = 0;
    sink.onWrite = [&](int) {
        if (++depth == 1)
            xrv::log(PLK_LOG_INFO, std::string("from within"));
        else
            registerNarrow(nullptr);
    };
    registerNarrow(&sink);
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
        Sink<char> narrow; // gone at once after its removal
        Sink<wchar_t> wide;
        registerNarrow(&narrow);
        registerWide(&wide);
        std::this_thread::yield();
        registerNarrow(nullptr);
        registerWide(nullptr);
        lines += narrow.lines.size() + wide.lines.size();
        QCOMPARE(narrow.strangers + wide.strangers, 0);
    }
    stop = true;
    for (std::thread &thread : threads)
        thread.join();
}

void TestLogger::threadsAreAttachedAndDetached()
{
    Sink<char> sink;
    registerNarrow(&sink);
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
