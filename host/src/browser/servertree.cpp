#include "servertree.h"

#include <QPainter>

namespace Korvane::Gui {

ServerTree::ServerTree(QWidget *parent)
    : QTreeView(parent)
{
}

void ServerTree::setPlaceholder(const QString &text)
{
    placeholder = text;
    viewport()->update();
}

void ServerTree::paintEvent(QPaintEvent *event)
{
    QTreeView::paintEvent(event);
    if (placeholder.isEmpty() || (model() && model()->rowCount() > 0))
        return;
    QPainter painter(viewport());
    painter.setPen(palette().color(QPalette::PlaceholderText));
    const int margin = fontMetrics().height();
    painter.drawText(viewport()->rect().adjusted(margin, margin, -margin, -margin), Qt::AlignCenter | Qt::TextWordWrap,
                     placeholder);
}

} // namespace Korvane::Gui
