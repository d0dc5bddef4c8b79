#include "failurereport.h"

#include <QGridLayout>
#include <QMessageBox>

namespace Viewer {

namespace {

/// A box that lists more than this would not fit the screen.
constexpr int kMaxListed = 12;

/// File names wrap badly at the box's usual width.
constexpr int kWidthInCharacters = 70;

void widen(QMessageBox *box)
{
    if (auto *layout = qobject_cast<QGridLayout *>(box->layout())) {
        const int width = box->fontMetrics().averageCharWidth() * kWidthInCharacters;
        layout->addItem(new QSpacerItem(width, 0), layout->rowCount(), 0, 1, layout->columnCount());
    }
}

} // namespace

QString FailureReport::headline(const QStringList &failures, int total)
{
    if (failures.size() == 1)
        return failures.first();
    return tr("%1 of %n sources could not be opened.", nullptr, qMax(total, failures.size())).arg(failures.size());
}

void FailureReport::show(QWidget *parent, const QStringList &failures, int total)
{
    if (failures.isEmpty())
        return;
    QMessageBox box(QMessageBox::Warning, QCoreApplication::applicationName(), headline(failures, total),
                    QMessageBox::Ok, parent);
    box.setTextFormat(Qt::PlainText);
    if (failures.size() > 1) {
        QStringList listed = failures.mid(0, kMaxListed);
        if (listed.size() < failures.size())
            listed.append(tr("... and %n more (see the details)", nullptr, failures.size() - listed.size()));
        box.setInformativeText(listed.join(QLatin1Char('\n')));
        box.setDetailedText(failures.join(QLatin1Char('\n')));
    }
    widen(&box);
    box.exec();
}

} // namespace Viewer
