#pragma once

#include <QScrollArea>

/// Lets what is behind \a area show through it. With a colour of its own it would be a patch on the pane of a tab.
inline void clearBackground(QScrollArea *area)
{
    area->viewport()->setAutoFillBackground(false);
    area->widget()->setAutoFillBackground(false);
}
