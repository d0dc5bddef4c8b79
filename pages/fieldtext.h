#pragma once

#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSize>
#include <QString>

/// How the pages write values and put them into their fields.
namespace FieldText {

/// Shows \a text from its beginning; a line edit left alone shows the end of what is longer than itself.
inline void showText(QLineEdit *field, const QString &text)
{
    field->setText(text);
    field->setCursorPosition(0);
}

/// Shows \a text, broken between words, or anywhere where it has endless ones.
void showText(QPlainTextEdit *field, const QString &text);

inline QString fixed(double value, int decimals)
{
    return QString::number(value, 'f', decimals);
}

inline QString trueOrFalse(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

inline QString dimensions(QSize size)
{
    return QStringLiteral("%1 x %2").arg(size.width()).arg(size.height());
}

} // namespace FieldText
