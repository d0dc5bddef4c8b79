#pragma once

#include <QDGui/longtask.h>

#include <QDialog>

class QLabel;
class QProgressBar;

namespace Korvane::Gui {

/// Says what an application is waiting for and how far that is. Its button, Escape and the closing of it reject it.
class WaitingDialog : public QDialog
{
    Q_OBJECT

public:
    WaitingDialog(const QString &title, const QString &text, QWidget *parent);

    void setProgress(const LongTask::Progress &progress);

private:
    Q_DISABLE_COPY(WaitingDialog)

    QLabel *message;
    QProgressBar *bar;
    QLabel *details;
};

} // namespace Korvane::Gui
