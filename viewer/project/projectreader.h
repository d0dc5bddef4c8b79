#pragma once

#include "project.h"

#include <QCoreApplication>

namespace Korvane {
class PluginRegistry;
}

namespace Viewer {

/// Reads project files. GUI thread. The registry must outlive it.
class ProjectReader
{
    Q_DECLARE_TR_FUNCTIONS(ProjectReader)

public:
    explicit ProjectReader(const Korvane::PluginRegistry &registry);

    /// Reads \a fileName and opens its layers. A layer that cannot be opened is told of in the warnings and kept in its
    /// view's missing layers. A file that is no project gives a project without views and a sentence in \a error, which
    /// is emptied otherwise.
    Project read(const QString &fileName, QString *error) const;

    /// A project of this size names some ten thousand layers; a larger file is refused unread.
    static constexpr qint64 kMaxFileBytes = qint64(32) * 1024 * 1024;

private:
    QString parse(const QString &fileName, QDomDocument *document) const;
    ProjectView readView(const QDomElement &element, const QDir &folder, QStringList *warnings) const;
    std::unique_ptr<Korvane::Map::Layer> readLayer(QDomElement element, QDir folder, QString *error) const;

    const Korvane::PluginRegistry &registry;
};

} // namespace Viewer
