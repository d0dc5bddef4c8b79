#pragma once

#include <QStringList>

namespace Viewer {

/// Where layer plug-ins are looked for, most important first: the folders that the environment variable
/// QDVIEWER_PLUGIN_PATH lists (separated as in PATH), "plugins" next to the executable, and, for an installation with
/// bin and lib folders, "../lib/qdviewer/plugins". Absolute paths without repeats; they need not exist.
QStringList pluginFolders();

} // namespace Viewer
