#pragma once

#include <QTreeView>

namespace Korvane::Gui {

/// A tree that says something where it has nothing to show.
class ServerTree : public QTreeView
{
    Q_OBJECT

public:
    explicit ServerTree(QWidget *parent = nullptr);
    void setPlaceholder(const QString &text);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString placeholder;
};

} // namespace Korvane::Gui
