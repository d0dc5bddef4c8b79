#include "pagetest.h"

#include <QClipboard>
#include <QComboBox>
#include <QGuiApplication>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>

#include <stdexcept>

namespace PageTest {

const QString kUntouched = QStringLiteral("what was there before");

QString textOf(const QWidget &page, const char *name)
{
    const auto *field = page.findChild<QWidget *>(QLatin1String(name));
    if (const auto *line = qobject_cast<const QLineEdit *>(field))
        return line->text();
    if (const auto *text = qobject_cast<const QPlainTextEdit *>(field))
        return text->toPlainText();
    if (const auto *combo = qobject_cast<const QComboBox *>(field))
        return combo->currentText();
    throw std::runtime_error(std::string("no field ") + name);
}

QStringList filledFields(const QWidget &page)
{
    QStringList fields;
    for (const QLineEdit *line : page.findChildren<QLineEdit *>()) {
        if (!line->text().isEmpty())
            fields.append(line->objectName() + QLatin1Char('=') + line->text());
    }
    fields.sort();
    return fields;
}

QString copiedText(QWidget &page)
{
    QGuiApplication::clipboard()->setText(kUntouched);
    page.findChild<QPushButton *>(QStringLiteral("copyToClipboard"))->click();
    return QGuiApplication::clipboard()->text();
}

QString withReturns(const QStringList &lines)
{
    return lines.join(QLatin1Char('\r')) + QLatin1Char('\r');
}

} // namespace PageTest
