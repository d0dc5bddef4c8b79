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
    /// for a page without that, the texts of its read-only fields, one "name: text" per line. The clipboard is left as
    /// it was.
    static QJsonObject read(const Korvane::PluginRegistry &registry, Korvane::Map::Layer &layer);

private:
    static QString readPage(QWidget *page, Korvane::Map::Layer &layer);
    static QString readClipboardText(QWidget *page);
    static QString readFields(const QWidget &page);
};

} // namespace Viewer
