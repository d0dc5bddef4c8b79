#include "clipboardtext.h"

#include <QClipboard>
#include <QGuiApplication>

void ClipboardText::addLine(const QString &line)
{
    content += line;
    content += QLatin1Char('\r');
}

void ClipboardText::copy() const
{
    if (QClipboard *clipboard = QGuiApplication::clipboard())
        clipboard->setText(content);
}
