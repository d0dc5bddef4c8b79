#include "pluginfolders.h"

#include <QCoreApplication>
#include <QDir>

namespace Viewer {

QStringList pluginFolders()
{
    QStringList folders;
    const QString path = qEnvironmentVariable("QDVIEWER_PLUGIN_PATH");
    for (const QString &folder : path.split(QDir::listSeparator(), Qt::SkipEmptyParts))
        folders.append(QDir(folder).absolutePath());

    const QDir own(QCoreApplication::applicationDirPath());
    folders.append(own.absoluteFilePath(QStringLiteral("plugins")));
    folders.append(QDir::cleanPath(own.absoluteFilePath(QStringLiteral("../lib/qdviewer/plugins"))));
#ifdef Q_OS_MACOS
    folders.append(QDir::cleanPath(own.absoluteFilePath(QStringLiteral("../PlugIns"))));
#endif
    folders.removeDuplicates();
    return folders;
}

} // namespace Viewer
