#pragma once

#include <QString>

/// The text that a page puts on the clipboard, gathered line by line. A line ends with a carriage return alone.
class ClipboardText
{
public:
    ClipboardText() = default;
    /// With room for that many characters. Throws std::bad_alloc where there is no memory for them, or where they are
    /// more than a string can hold.
    explicit ClipboardText(qint64 characters);
    /// A line of \a format with its "%1" replaced by \a value.
    void addLine(const QString &format, const QString &value) { addLine(format.arg(value)); }
    void addLine(const QString &line);
    /// \a text as it is, without an end of line.
    void addText(const QString &text) { content += text; }
    const QString &text() const { return content; }
    /// Replaces what the clipboard holds, by an empty text too.
    void copy() const;

private:
    QString content;
};
