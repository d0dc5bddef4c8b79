#pragma once

#include <QDialog>
#include <QPointer>
#include <QSet>

class QTabWidget;

namespace Korvane::Map {
class Layer;
} // namespace Korvane::Map

namespace Viewer {

class PluginContributions;
class StatisticsBar;

/// The information pages of one layer, in tabs. Pages are made anew for every layer, so that none shows what belongs
/// to another; a page reads its layer when its tab is first shown, and again when
/// estimated statistics have become exact. The window keeps its size from one run to the next.
class PropertiesWindow : public QDialog
{
    Q_OBJECT

public:
    /// \a contributions must outlive it.
    PropertiesWindow(const PluginContributions &contributions, QWidget *parent);

    /// Shows \a layer from now on; with null, or when it is deleted, the window closes.
    void setLayer(Korvane::Map::Layer *layer);

    void accept() override;
    void done(int result) override;

private:
    void forgetLayer();
    void addPage(QWidget *page);
    void makeRoom();
    void loadCurrentPage();
    void reloadPages();

    const PluginContributions &contributions;
    QTabWidget *tabs;
    StatisticsBar *statisticsBar;
    QPointer<Korvane::Map::Layer> layer;
    QSet<QWidget *> loadedPages;
    int lastTab = 0;
    bool hasOwnSize = false; ///< That of the last run, or one that the pages fit into.
};

} // namespace Viewer
