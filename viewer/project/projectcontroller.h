#pragma once

#include "project.h"

#include <QObject>

namespace Korvane {
class PluginRegistry;
}

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

    const Korvane::PluginRegistry &registry;
    MapArea *area;
    QString currentFile;
    bool modified = false;
    bool isLoading = false;
};

} // namespace Viewer
