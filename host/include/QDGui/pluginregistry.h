#pragma once

#include <QDGui/qdguiglobal.h>

#include <QString>
#include <QStringList>
#include <QVector>

#include <memory>

class ILayerEditorPlugin;
class ILayerPlugin;
class ILayerPluginInfo;
class QObject;

namespace Korvane {

/// Loads layer plug-ins and finds the one for a job. GUI thread. All layers and widgets that a plug-in made must be
/// gone before the registry unloads it.
class QDGUI_EXPORT PluginRegistry
{
public:
    /// One loaded plug-in. The interfaces belong to the instance and go with it.
    struct Plugin
    {
        QString fileName;
        QObject *instance = nullptr;
        ILayerPluginInfo *info = nullptr;     ///< Never null.
        ILayerPlugin *factory = nullptr;      ///< Null when the plug-in makes no layers.
        ILayerEditorPlugin *editor = nullptr; ///< Null when it brings no user interface.
        /// Of files that it opens besides those of its filter: the Q_CLASSINFO
        /// "FurtherFilePatterns" of its class, patterns such as "*.jph" with blanks between.
        QStringList furtherPatterns;
    };

    PluginRegistry();
    /// Unloads what is still loaded.
    ~PluginRegistry();

    /// Loads every library in \a folder that is a layer plug-in, in the order of the file names. Returns how many were
    /// loaded. Libraries that cannot be loaded are told by getErrors(); a missing folder is not an error.
    int loadFolder(const QString &folder);
    /// Loads one library. False, with a line in getErrors(), when it cannot be loaded, offers no ILayerPluginInfo, or
    /// has the id of one already loaded.
    bool loadFile(const QString &fileName);
    /// Destroys the plug-in objects and unloads the libraries, the last one loaded first.
    void unloadAll();

    QVector<Plugin> getPlugins() const;
    /// One sentence for each library that was not loaded, with its file name.
    QStringList getErrors() const;

    /// The first enabled layer-making plug-in with a filter pattern that \a fileName (a path or an address) matches,
    /// without regard to case; for a stream address (xrvp, xrvps) the one that opens .url files. Null when none does.
    const Plugin *findForFile(const QString &fileName) const;
    /// The plug-in that makes layers of class \a className (as "Korvane::SomeLayer"); null when none does.
    const Plugin *findForClass(const QString &className) const;

    /// Filters of all enabled layer-making plug-ins for an open dialog, with one for all supported files first.
    QString getFileFilter() const;

private:
    Q_DISABLE_COPY(PluginRegistry)

    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace Korvane
