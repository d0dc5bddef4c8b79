#pragma once

#include <QDGui/layer.h>

#include <QCoreApplication>
#include <QString>
#include <QVector>

#include <memory>

class ILayerPlugin;

namespace Korvane {
class PluginRegistry;
}

namespace Viewer {

/// Makes layers from file names and addresses with the loaded plug-ins. GUI thread. The registry must outlive it.
class LayerOpener
{
    Q_DECLARE_TR_FUNCTIONS(LayerOpener)

public:
    struct Result
    {
        std::unique_ptr<Korvane::Map::Layer> layer; ///< Null on failure.
        QString error;                              ///< One sentence that names the source; empty on success.
        bool isCancelled = false;                   ///< The person did not want to wait for it.
    };

    explicit LayerOpener(const Korvane::PluginRegistry &registry);

    /// Opens \a source. The plug-in whose filters name it is asked first, then every other, since a file's content may
    /// be fine where its name is unusual.
    Result open(const QString &source) const;

private:
    QVector<ILayerPlugin *> factoriesFor(const QString &source) const;

    const Korvane::PluginRegistry &registry;
};

} // namespace Viewer
