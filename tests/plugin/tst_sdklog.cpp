#include "data/testfolder.h"
#include "logging/logsinks.h"
#include "plugin/xrvjp2klayerplugin.h"

#include <QDGui/application.h>
#include <xrv60/plkinit.h>
#include <xrv60/plkview.h>

#include <QtTest>

#include <condition_variable>
#include <mutex>

using Korvane::Application;

namespace {

/// Waits for the last pass; its lines are decoded on the SDK's own thread.
class ProgressiveView : public PLK::CView
{
public:
    ~ProgressiveView() override { Close(true); }

    PLKReadStatus RefreshPass(PLKSetViewInfo *) override
    {
        const std::lock_guard<std::mutex> lock(mutex);
        isDone = GetPercentComplete() == 100;
        changed.notify_all();
        return PLK_READ_SUCCESS;
    }
    /// Columns from \a left on.
    bool show(int left = 0)
    {
        {
            const std::lock_guard<std::mutex> lock(mutex);
            isDone = false;
        }
        const int band = 0;
        const auto size = static_cast<int>(GetFileInfo()->nSizeX);
        if (SetView(1, &band, size - left, size, left, 0, size, -size))
            return false;
        std::unique_lock<std::mutex> lock(mutex);
        return changed.wait_for(lock, std::chrono::seconds(30), [this] { return isDone; });
    }

private:
    std::mutex mutex; ///< guards isDone
    std::condition_variable changed;
    bool isDone = false;
};

/// Sixteen tiles, the cells of most of which are damaged.
jp2maker::FileBytes damagedFile()
{
    jp2maker::Options options;
    options.width = options.height = 256;
    options.tileWidth = options.tileHeight = 64;
    options.cell = [](int, int x, int y) { return (x * 7919 + y * 104729) % 256; };
    jp2maker::FileBytes bytes = jp2maker::make(options);
    // Tile-part headers (SOT and SOD, ISO/IEC 15444-1 A.4.2) stay whole.
    for (std::size_t at = 600; at + 600 < bytes.size(); ++at) {
        const auto header = [&](std::size_t i) { return bytes[i] == 0xFF && bytes[i + 1] == 0x90; };
        bool isNear = false;
        for (std::size_t i = at - 14; i < at + 2; ++i)
            isNear = isNear || header(i);
        if (!isNear && at % 3 == 0)
            bytes[at] = 0xFE;
    }
    return bytes;
}

struct Message
{
    QString words;
    int level;
};

} // namespace

/// Which of the SDK's messages reach the host's log.
class TestSdkLog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void everyHostLevel_data();
    void everyHostLevel();
    void switchedOff();
    void eachKindIsToldOnce_data();
    void eachKindIsToldOnce();
    void sinksComeAndGoWithThePlugin();
    void levels();
    void texts();

private:
    void workWithFiles() const;
    static QVector<Application::LogEntry> linesWith(const QString &words);

    std::unique_ptr<TestFolder> folder;
    std::unique_ptr<XRVJP2kLayerPlugin> plugin;
};

void TestSdkLog::init()
{
    folder = std::make_unique<TestFolder>();
    folder->write(QStringLiteral("bad.jp2"), damagedFile());
    setLogSinksEnabled(true);
    Application::setLogLevel(Application::LogFatal);
    plugin = std::make_unique<XRVJP2kLayerPlugin>();
    Application::instance()->clearLogHistory();
}

void TestSdkLog::cleanup()
{
    plugin.reset();
    folder.reset();
    Application::setLogLevel(Application::LogDebug);
}

QVector<Application::LogEntry> TestSdkLog::linesWith(const QString &words)
{
    QVector<Application::LogEntry> lines;
    for (const auto &entry : Application::instance()->getLogHistory()) {
        if (entry.text.contains(words))
            lines.append(entry);
    }
    return lines;
}

void TestSdkLog::workWithFiles() const
{
    const QByteArray name = folder->path(QStringLiteral("bad.jp2")).toUtf8();
    ProgressiveView view;
    QVERIFY(view.Open(name.constData(), true, false).IsSuccess());
    QVERIFY(view.show());
    PLKFileStatistics *statistics = nullptr;
    QVERIFY(view.GetClientStatistics(&statistics).IsSuccess());
    PLKFreeStatistics(statistics);
    view.Close(true);
    QVERIFY(view.Open((name + "x").constData(), true, false));
}

void TestSdkLog::everyHostLevel_data()
{
    QTest::addColumn<int>("hostLevel");
    for (int level = 0; level <= 5; ++level)
        QTest::addRow("%d", level) << level;
}

void TestSdkLog::everyHostLevel()
{
    QFETCH(int, hostLevel);
    const QVector<Message> messages = {
        {QStringLiteral("bytes in"), 0},          // ranges read
        {QStringLiteral("were decoded in"), 0},   // from the view's own thread
        {QStringLiteral("Statistics of"), 1},     //
        {QStringLiteral("Opened \""), 2},         //
        {QStringLiteral("Closed \""), 2},         //
        {QStringLiteral("bad.jp2\": Tile"), 3},   // damage
        {QStringLiteral("x\" was not opened"), 4} //
    };
    Application::setLogLevel(static_cast<Application::LogLevel>(hostLevel));
    workWithFiles();
    for (const Message &message : messages) {
        const auto lines = linesWith(message.words);
        QVERIFY2(lines.isEmpty() == (message.level < hostLevel), qPrintable(message.words));
        if (!lines.isEmpty())
            QCOMPARE(int(lines.front().level), message.level);
    }
}

void TestSdkLog::switchedOff()
{
    Application::setLogLevel(Application::LogTrace);
    setLogSinksEnabled(false);
    workWithFiles();
    QCOMPARE(Application::instance()->getLogHistory().size(), 0);
}

void TestSdkLog::eachKindIsToldOnce_data()
{
    QTest::addColumn<bool>("isResilient");
    QTest::addColumn<int>("level");
    QTest::newRow("damage that is lived with") << true << int(Application::LogWarning);
    QTest::newRow("views that fail") << false << int(Application::LogError);
}

void TestSdkLog::eachKindIsToldOnce()
{
    QFETCH(bool, isResilient);
    QFETCH(int, level);
    const QByteArray name = folder->path(QStringLiteral("bad.jp2")).toUtf8();
    PLK::SDK::CFileBase::sFilesHelper().Get()->Config().SetResilientDecodingEnabled(isResilient);
    Application::setLogLevel(Application::LogWarning);
    ProgressiveView view;
    QVERIFY(view.Open(name.constData(), true, false).IsSuccess());
    for (int left : {0, 40, 80, 120})
        QVERIFY(view.show(left));
    QSet<QString> kinds;
    const auto lines = Application::instance()->getLogHistory();
    for (const auto &line : lines) {
        QVERIFY2(line.text.contains(QStringLiteral("bad.jp2\": ")), qPrintable(line.text));
        QCOMPARE(int(line.level), level);
        kinds.insert(QString(line.text).remove(QRegularExpression(QStringLiteral("\\d"))));
    }
    QVERIFY(!lines.isEmpty());
    QCOMPARE(lines.size(), kinds.size());
}

void TestSdkLog::sinksComeAndGoWithThePlugin()
{
    plugin.reset();
    Application::setLogLevel(Application::LogTrace);
    plugin = std::make_unique<XRVJP2kLayerPlugin>();
    QCOMPARE(linesWith(QStringLiteral("SDK started")).size(), 1);
    Application::instance()->clearLogHistory();
    plugin.reset(); // the SDK says farewell to nobody
    workWithFiles();
    QCOMPARE(Application::instance()->getLogHistory().size(), 0);
}

void TestSdkLog::levels()
{
    plugin.reset();
    for (int level = Application::LogTrace; level <= Application::LogFatal; ++level) {
        Application::setLogLevel(static_cast<Application::LogLevel>(level));
        const int least = 10000 * (level + 1);
        for (const int asked : {-1, least - 1, least, least + 1}) {
            QCOMPARE(charLogSink().isLevelEnabled(nullptr, asked), asked >= least);
            QCOMPARE(wcharLogSink().isLevelEnabled(nullptr, asked), asked >= least);
        }
    }
    Application::setLogLevel(Application::LogTrace);
    const QVector<QPair<int, int>> levels = {{-1, 5},    {0, 0},     {10000, 0}, {20000, 1}, {25000, 1},
                                             {30000, 2}, {40000, 3}, {50000, 4}, {60000, 5}, {70000, 1}};
    for (const auto &[level, hostLevel] : levels) {
        Application::instance()->clearLogHistory();
        charLogSink().write(nullptr, level, "narrow");
        wcharLogSink().write(nullptr, level, L"wide");
        for (const auto &entry : Application::instance()->getLogHistory())
            QCOMPARE(int(entry.level), hostLevel);
    }
}

void TestSdkLog::texts()
{
    charLogSink().write(nullptr, 60000, "\xe6\x9d\xb1");
    charLogSink().write(nullptr, 60000, nullptr);
    setLogSinksEnabled(false); // writing does not ask
    wcharLogSink().write(nullptr, 60000, L"\u6771");
    QStringList texts;
    for (const auto &entry : Application::instance()->getLogHistory())
        texts.append(entry.text);
    QCOMPARE(texts, (QStringList{QString(QChar(0x6771)), QString(), QString(QChar(0x6771))}));
}

QTEST_MAIN(TestSdkLog)
#include "tst_sdklog.moc"
