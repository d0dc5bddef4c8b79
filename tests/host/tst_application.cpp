#include <QDGui/application.h>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QMainWindow>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <QTranslator>

#include <memory>
#include <thread>
#include <vector>

using Korvane::Application;

namespace {

/// Read before main(), as static objects of a library do.
const QVariant earlySetting = Application::instance()->settings()->value(QStringLiteral("Test/NoSuchKey"), 17);

} // namespace

class TestApplication : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void settingsWorkBeforeTheToolkitStarts();
    void settingsFileIsUsedFromThenOn();
    void logsFromTheLevelOn();
    void logsFromManyThreads();
    void historyIsBounded();
    void mainWindowMayGo();
    void missingTranslationsAreLeftOut();
    void installsTranslationsBesideTheExecutable();
};

void TestApplication::init()
{
    QCoreApplication::processEvents();
    Application::instance()->clearLogHistory();
    Application::setLogLevel(Application::LogDebug);
}

void TestApplication::settingsWorkBeforeTheToolkitStarts()
{
    QCOMPARE(earlySetting.toInt(), 17);
}

void TestApplication::settingsFileIsUsedFromThenOn()
{
    const QTemporaryDir folder;
    const QString fileName = folder.filePath(QStringLiteral("viewer.ini"));
    QSettings *const before = Application::instance()->settings();
    Application::instance()->setSettingsFile(fileName);
    QSettings *const settings = Application::instance()->settings();
    settings->setValue(QStringLiteral("Map/Background"), QStringLiteral("ocean"));
    QVERIFY(settings != before);
    QVERIFY(!before->contains(QStringLiteral("Map/Background")));
    Application::instance()->setSettingsFile(QString());
    QCOMPARE(QSettings(fileName, QSettings::IniFormat).value(QStringLiteral("Map/Background")).toString(),
             QStringLiteral("ocean"));
    QVERIFY(!Application::instance()->settings()->contains(QStringLiteral("Map/Background")));
}

void TestApplication::logsFromTheLevelOn()
{
    Application *const application = Application::instance();
    QSignalSpy spy(application, &Application::messageLogged);
    const QDateTime time(QDate(2024, 2, 29), QTime(12, 30));
    Application::setLogLevel(Application::LogInfo);
    for (int level = Application::LogTrace; level <= Application::LogFatal; ++level)
        Application::logMessage(QString::number(level), static_cast<Application::LogLevel>(level), time);
    QCOMPARE(spy.count(), 0);
    QCoreApplication::processEvents();
    QCOMPARE(spy.count(), 4);
    for (int i = 0; i < 4; ++i)
        QCOMPARE(spy[i][0].toString(), QString::number(i + 2));
    const auto history = application->getLogHistory();
    QCOMPARE(history.size(), 4);
    QCOMPARE(history[3].level, Application::LogFatal);
    QCOMPARE(history[3].time, time);
}

void TestApplication::logsFromManyThreads()
{
    constexpr int kThreads = 4;
    constexpr int kLines = 500;
    int lastOfThread[kThreads] = {};
    bool isInOrder = true;
    int count = 0;
    QObject listener;
    connect(Application::instance(), &Application::messageLogged, &listener, [&](const QString &text) {
        const QStringList parts = text.split(QLatin1Char(' '));
        int &last = lastOfThread[parts[0].toInt()];
        isInOrder = isInOrder && parts[1].toInt() == last + 1 && QThread::currentThread() == thread();
        last = parts[1].toInt();
        ++count;
    });
    std::vector<std::thread> threads;
    for (int number = 0; number < kThreads; ++number) {
        threads.emplace_back([number] {
            for (int i = 1; i <= kLines; ++i) {
                Application::logMessage(QStringLiteral("%1 %2").arg(number).arg(i), Application::LogWarning,
                                        QDateTime());
                Application::getLogLevel();
            }
        });
    }
    for (int i = 0; i < 50; ++i) {
        Application::setLogLevel(i % 2 ? Application::LogDebug : Application::LogInfo);
        QCoreApplication::processEvents();
    }
    for (std::thread &thread : threads)
        thread.join();
    QTRY_COMPARE(count, kThreads * kLines);
    QVERIFY(isInOrder);
}

void TestApplication::historyIsBounded()
{
    for (int i = 0; i < Application::kMaxLogEntries + 10; ++i)
        Application::logMessage(QString::number(i), Application::LogDebug, QDateTime());
    const auto history = Application::instance()->getLogHistory();
    QCOMPARE(history.size(), static_cast<int>(Application::kMaxLogEntries));
    QCOMPARE(history.first().text, QStringLiteral("10"));
    QCOMPARE(history.last().text, QString::number(Application::kMaxLogEntries + 9));
}

void TestApplication::mainWindowMayGo()
{
    auto window = std::make_unique<QMainWindow>();
    Application::instance()->setMainWindow(window.get());
    QCOMPARE(Application::instance()->getMainWindow(), window.get());
    window.reset();
    QCOMPARE(Application::instance()->getMainWindow(), nullptr);
}

void TestApplication::missingTranslationsAreLeftOut()
{
    const auto translators =
        Application::instance()->initializeTranslations({QStringLiteral("nosuchplugin")}, QStringLiteral("de_DE"));
    QVERIFY(translators.isEmpty());
}

void TestApplication::installsTranslationsBesideTheExecutable()
{
    // The least that counts as a translation file: the format's magic number, a section of hashes and offsets (0x42)
    // with one entry, and a section of messages (0x69) with nothing but an end mark.
    static const unsigned char kCatalogue[] = {0x3c, 0xb8, 0x64, 0x18, 0xca, 0xef, 0x9c, 0x95, 0xcd, 0x21, 0x1c, 0xbf,
                                               0x60, 0xa1, 0xbd, 0xdd, 0x42, 0,    0,    0,    8,    0,    0,    0,
                                               1,    0,    0,    0,    0,    0x69, 0,    0,    0,    1,    1};
    const QDir folder(QCoreApplication::applicationDirPath() + QStringLiteral("/translations"));
    QVERIFY(folder.mkpath(QStringLiteral(".")));
    QFile file(folder.filePath(QStringLiteral("hosttest_de.qm")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(reinterpret_cast<const char *>(kCatalogue), sizeof(kCatalogue));
    file.close();
    const auto translators = Application::instance()->initializeTranslations(
        {QStringLiteral("nosuchplugin"), QStringLiteral("hosttest")}, QStringLiteral("de_DE"));
    file.remove();
    QCOMPARE(translators.size(), 1);
    QVERIFY(translators[0]->filePath().endsWith(QStringLiteral("hosttest_de.qm")));
}

int main(int argc, char **argv)
{
    // The person's own settings are none of a test's business.
    const QTemporaryDir home;
    qputenv("XDG_CONFIG_HOME", home.path().toLocal8Bit());
    QApplication application(argc, argv);
    TestApplication test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_application.moc"
