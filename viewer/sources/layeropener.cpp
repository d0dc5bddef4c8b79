#include "layeropener.h"

#include "sources.h"

#include <QDGui/ilayerplugin.h>
#include <QDGui/ilayerplugininfo.h>
#include <QDGui/pluginregistry.h>

#include <QDir>

namespace Viewer {

using Korvane::Map::Layer;

LayerOpener::LayerOpener(const Korvane::PluginRegistry &registry)
    : registry(registry)
{
}

QVector<ILayerPlugin *> LayerOpener::factoriesFor(const QString &source) const
{
    QVector<ILayerPlugin *> factories;
    if (const Korvane::PluginRegistry::Plugin *plugin = registry.findForFile(source))
        factories.append(plugin->factory);
    for (const Korvane::PluginRegistry::Plugin &plugin : registry.getPlugins()) {
        if (plugin.factory && plugin.info->isEnabled() && !factories.contains(plugin.factory))
            factories.append(plugin.factory);
    }
    return factories;
}

LayerOpener::Result LayerOpener::open(const QString &source) const
{
    const QString normalized = Sources::normalized(source);
    const QString unreadable = Sources::checkReadable(normalized);
    if (!unreadable.isEmpty())
        return {nullptr, unreadable};

    // What the best-suited plug-in said matters more than what the others say about a file that is not theirs.
    QString firstError;
    bool isCancelled = false;
    for (ILayerPlugin *factory : factoriesFor(normalized)) {
        std::unique_ptr<Layer> layer(factory->createLayer(false));
        if (layer && layer->setDataSource(normalized))
            return {std::move(layer), QString()};
        isCancelled = layer && layer->isOpeningCancelled();
        if (layer && (firstError.isEmpty() || isCancelled))
            firstError = layer->getLastError().simplified();
        if (isCancelled)
            break;
    }
    const QString name = QDir::toNativeSeparators(Sources::shown(normalized));
    if (registry.getPlugins().isEmpty())
        return {nullptr, tr("%1 cannot be opened: no layer plug-in is loaded. %2")
                             .arg(name, registry.getErrors().join(QLatin1Char(' ')))
                             .trimmed()};
    if (firstError.isEmpty())
        firstError = tr("the format is not known");
    return {nullptr, tr("%1 cannot be opened: %2").arg(name, firstError), isCancelled};
}

} // namespace Viewer
