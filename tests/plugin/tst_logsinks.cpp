#include "data/testfolder.h"
#include "logging/logsinks.h"

#include <QDGui/application.h>

#include <QtTest>

using Korvane::Application;

class TestLogSinks : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void enabledLevels_data();
    void enabledLevels();
    void switchedOff();
    void hostLevels_data();
    void hostLevels();
    void texts();

private:
    TestFolder folder;
};

void TestLogSinks::init()
{
    setLogSinksEnabled(true);
    Application::instance()->clearLogHistory();
}

void TestLogSinks::cleanup()
{
    Application::setLogLevel(Application::LogInfo);
}

void TestLogSinks::enabledLevels_data()
{
    QTest::addColumn<int>("hostLevel");
    QTest::addColumn<int>("threshold");
    QTest::newRow("0") << 0 << 10000;
    QTest::newRow("1") << 1 << 20000;
    QTest::newRow("2") << 2 << 30000;
    QTest::newRow("3") << 3 << 40000;
    QTest::newRow("4") << 4 << 50000;
    QTest::newRow("5") << 5 << 60000;
}

void TestLogSinks::enabledLevels()
{
    QFETCH(int, hostLevel);
    QFETCH(int, threshold);
    Application::setLogLevel(static_cast<Application::LogLevel>(hostLevel));
    QVERIFY(charLogSink().isLevelEnabled(nullptr, threshold));
    QVERIFY(wcharLogSink().isLevelEnabled(nullptr, threshold + 1));
    QVERIFY(!charLogSink().isLevelEnabled(nullptr, threshold - 1));
    QVERIFY(!wcharLogSink().isLevelEnabled(nullptr, -1));
}

void TestLogSinks::switchedOff()
{
    Application::setLogLevel(Application::LogDebug);
    setLogSinksEnabled(false);
    QVERIFY(!charLogSink().isLevelEnabled(nullptr, 60000));
    QVERIFY(!wcharLogSink().isLevelEnabled(nullptr, 60000));
    // Writing does not ask.
    charLogSink().write(nullptr, 60000, "text");
    QCOMPARE(Application::instance()->getLogHistory().size(), 1);
}

void TestLogSinks::hostLevels_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<int>("hostLevel");
    const QVector<QPair<int, int>> levels = {{-1, 5},    {0, 0},     {10000, 0}, {20000, 1}, {25000, 1},
                                             {30000, 2}, {40000, 3}, {50000, 4}, {60000, 5}, {70000, 1}};
    for (const auto &[level, hostLevel] : levels)
        QTest::addRow("%d", level) << level << hostLevel;
}

void TestLogSinks::hostLevels()
{
    QFETCH(int, level);
    QFETCH(int, hostLevel);
    Application::setLogLevel(Application::LogDebug);
    charLogSink().write(nullptr, level, "narrow");
    wcharLogSink().write(nullptr, level, L"wide");
    const auto history = Application::instance()->getLogHistory();
    QCOMPARE(history.size(), 2);
    QCOMPARE(int(history[0].level), hostLevel);
    QCOMPARE(int(history[1].level), hostLevel);
}

void TestLogSinks::texts()
{
    charLogSink().write(nullptr, 40000, "\xe6\x9d\xb1");
    charLogSink().write(nullptr, 40000, nullptr);
    wcharLogSink().write(nullptr, 40000, L"\u6771");
    const auto history = Application::instance()->getLogHistory();
    QCOMPARE(history.size(), 3);
    QCOMPARE(history[0].text, QString(QChar(0x6771)));
    QCOMPARE(history[1].text, QString());
    QCOMPARE(history[2].text, QString(QChar(0x6771)));
}

QTEST_GUILESS_MAIN(TestLogSinks)
#include "tst_logsinks.moc"
