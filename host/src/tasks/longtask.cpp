#include <QDGui/longtask.h>

#include "taskthread.h"
#include "waitingdialog.h"

#include <QDGui/application.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QMainWindow>
#include <QPointer>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <optional>
#include <system_error>

namespace Korvane::Gui {

namespace {

constexpr int kUnnoticedMs = 40; // what is done by then needs no event loop
constexpr int kPatienceMs = 500; // from the beginning until the dialog
constexpr int kPollIntervalMs = 8;

int runningTasks = 0;
bool hasSeenQuit = false; // at the end of a task, whose caller may have others to come

/// Puts the arrow in the place of a wait cursor: there is a button to click.
class PlainCursor
{
public:
    PlainCursor()
        : isSet(QApplication::overrideCursor() != nullptr)
    {
        if (isSet)
            QApplication::setOverrideCursor(Qt::ArrowCursor);
    }
    ~PlainCursor()
    {
        if (isSet)
            QApplication::restoreOverrideCursor();
    }
    PlainCursor(const PlainCursor &) = delete;
    PlainCursor &operator=(const PlainCursor &) = delete;

private:
    const bool isSet;
};

/// The window that a person is likely to look at.
QWidget *windowInFront()
{
    for (QWidget *window : {QApplication::activeModalWidget(), QApplication::activeWindow(),
                            static_cast<QWidget *>(Application::instance()->getMainWindow())}) {
        if (window && window->isVisible())
            return window;
    }
    return nullptr;
}

bool turnOnce()
{
    bool hasTurned = false;
    QEventLoop loop; // does not begin while the application quits
    QTimer::singleShot(0, &loop, [&] {
        hasTurned = true;
        loop.quit();
    });
    loop.exec(QEventLoop::ExcludeUserInputEvents);
    return hasTurned;
}

/// Whether the application quits, or is about to: the first turn may handle an event that tells it to.
bool isQuitting()
{
    return !turnOnce() || !turnOnce(); // NOLINT(misc-redundant-expression): each call is another turn
}

/// One task under way.
class Waiting
{
public:
    Waiting(const LongTask &task, TaskThread &thread)
        : task(task)
        , thread(thread)
    {
        ++runningTasks;
        sinceBegin.start();
        // Where a dialog and its window are closed together on a busy machine, the toolkit may tell that no window is
        // left and yet not quit.
        QObject::connect(qApp, &QGuiApplication::lastWindowClosed, &listener, [] {
            if (QGuiApplication::quitOnLastWindowClosed())
                QCoreApplication::quit();
        });
    }
    ~Waiting()
    {
        end();
        --runningTasks;
    }
    Waiting(const Waiting &) = delete;
    Waiting &operator=(const Waiting &) = delete;

    LongTask::Outcome wait();

private:
    bool turnEvents(QEventLoop::ProcessEventsFlags flags, const std::function<bool()> &isEnough) const;
    bool waitWithDialog();
    void end();

    const LongTask &task;
    TaskThread &thread;
    QElapsedTimer sinceBegin;
    bool isEnded = false;
    const QObject listener;
};

LongTask::Outcome Waiting::wait()
{
    thread.waitFor(kUnnoticedMs);
    const auto isDone = [this] { return thread.isDone(); };
    // Until there is a dialog in front of the windows, nothing must be done in them.
    bool goesOn = isDone() || turnEvents(QEventLoop::ExcludeUserInputEvents,
                                         [&] { return isDone() || sinceBegin.hasExpired(kPatienceMs); });
    goesOn = goesOn && (isDone() || waitWithDialog());
    if (goesOn && isDone())
        return LongTask::Outcome::Done;
    end();
    if (goesOn)
        turnEvents(QEventLoop::ExcludeUserInputEvents, isDone);
    // The dialog may have been closed with all other windows.
    hasSeenQuit = isQuitting();
    return LongTask::Outcome::Cancelled;
}

/// Handles events until \a isEnough. False when the application quits before.
bool Waiting::turnEvents(QEventLoop::ProcessEventsFlags flags, const std::function<bool()> &isEnough) const
{
    QEventLoop loop;
    QTimer poll; // no signal from the other thread: it may end while nobody listens
    QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
        if (isEnough())
            loop.quit();
    });
    poll.start(kPollIntervalMs);
    loop.exec(flags);
    return isEnough();
}

/// Until the task is done or the person has had enough. False when the application quits before.
bool Waiting::waitWithDialog()
{
    const PlainCursor cursor;
    // The window may be destroyed, and its dialogs with it.
    const QPointer<WaitingDialog> dialog(new WaitingDialog(task.title, task.text, windowInFront()));
    const auto isEnough = [&] {
        if (thread.isDone() || !dialog || !dialog->isVisible())
            return true;
        if (task.progress)
            dialog->setProgress(task.progress());
        return false;
    };
    if (task.progress)
        dialog->setProgress(task.progress());
    dialog->show();
    const bool goesOn = turnEvents(QEventLoop::AllEvents, isEnough);
    delete dialog;
    return goesOn;
}

void Waiting::end()
{
    if (isEnded || thread.isDone())
        return;
    isEnded = true;
    if (task.cancel)
        task.cancel();
}

bool isPainting()
{
    const QWidgetList widgets = QApplication::allWidgets();
    return std::any_of(widgets.cbegin(), widgets.cend(),
                       [](const QWidget *widget) { return widget->testAttribute(Qt::WA_WState_InPaintEvent); });
}

bool showsWindow()
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    return std::any_of(windows.cbegin(), windows.cend(), [](const QWidget *window) { return window->isVisible(); });
}

} // namespace

bool LongTask::canStayAlive()
{
    const auto *application = qobject_cast<QApplication *>(QCoreApplication::instance());
    return application && application->thread() == QThread::currentThread() && !QCoreApplication::closingDown() &&
           showsWindow() && !isPainting();
}

bool LongTask::isRunning()
{
    return runningTasks > 0;
}

LongTask::Outcome LongTask::run() const
{
    hasSeenQuit = hasSeenQuit && isQuitting();
    if (hasSeenQuit)
        return Outcome::Cancelled;
    std::optional<TaskThread> thread;
    try {
        if (canStayAlive())
            thread.emplace(work);
    } catch (const std::system_error &) {
        // Without a thread to spare the windows have to wait.
    }
    if (!thread) {
        work();
        return Outcome::Done;
    }
    const Outcome outcome = Waiting(*this, *thread).wait();
    thread->finish();
    return outcome;
}

} // namespace Korvane::Gui
