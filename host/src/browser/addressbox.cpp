#include "addressbox.h"

#include "recentaddresses.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QKeyEvent>
#include <QLineEdit>
#include <QSignalBlocker>

namespace Korvane::Gui {

AddressBox::AddressBox(QWidget *parent)
    : QComboBox(parent)
{
    setEditable(true);
    setInsertPolicy(QComboBox::NoInsert);
    setMinimumContentsLength(30);
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    setMaxVisibleItems(RecentAddresses::kMaxAddresses);
    lineEdit()->setPlaceholderText(tr("xrvp://server/folder/image.jp2"));
    // Completing in the line itself would let Return open an image that nobody typed.
    completer()->setCompletionMode(QCompleter::PopupCompletion);
    completer()->setFilterMode(Qt::MatchContains);
    view()->installEventFilter(this);
    readRecent();
}

void AddressBox::readRecent()
{
    const QString entered = currentText();
    {
        const QSignalBlocker blocker(this);
        clear();
        addItems(RecentAddresses::entries());
        for (int i = 0; i < count(); ++i)
            setItemData(i, itemText(i), Qt::ToolTipRole);
    }
    setCurrentIndex(-1);
    setEditText(entered);
}

void AddressBox::forget(const QString &address)
{
    RecentAddresses::remove(address);
    readRecent();
}

void AddressBox::forgetAll()
{
    RecentAddresses::clear();
    readRecent();
}

bool AddressBox::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == view() && event->type() == QEvent::KeyPress) {
        const int row = view()->currentIndex().row();
        if (static_cast<QKeyEvent *>(event)->key() == Qt::Key_Delete && row >= 0) {
            RecentAddresses::remove(itemText(row));
            const QString entered = lineEdit()->text();
            removeItem(row);
            setEditText(entered);
            if (count() == 0)
                hidePopup();
            return true;
        }
    }
    return QComboBox::eventFilter(watched, event);
}

} // namespace Korvane::Gui
