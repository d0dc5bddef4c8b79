#pragma once

#include "project.h"

#include <QCoreApplication>

namespace Viewer {

/// Writes project files. GUI thread.
class ProjectWriter
{
    Q_DECLARE_TR_FUNCTIONS(ProjectWriter)

public:
    /// Writes \a project to \a fileName, whole or not at all: what was there stays until the new file is complete.
    /// Local sources are stored relative to the file's folder as well. Returns an empty text, or why it failed.
    static QString write(const ProjectSource &project, const QString &fileName);

private:
    static QDomElement viewElement(const ProjectViewSource &view, QDomDocument &document, const QDir &folder);
    static void appendLayers(const ProjectViewSource &view, QDomElement *element, QDomDocument &document,
                             const QDir &folder);
};

} // namespace Viewer
