#include "log/logdock.h"

#include <QDGui/application.h>

#include <QClipboard>
#include <QComboBox>
#include <QPushButton>
#include <QTreeView>
#include <QtTest>

using Korvane::Application;
using Viewer::LogDock;

/// The dock with the host's log.
class TestLogDock : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void levelHidesAndBringsBack();
    void levelIsTheHosts();
    void copiesSelectionOrAll();

private:
    static void add(const QString &text, Application::LogLevel level);
    QStringList shownTexts() const;
    QComboBox *levels() const { return dock->findChild<QComboBox *>(); }
    QTreeView *table() const { return dock->findChild<QTreeView *>(); }
    QString copied() const;

    std::unique_ptr<LogDock> dock;
};

void TestLogDock::init()
{
    Application::setLogLevel(Application::LogTrace);
    Application::instance()->clearLogHistory();
    QCoreApplication::processEvents(); // lines of the last test on their way
    dock = std::make_unique<LogDock>();
}

void TestLogDock::cleanup()
{
    dock.reset();
    Application::setLogLevel(Application::LogDebug);
}

void TestLogDock::add(const QString &text, Application::LogLevel level)
{
    Application::logMessage(text, level, QDateTime::fromSecsSinceEpoch(0));
    QCoreApplication::processEvents();
}

QStringList TestLogDock::shownTexts() const
{
    QStringList texts;
    const QAbstractItemModel *model = table()->model();
    for (int row = 0; row < model->rowCount(); ++row)
        texts.append(model->index(row, 2).data().toString());
    return texts;
}

QString TestLogDock::copied() const
{
    QGuiApplication::clipboard()->clear();
    for (QPushButton *button : dock->findChildren<QPushButton *>()) {
        if (button->text() == QLatin1String("&Copy"))
            button->click();
    }
    return QGuiApplication::clipboard()->text();
}

void TestLogDock::levelHidesAndBringsBack()
{
    add(QStringLiteral("range"), Application::LogTrace);
    add(QStringLiteral("damage"), Application::LogWarning);
    add(QStringLiteral("opened"), Application::LogInfo);
    levels()->setCurrentIndex(Application::LogInfo);
    QCOMPARE(shownTexts(), QStringList({QStringLiteral("damage"), QStringLiteral("opened")}));
    levels()->setCurrentIndex(Application::LogFatal);
    QCOMPARE(shownTexts(), QStringList());
    levels()->setCurrentIndex(Application::LogTrace);
    QCOMPARE(shownTexts(), QStringList({QStringLiteral("range"), QStringLiteral("damage"), QStringLiteral("opened")}));
}

void TestLogDock::levelIsTheHosts()
{
    Application::setLogLevel(Application::LogError);
    const LogDock other;
    QCOMPARE(other.findChild<QComboBox *>()->currentIndex(), int(Application::LogError));
    other.findChild<QComboBox *>()->setCurrentIndex(Application::LogWarning);
    QCOMPARE(int(Application::getLogLevel()), int(Application::LogWarning));
}

void TestLogDock::copiesSelectionOrAll()
{
    add(QStringLiteral("hidden"), Application::LogDebug);
    add(QStringLiteral("first\nof two lines"), Application::LogWarning);
    add(QStringLiteral("second"), Application::LogWarning);
    levels()->setCurrentIndex(Application::LogWarning);
    const QStringList all = copied().split(QLatin1Char('\t'));
    QCOMPARE(all.size(), 5); // two lines of three columns
    QVERIFY(all[2].startsWith(QLatin1String("first\nof two lines\n")));
    QCOMPARE(all[4], QStringLiteral("second"));

    table()->selectionModel()->select(table()->model()->index(1, 0),
                                      QItemSelectionModel::Select | QItemSelectionModel::Rows);
    QVERIFY(copied().endsWith(QLatin1String("\tWarning\tsecond")));
    QCOMPARE(copied().count(QLatin1Char('\t')), 2);
}

QTEST_MAIN(TestLogDock)
#include "tst_logdock.moc"
