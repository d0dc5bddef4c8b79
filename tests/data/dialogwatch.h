#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QMessageBox>
#include <QPointer>
#include <QStringList>
#include <QTimer>

#include <functional>

/// While it lives, it is the person in front of the modal dialogs of a kind: calls \a act with each that comes up.
/// Within an act no other of the same watch is acted upon.
template <typename Dialog> class DialogWatch : public QTimer
{
public:
    explicit DialogWatch(const std::function<void(Dialog &)> &act)
    {
        connect(this, &QTimer::timeout, this, [this, act] {
            auto *dialog = qobject_cast<Dialog *>(QApplication::activeModalWidget());
            if (!dialog || dialog == last)
                return;
            last = dialog;
            ++shown;
            connect(dialog, &QDialog::finished, this, [this] { last = nullptr; }); // it may come up again
            act(*dialog);
        });
        start(5);
    }

    int shown = 0; ///< dialogs so far

private:
    QPointer<QDialog> last;
};

/// Notes what message boxes say, as "title|text", and puts them away with the buttons given, in turn, or with Ok.
class BoxWatch : public DialogWatch<QMessageBox>
{
public:
    explicit BoxWatch(const QList<QMessageBox::StandardButton> &buttons = {})
        : DialogWatch([this, buttons](QMessageBox &box) {
            texts.append(box.windowTitle() + QLatin1Char('|') + box.text() + box.informativeText());
            icon = box.icon();
            offered = box.standardButtons();
            if (QAbstractButton *button = box.button(buttons.value(shown - 1, QMessageBox::Ok)))
                button->click();
            else
                box.accept();
        })
    {
    }

    QStringList texts;
    QMessageBox::Icon icon = QMessageBox::NoIcon;                 ///< of the last one
    QMessageBox::StandardButtons offered = QMessageBox::NoButton; ///< by the last one
};
