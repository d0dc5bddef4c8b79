#include "data/dialogwatch.h"

#include <QDGui/longtask.h>

#include <QElapsedTimer>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QtTest>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <thread>

using Korvane::Gui::LongTask;

/// Work that keeps a person waiting.
class TestLongTask : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { window.reset(); }

    void quickWorkTurnsNoEvents();
    void windowsStayAlive();
    void showsHowFarItIs();
    void waysToCancel_data();
    void waysToCancel();
    void endsWithItsWindow();
    void keepsInputFromTheWindow();
    void exceptionsComeBack();
    void waitsWithoutAWindow();
    void waitsWhilePainting();
    void tasksWithinTasks();
    void endsWhenTheApplicationQuits();

private:
    std::unique_ptr<QPushButton> window;
};

namespace {

constexpr int kBeyondPatience = 900; // milliseconds: the dialog is there

/// Work that takes its time, until it is cancelled.
struct Sleep
{
    explicit Sleep(int milliseconds)
        : end(std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds))
    {
    }
    void operator()()
    {
        where = std::this_thread::get_id();
        std::unique_lock<std::mutex> lock(mutex);
        changed.wait_until(lock, end, [this] { return bool(isCancelled); });
        isOver = true;
    }
    LongTask task()
    {
        LongTask made;
        made.title = QStringLiteral("Title");
        made.text = QStringLiteral("Opening a.jp2 from server...");
        made.work = [this] { (*this)(); };
        made.cancel = [this] {
            const std::lock_guard<std::mutex> lock(mutex);
            isCancelled = true;
            changed.notify_all();
        };
        return made;
    }

    const std::chrono::steady_clock::time_point end;
    std::thread::id where;
    std::atomic<bool> isCancelled{false}, isOver{false};

private:
    std::mutex mutex;
    std::condition_variable changed; ///< of isCancelled
};

QDialog *shownDialog()
{
    return qobject_cast<QDialog *>(QApplication::activeModalWidget());
}

using WhenShown = DialogWatch<QDialog>;

/// Until it quits; what may have told it to once more does not reach the next time.
void runApplication()
{
    QApplication::exec();
    QCoreApplication::removePostedEvents(qApp, QEvent::Quit);
}

class PaintedWidget : public QWidget
{
public:
    std::function<void()> whilePainting;

protected:
    void paintEvent(QPaintEvent *) override
    {
        if (whilePainting)
            whilePainting();
    }
};

} // namespace

void TestLongTask::init()
{
    window = std::make_unique<QPushButton>(QStringLiteral("Window"));
    window->resize(400, 300);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
}

void TestLongTask::quickWorkTurnsNoEvents()
{
    bool hasTurned = true;
    for (int i = 0; hasTurned && i < 20; ++i) { // the machine may be busy
        const QObject scope;
        QTimer::singleShot(0, &scope, [&] { hasTurned = true; });
        hasTurned = false;
        Sleep sleep(2);
        QCOMPARE(sleep.task().run(), LongTask::Outcome::Done);
        QVERIFY(sleep.isOver);
        QVERIFY(sleep.where != std::this_thread::get_id());
    }
    QVERIFY(!hasTurned);
}

void TestLongTask::windowsStayAlive()
{
    int ticks = 0;
    bool wasRunning = false, isPainted = false;
    QTimer timer;
    connect(&timer, &QTimer::timeout, this, [&] {
        ++ticks;
        wasRunning = LongTask::isRunning();
    });
    timer.start(10);
    PaintedWidget widget;
    widget.whilePainting = [&] { isPainted = true; };
    widget.show();
    WhenShown watch([](QDialog &) {});
    Sleep sleep(300);
    QCOMPARE(sleep.task().run(), LongTask::Outcome::Done);
    QVERIFY2(ticks > 5, qPrintable(QString::number(ticks)));
    QVERIFY(wasRunning && isPainted);
    QVERIFY(!watch.shown);
    QVERIFY(!LongTask::isRunning());
}

void TestLongTask::showsHowFarItIs()
{
    LongTask::Progress progress;
    QStringList seen;
    WhenShown watch([&](QDialog &dialog) {
        QVERIFY(dialog.isModal());
        QCOMPARE(dialog.windowTitle(), QStringLiteral("Title"));
        auto *bar = dialog.findChild<QProgressBar *>();
        const QList<QLabel *> labels = dialog.findChildren<QLabel *>();
        QCOMPARE(labels.size(), 2);
        QCOMPARE(labels[0]->text(), QStringLiteral("Opening a.jp2 from server..."));
        QCOMPARE(bar->maximum(), 0); // busy
        progress = {quint64(3) << 40, quint64(4) << 40, QStringLiteral("3 of 4")};
        QTRY_COMPARE(labels[1]->text(), QStringLiteral("3 of 4"));
        QCOMPARE(bar->value() * 4, bar->maximum() * 3);
        progress.total = 0;
        QTRY_COMPARE(bar->maximum(), 0);
    });
    Sleep sleep(1500);
    LongTask task = sleep.task();
    task.progress = [&] { return progress; };
    QCOMPARE(task.run(), LongTask::Outcome::Done);
    QVERIFY(watch.shown);
    QVERIFY(!shownDialog());
}

void TestLongTask::waysToCancel_data()
{
    QTest::addColumn<QString>("way");
    QTest::newRow("button") << "button";
    QTest::newRow("Escape") << "Escape";
    QTest::newRow("closed") << "closed";
}

void TestLongTask::waysToCancel()
{
    QFETCH(QString, way);
    QElapsedTimer sinceCancel;
    WhenShown watch([&](QDialog &dialog) {
        // Whoever has just chosen a file with the Enter key did not mean to cancel it.
        QTest::keyClick(&dialog, Qt::Key_Return);
        QVERIFY(dialog.isVisible());
        sinceCancel.start();
        if (way == QLatin1String("button"))
            QTest::mouseClick(dialog.findChild<QPushButton *>(), Qt::LeftButton);
        else if (way == QLatin1String("Escape"))
            QTest::keyClick(&dialog, Qt::Key_Escape);
        else
            dialog.close();
    });
    Sleep sleep(20000);
    QCOMPARE(sleep.task().run(), LongTask::Outcome::Cancelled);
    QVERIFY2(sinceCancel.elapsed() < 200, qPrintable(QString::number(sinceCancel.elapsed())));
    QVERIFY(sleep.isOver);
}

void TestLongTask::endsWithItsWindow()
{
    WhenShown watch([&](QDialog &dialog) {
        QCOMPARE(dialog.parentWidget(), window.get());
        window.reset();
    });
    Sleep sleep(20000);
    window->activateWindow();
    QTRY_VERIFY(window->isActiveWindow());
    QCOMPARE(sleep.task().run(), LongTask::Outcome::Cancelled);
    QVERIFY(sleep.isOver);
}

void TestLongTask::keepsInputFromTheWindow()
{
    int clicks = 0;
    connect(window.get(), &QPushButton::clicked, this, [&] { ++clicks; });
    const auto click = [&] { QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {}, QPoint(20, 20)); };
    WhenShown watch([&](QDialog &) { click(); });
    QApplication::setOverrideCursor(Qt::WaitCursor);
    Sleep sleep(kBeyondPatience);
    QCOMPARE(sleep.task().run(), LongTask::Outcome::Done);
    QVERIFY(watch.shown);
    QCOMPARE(clicks, 0);
    QCOMPARE(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
    QApplication::restoreOverrideCursor();
    click();
    QTRY_COMPARE(clicks, 1);
}

void TestLongTask::exceptionsComeBack()
{
    LongTask task;
    task.work = [] { throw std::runtime_error("broken"); };
    QVERIFY_EXCEPTION_THROWN(task.run(), std::runtime_error);
    QVERIFY(!LongTask::isRunning());
}

void TestLongTask::waitsWithoutAWindow()
{
    window->hide();
    QVERIFY(!LongTask::canStayAlive());
    Sleep sleep(60);
    QCOMPARE(sleep.task().run(), LongTask::Outcome::Done);
    QCOMPARE(sleep.where, std::this_thread::get_id());

    window->show();
    QVERIFY(LongTask::canStayAlive());
    bool canElsewhere = true;
    std::thread([&] { canElsewhere = LongTask::canStayAlive(); }).join();
    QVERIFY(!canElsewhere);
}

void TestLongTask::waitsWhilePainting()
{
    PaintedWidget widget;
    Sleep sleep(60);
    widget.whilePainting = [&] {
        widget.whilePainting = nullptr;
        QCOMPARE(sleep.task().run(), LongTask::Outcome::Done);
    };
    widget.show();
    QTRY_VERIFY(sleep.isOver);
    QCOMPARE(sleep.where, std::this_thread::get_id());
}

void TestLongTask::tasksWithinTasks()
{
    Sleep outer(kBeyondPatience + 300), inner(20000);
    LongTask::Outcome outcome = LongTask::Outcome::Done;
    WhenShown watch([&](QDialog &first) {
        QTimer::singleShot(700, this, [&] {
            QVERIFY(shownDialog() != &first);
            shownDialog()->reject();
        });
        outcome = inner.task().run();
        QVERIFY(first.isVisible());
    });
    QCOMPARE(outer.task().run(), LongTask::Outcome::Done);
    QCOMPARE(outcome, LongTask::Outcome::Cancelled);
    QVERIFY(inner.isCancelled && !outer.isCancelled);
}

void TestLongTask::endsWhenTheApplicationQuits()
{
    Sleep sleep(20000);
    LongTask::Outcome outcome = LongTask::Outcome::Done;
    WhenShown watch([](QDialog &) { QApplication::closeAllWindows(); });
    QElapsedTimer timer;
    timer.start();
    QTimer::singleShot(0, this, [&] { outcome = sleep.task().run(); });
    runApplication();
    QCOMPARE(outcome, LongTask::Outcome::Cancelled);
    QVERIFY(sleep.isOver && !window->isVisible());

    // What the same caller wants then is not begun, though there is no window left to be kept alive.
    Sleep further(20000);
    window->show();
    QTimer::singleShot(0, this, [&] {
        Sleep first(20000);
        first.task().run();
        outcome = further.task().run();
    });
    WhenShown again([](QDialog &) { QApplication::closeAllWindows(); });
    runApplication();
    QCOMPARE(outcome, LongTask::Outcome::Cancelled);
    QCOMPARE(further.where, std::thread::id());

    // Before there is a dialog, by way of the session's end.
    window->show();
    Sleep another(20000);
    QTimer::singleShot(0, this, [&] { outcome = another.task().run(); });
    QTimer::singleShot(100, this, [] { QApplication::quit(); });
    runApplication();
    QCOMPARE(outcome, LongTask::Outcome::Cancelled);
    QVERIFY(another.isOver);
    QVERIFY2(timer.elapsed() < 15000, qPrintable(QString::number(timer.elapsed())));
}

QTEST_MAIN(TestLongTask)
#include "tst_longtask.moc"
