#include "clipboardtext.h"

#include <QClipboard>
#include <QGuiApplication>

#include <new>

namespace {

/// Of the toolkit's strings, in characters: 2 GiB with what it keeps beside them.
constexpr qint64 kMaxCharacters = (qint64(1) << 30) - 64;

} // namespace

ClipboardText::ClipboardText(qint64 characters)
{
    if (characters > kMaxCharacters)
        throw std::bad_alloc();
    content.reserve(static_cast<int>(characters));
}

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
