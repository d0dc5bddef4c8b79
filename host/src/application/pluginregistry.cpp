#include <QDGui/pluginregistry.h>

#include <QDGui/ilayereditorplugin.h>
#include <QDGui/ilayerplugin.h>
#include <QDGui/ilayerplugininfo.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLibrary>
#include <QMetaClassInfo>
#include <QPluginLoader>
#include <QRegularExpression>

#include <algorithm>
#include <vector>

namespace Korvane {

namespace {

/// A context for texts.
struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(Korvane::PluginRegistry)
};

/// The patterns ("*.jp2") of all filters in \a fileFilter.
QStringList filterPatterns(const QString &fileFilter)
{
    static const QRegularExpression kPatterns(QStringLiteral("\\(([^()]*)\\)\\s*$"));
    QStringList patterns;
    const QStringList filters = fileFilter.split(QLatin1String(";;"), Qt::SkipEmptyParts);
    for (const QString &filter : filters)
        patterns += kPatterns.match(filter).captured(1).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    return patterns;
}

QStringList filePatterns(const PluginRegistry::Plugin &plugin)
{
    return filterPatterns(plugin.info->getFileFilter()) + plugin.furtherPatterns;
}

QStringList furtherPatterns(const QMetaObject &pluginClass)
{
    const int index = pluginClass.indexOfClassInfo("FurtherFilePatterns");
    return index < 0 ? QStringList()
                     : QString::fromLatin1(pluginClass.classInfo(index).value()).split(QLatin1Char(' '));
}

bool matchesPattern(const QString &name, const QString &pattern)
{
    const QRegularExpression expression(QRegularExpression::wildcardToRegularExpression(pattern),
                                        QRegularExpression::CaseInsensitiveOption);
    return expression.match(name).hasMatch();
}

/// What \a fileName's filter patterns are held against: streams are opened by who opens files that name one.
QString nameToMatch(const QString &fileName)
{
    if (fileName.startsWith(QLatin1String("xrvp://"), Qt::CaseInsensitive) ||
        fileName.startsWith(QLatin1String("xrvps://"), Qt::CaseInsensitive))
        return QStringLiteral("stream.url");
    return QFileInfo(fileName).fileName();
}

} // namespace

struct PluginRegistry::Private
{
    struct Loaded
    {
        std::unique_ptr<QPluginLoader> loader;
        Plugin plugin;
    };

    template <typename Predicate> const Plugin *find(Predicate predicate) const
    {
        for (const Loaded &entry : loaded) {
            if (entry.plugin.factory && predicate(entry.plugin))
                return &entry.plugin;
        }
        return nullptr;
    }
    bool fail(const QString &fileName, const QString &reason)
    {
        errors.append(QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(fileName), reason));
        return false;
    }

    std::vector<Loaded> loaded;
    QStringList errors;
};

PluginRegistry::PluginRegistry()
    : d(new Private)
{
}

PluginRegistry::~PluginRegistry()
{
    unloadAll();
}

int PluginRegistry::loadFolder(const QString &folder)
{
    int count = 0;
    const QFileInfoList files = QDir(folder).entryInfoList(QDir::Files, QDir::Name);
    for (const QFileInfo &file : files) {
        if (QLibrary::isLibrary(file.fileName()) && loadFile(file.absoluteFilePath()))
            ++count;
    }
    return count;
}

bool PluginRegistry::loadFile(const QString &fileName)
{
    auto loader = std::make_unique<QPluginLoader>(fileName);
    QObject *const instance = loader->instance();
    if (!instance)
        return d->fail(fileName, loader->errorString());
    Plugin plugin;
    plugin.fileName = fileName;
    plugin.instance = instance;
    plugin.info = qobject_cast<ILayerPluginInfo *>(instance);
    plugin.factory = qobject_cast<ILayerPlugin *>(instance);
    plugin.editor = qobject_cast<ILayerEditorPlugin *>(instance);
    plugin.furtherPatterns = furtherPatterns(*instance->metaObject());
    const auto isSame = [&](const Private::Loaded &entry) {
        return entry.plugin.instance == instance || (plugin.info && entry.plugin.info->getId() == plugin.info->getId());
    };
    if (plugin.info && std::none_of(d->loaded.cbegin(), d->loaded.cend(), isSame)) {
        d->loaded.push_back({std::move(loader), plugin});
        return true;
    }
    const QString reason =
        plugin.info ? Texts::tr("The plug-in is already loaded.") : Texts::tr("The library is not a layer plug-in.");
    loader->unload();
    return d->fail(fileName, reason);
}

void PluginRegistry::unloadAll()
{
    if (d->loaded.empty())
        return;
    // Objects of the plug-ins' classes that wait to be deleted need their code once more.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    for (; !d->loaded.empty(); d->loaded.pop_back())
        d->loaded.back().loader->unload();
}

QVector<PluginRegistry::Plugin> PluginRegistry::getPlugins() const
{
    QVector<Plugin> plugins;
    for (const Private::Loaded &entry : d->loaded)
        plugins.append(entry.plugin);
    return plugins;
}

QStringList PluginRegistry::getErrors() const
{
    return d->errors;
}

const PluginRegistry::Plugin *PluginRegistry::findForFile(const QString &fileName) const
{
    const QString name = nameToMatch(fileName);
    return d->find([&name](const Plugin &plugin) {
        const QStringList patterns = filePatterns(plugin);
        return plugin.info->isEnabled() && std::any_of(patterns.cbegin(), patterns.cend(), [&](const QString &pattern) {
                   return matchesPattern(name, pattern);
               });
    });
}

const PluginRegistry::Plugin *PluginRegistry::findForClass(const QString &className) const
{
    return d->find([&className](const Plugin &plugin) { return plugin.info->getClassName() == className; });
}

QString PluginRegistry::getFileFilter() const
{
    QStringList patterns;
    QStringList filters;
    for (const Private::Loaded &entry : d->loaded) {
        if (!entry.plugin.factory || !entry.plugin.info->isEnabled())
            continue;
        patterns += filePatterns(entry.plugin);
        filters += entry.plugin.info->getFileFilter();
    }
    patterns.removeDuplicates();
    if (!patterns.isEmpty())
        filters.prepend(Texts::tr("All supported files (%1)").arg(patterns.join(QLatin1Char(' '))));
    filters.append(Texts::tr("All files (*)"));
    return filters.join(QLatin1String(";;"));
}

} // namespace Korvane
