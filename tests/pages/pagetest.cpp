#include "pagetest.h"

#include "pages/xrvjp2klayerfileinfo.h"
#include "pages/xrvjp2klayerjp2fileinfo.h"
#include "pages/xrvjp2klayermetadatabox.h"
#include "pages/xrvjp2klayerrpcinfo.h"
#include "pages/xrvjp2klayerstatistics.h"

#include <QClipboard>
#include <QComboBox>
#include <QGuiApplication>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>

namespace PageTest {

const QString kUntouched = QStringLiteral("what was there before");
const QStringList kPageClasses = {QStringLiteral("XRVJP2kLayerFileInfo"), QStringLiteral("XRVJP2kLayerJP2FileInfo"),
                                  QStringLiteral("XRVJP2kLayerStatistics"), QStringLiteral("XRVJP2kLayerRPCInfo"),
                                  QStringLiteral("XRVJP2kLayerMetaDataBox")};

std::unique_ptr<QWidget> makePage(const QString &className)
{
    switch (kPageClasses.indexOf(className)) {
    case 0:
        return std::make_unique<XRVJP2kLayerFileInfo>();
    case 1:
        return std::make_unique<XRVJP2kLayerJP2FileInfo>();
    case 2:
        return std::make_unique<XRVJP2kLayerStatistics>();
    case 3:
        return std::make_unique<XRVJP2kLayerRPCInfo>();
    default:
        return std::make_unique<XRVJP2kLayerMetaDataBox>();
    }
}

void setLayer(QWidget &page, Korvane::Map::Layer *layer)
{
    dynamic_cast<Korvane::ILayerPropertiesWidget &>(page).setLayer(layer);
}

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
    const auto add = [&fields](const QWidget *field, const QString &text) {
        if (!text.isEmpty())
            fields.append(field->objectName() + QLatin1Char('=') + text);
    };
    for (const auto *field : page.findChildren<QLineEdit *>())
        add(field, field->text());
    for (const auto *field : page.findChildren<QPlainTextEdit *>())
        add(field, field->toPlainText());
    fields.sort();
    return fields;
}

QStringList itemsOf(const QWidget &page, const char *name)
{
    const auto *combo = page.findChild<QComboBox *>(QLatin1String(name));
    QStringList items;
    for (int i = 0; i < combo->count(); ++i)
        items.append(combo->itemText(i));
    return items;
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
