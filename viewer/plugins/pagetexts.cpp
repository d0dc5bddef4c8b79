#include "pagetexts.h"

#include <QDGui/ilayereditorplugin.h>
#include <QDGui/ilayerpropertieswidget.h>
#include <QDGui/pluginregistry.h>

#include <QClipboard>
#include <QComboBox>
#include <QGuiApplication>
#include <QLineEdit>
#include <QMetaMethod>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QWidget>

#include <memory>

namespace Viewer {

namespace {

constexpr char kCopySlot[] = "copyToClipboard()";

/// Puts back what the clipboard held.
class ClipboardKeeper
{
public:
    ClipboardKeeper()
        : saved(std::make_unique<QMimeData>())
    {
        const QMimeData *current = QGuiApplication::clipboard()->mimeData();
        for (const QString &format : current ? current->formats() : QStringList())
            saved->setData(format, current->data(format));
    }
    ~ClipboardKeeper() { QGuiApplication::clipboard()->setMimeData(saved.release()); }
    Q_DISABLE_COPY(ClipboardKeeper)

private:
    std::unique_ptr<QMimeData> saved;
};

QString pageName(const QWidget &page)
{
    return page.windowTitle().isEmpty() ? page.objectName() : page.windowTitle();
}

} // namespace

QJsonObject PageTexts::read(const Korvane::PluginRegistry &registry, Korvane::Map::Layer &layer)
{
    QJsonObject texts;
    for (const Korvane::PluginRegistry::Plugin &plugin : registry.getPlugins()) {
        if (!plugin.editor)
            continue;
        for (QWidget *widget : plugin.editor->getInfoPages()) {
            const std::unique_ptr<QWidget> page(widget);
            if (page)
                texts[pageName(*page)] = readPage(page.get(), layer);
        }
    }
    return texts;
}

QString PageTexts::readPage(QWidget *page, Korvane::Map::Layer &layer)
{
    auto *properties = qobject_cast<Korvane::ILayerPropertiesWidget *>(page);
    if (!properties)
        return QString();
    properties->setLayer(&layer);
    const bool copies = page->metaObject()->indexOfMethod(kCopySlot) >= 0;
    return copies ? readClipboardText(page) : readEveryChoice(*page);
}

QString PageTexts::readClipboardText(QWidget *page)
{
    const ClipboardKeeper keeper;
    QClipboard *clipboard = QGuiApplication::clipboard();
    clipboard->clear();
    const int index = page->metaObject()->indexOfMethod(kCopySlot);
    page->metaObject()->method(index).invoke(page, Qt::DirectConnection);
    return clipboard->text();
}

/// What the page shows for one entry of its combo box after the other, as when a person chooses them.
QString PageTexts::readEveryChoice(const QWidget &page)
{
    auto *combo = page.findChild<QComboBox *>();
    if (!combo || combo->count() < 2)
        return readFields(page);
    QStringList texts;
    for (int i = 0; i < combo->count(); ++i) {
        combo->setCurrentIndex(i);
        Q_EMIT combo->activated(i);
        texts.append(readFields(page));
    }
    return texts.join(QLatin1Char('\n'));
}

QString PageTexts::readFields(const QWidget &page)
{
    QStringList lines;
    const auto add = [&lines](const QObject *field, const QString &text) {
        lines.append(field->objectName() + QStringLiteral(": ") + text);
    };
    for (const QWidget *field : page.findChildren<QWidget *>()) {
        if (const auto *line = qobject_cast<const QLineEdit *>(field)) {
            // An editable combo box tells its own text.
            if (!qobject_cast<const QComboBox *>(line->parent()))
                add(line, line->text());
        } else if (const auto *text = qobject_cast<const QPlainTextEdit *>(field)) {
            add(text, text->toPlainText());
        } else if (const auto *combo = qobject_cast<const QComboBox *>(field)) {
            add(combo, combo->currentText());
        }
    }
    return lines.join(QLatin1Char('\n'));
}

} // namespace Viewer
