#pragma once

#include <QComboBox>

namespace Korvane::Gui {

/// An address to be typed, or picked from those used last. Delete removes the marked one of the open list.
class AddressBox : public QComboBox
{
    Q_OBJECT

public:
    explicit AddressBox(QWidget *parent = nullptr);
    /// Offers the addresses of the settings; the text stays.
    void readRecent();
    void forget(const QString &address);
    void forgetAll();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
};

} // namespace Korvane::Gui
