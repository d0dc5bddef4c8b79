#include "plugincontributions.h"

#include <QDGui/ilayereditorplugin.h>
#include <QDGui/ilayerplugininfo.h>
#include <QDGui/layer.h>
#include <QDGui/pluginregistry.h>

#include <QAction>
#include <QDockWidget>
#include <QMainWindow>
#include <QMetaMethod>
#include <QToolBar>

namespace Viewer {

using Korvane::Map::Layer;

namespace {

/// A plug-in may put null entries into its lists.
template <typename T> QList<T *> withoutNull(QList<T *> list)
{
    list.removeAll(nullptr);
    return list;
}

template <typename T> void setParents(const QList<T *> &list, QWidget *parent)
{
    for (T *object : list)
        object->setParent(parent);
}

} // namespace

PluginContributions::PluginContributions(const Korvane::PluginRegistry &registry, QMainWindow *window)
    : QObject(window)
    , registry(registry)
{
    const QVector<Korvane::PluginRegistry::Plugin> plugins = registry.getPlugins();
    for (const Korvane::PluginRegistry::Plugin &plugin : plugins) {
        if (!plugin.editor)
            continue;
        dockWidgets += withoutNull(plugin.editor->getDockWidgets());
        bars += withoutNull(plugin.editor->getToolBars());
        menuActions += withoutNull(plugin.editor->getActions());
    }
    setParents(dockWidgets, window);
    setParents(bars, window);
    for (QAction *action : qAsConst(menuActions))
        action->setParent(this);
}

QVector<QWidget *> PluginContributions::makeInfoPages(const Layer &layer) const
{
    const QString className = QString::fromLatin1(layer.metaObject()->className());
    const Korvane::PluginRegistry::Plugin *plugin = registry.findForClass(className);
    if (!plugin || !plugin->editor)
        return {};
    return withoutNull(plugin->editor->getInfoPages()).toVector();
}

QVector<QWidget *> PluginContributions::makePreferencePages() const
{
    QVector<QWidget *> pages;
    const QVector<Korvane::PluginRegistry::Plugin> plugins = registry.getPlugins();
    for (const Korvane::PluginRegistry::Plugin &plugin : plugins) {
        if (plugin.editor)
            pages += withoutNull(plugin.editor->getPreferencePages()).toVector();
    }
    return pages;
}

void PluginContributions::activateLayer(Layer *layer)
{
    invokeDocks("onLayerActivated", "Layer*", layer);
}

void PluginContributions::activateSubWindow(QMdiSubWindow *window)
{
    invokeDocks("onSubWindowActivated", "QMdiSubWindow*", window);
}

void PluginContributions::invokeDocks(const char *name, const char *typeName, void *argument)
{
    for (QDockWidget *dock : qAsConst(dockWidgets)) {
        if (dock->widget())
            invokeWithPointer(dock->widget(), name, typeName, argument);
    }
}

bool PluginContributions::invokeWithPointer(QObject *receiver, const char *name, const char *typeName, void *argument)
{
    const QMetaObject *meta = receiver->metaObject();
    for (int i = 0; i < meta->methodCount(); ++i) {
        const QMetaMethod method = meta->method(i);
        if (method.name() != name || method.parameterCount() != 1)
            continue;
        const QByteArray type = method.parameterTypes().constFirst();
        if (type.mid(type.lastIndexOf(':') + 1) != typeName)
            continue;
        return method.invoke(receiver, Qt::DirectConnection, QGenericArgument(type.constData(), &argument));
    }
    return false;
}

QString PluginContributions::titleOf(const QWidget &widget)
{
    return widget.windowTitle().isEmpty() ? widget.objectName() : widget.windowTitle();
}

} // namespace Viewer
