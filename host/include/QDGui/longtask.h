#pragma once

#include <QDGui/qdguiglobal.h>

#include <QString>

#include <functional>

namespace Korvane::Gui {

/// A piece of work that a caller cannot go on without and that may keep a person waiting, such as the opening of a file
/// on a server. Done on a thread of its own while the windows stay alive: they are painted, timers fire and layers
/// report their pixels. What the person does with mouse and keyboard waits; after about half a second a small dialog,
/// modal to the application, says what is going on and offers to cancel it.
///
/// To run() is to turn the event loop: what the caller holds may be gone or changed afterwards.
class QDGUI_EXPORT LongTask
{
public:
    enum class Outcome {
        Done,     ///< the work has returned by itself
        Cancelled ///< the person did not want to wait, or the application quits; the work was ended, or not begun
    };

    struct Progress
    {
        quint64 done = 0;
        quint64 total = 0; ///< 0 while it is not known
        QString text;      ///< in words, shown below the bar; may be empty
    };

    /// Of the dialog.
    QString title, text;
    /// What is to be done. Called at most once, from whatever thread.
    std::function<void()> work;
    /// Makes the work return soon. Called at most once, from the calling thread.
    std::function<void()> cancel;
    /// How far the work is; may be empty. Called on the calling thread while the dialog is shown.
    std::function<Progress()> progress;

    /// Returns after the work has returned, and passes its exceptions on. Where no event loop may be turned, the work
    /// is simply done by the calling thread: see canStayAlive().
    Outcome run() const;

    /// Whether run() leaves the windows alive: on the GUI thread of an application that shows a window, and not while a
    /// widget paints itself.
    static bool canStayAlive();
    /// Whether a task is under way that leaves the windows alive: what comes up meanwhile and is not to happen within
    /// its caller had better wait. GUI thread.
    static bool isRunning();
};

} // namespace Korvane::Gui
