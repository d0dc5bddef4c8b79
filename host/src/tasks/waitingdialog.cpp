#include "waitingdialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace Korvane::Gui {

namespace {

constexpr int kWidthInCharacters = 56;
constexpr int kSteps = 1000; // an int does not hold the sizes of files

QLabel *makeLabel(const QString &text, QWidget *parent)
{
    auto *label = new QLabel(text, parent);
    label->setTextFormat(Qt::PlainText); // the names of files and servers come from outside
    return label;
}

} // namespace

WaitingDialog::WaitingDialog(const QString &title, const QString &text, QWidget *parent)
    : QDialog(parent)
    , message(makeLabel(text, this))
    , bar(new QProgressBar(this))
    , details(makeLabel(QString(), this))
{
    setWindowTitle(title);
    setWindowModality(Qt::ApplicationModal);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    message->setWordWrap(true);
    message->setMinimumWidth(fontMetrics().averageCharWidth() * kWidthInCharacters);
    bar->setRange(0, 0);
    bar->setTextVisible(false);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    // The Enter key that chose the file must not end the opening.
    buttons->button(QDialogButtonBox::Cancel)->setAutoDefault(false);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *column = new QVBoxLayout(this);
    for (QWidget *widget : {static_cast<QWidget *>(message), static_cast<QWidget *>(bar),
                            static_cast<QWidget *>(details), static_cast<QWidget *>(buttons)})
        column->addWidget(widget);
}

void WaitingDialog::setProgress(const LongTask::Progress &progress)
{
    bar->setRange(0, progress.total > 0 ? kSteps : 0);
    if (progress.total > 0)
        bar->setValue(static_cast<int>(static_cast<double>(qMin(progress.done, progress.total)) * kSteps /
                                       static_cast<double>(progress.total)));
    details->setText(progress.text);
}

} // namespace Korvane::Gui
