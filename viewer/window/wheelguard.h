#pragma once

#include <QObject>

namespace Viewer {

/// Keeps the wheel from changing values: a spin box, slider or combo box takes it only while it has the keyboard's
/// focus, and the wheel alone does not give it the focus. Otherwise what the control lies in is scrolled.
class WheelGuard : public QObject
{
public:
    /// Watches all widgets of the program while it lives.
    explicit WheelGuard(QObject *parent);

    bool eventFilter(QObject *watched, QEvent *event) override;
};

} // namespace Viewer
