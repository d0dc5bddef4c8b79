#pragma once

#include "project.h"

#include <QHash>
#include <QObject>
#include <QTimer>
#include <QVector>

namespace Korvane {
class PluginRegistry;
namespace Map {
class Layer;
}
} // namespace Korvane

namespace Viewer {

class MapArea;

/// The project that the map area shows: its file, and whether it was changed since it was saved. Shows no dialogs.
class ProjectController : public QObject
{
    Q_OBJECT

public:
    ProjectController(const Korvane::PluginRegistry &registry, MapArea *area, QObject *parent = nullptr);

    /// Empty for what was never saved.
    QString fileName() const { return currentFile; }
    bool isModified() const { return modified; }
    void setModified(bool isModified);
    /// Whether settings of layers (also names and visibility) were changed since they were opened or saved; unlike
    /// isModified(), which is also so when layers or views come and go.
    bool hasEdits();
    void setEdited();

    /// Replaces all views by those of \a fileName. Returns an empty text, or why it failed; then the views stay.
    /// \a warnings takes one sentence for each layer that could not be restored.
    QString open(const QString &fileName, QStringList *warnings);
    /// Writes all views. Returns an empty text, or why it failed.
    QString save(const QString &fileName);
    /// Closes all views and forgets the file.
    void close();

Q_SIGNALS:
    void changed();

private:
    ProjectSource gather() const;
    void show(Project *project);
    void showView(ProjectView *view);
    void setState(const QString &fileName, bool isModified);
    QVector<Korvane::Map::Layer *> layers() const;
    void watchLayers();
    void watchEdits();
    void rememberSettings();
    void noticeEdits();

    const Korvane::PluginRegistry &registry;
    MapArea *area;
    QString currentFile;
    QHash<const Korvane::Map::Layer *, QString> knownSettings; ///< as XML
    QTimer editTimer;
    bool modified = false;
    bool edited = false;
    bool isLoading = false;
};

} // namespace Viewer
