#pragma once

#include <QJsonObject>
#include <QString>
#include <QVector>

class ILayerEditorPlugin;
class QWidget;

namespace Korvane {
class PluginRegistry;
namespace Map {
class Layer;
}
} // namespace Korvane

namespace Viewer {

/// Reads the information pages of the plug-ins as texts. GUI thread.
class PageTexts
{
public:
    /// One member per page of every plug-in, named by the page's window title: what its "copy to clipboard" gives, or,
    /// for a page without that, the texts of its fields, one "name: text" per line, for every entry of its combo box.
    /// The clipboard is left as it was, as far as this process can: where the window system asks the owner for what is
    /// on it, what another program put there is lost when this one ends.
    static QJsonObject read(const Korvane::PluginRegistry &registry, Korvane::Map::Layer &layer);

private:
    static QString readPage(QWidget *page, Korvane::Map::Layer &layer);
    static QString readClipboardText(QWidget *page);
    static QString readEveryChoice(const QWidget &page);
    static QString readFields(const QWidget &page);
};

} // namespace Viewer
