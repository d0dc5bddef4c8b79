#pragma once

#include <QCoreApplication>

class QWidget;

namespace Korvane {
class PluginRegistry;
}

namespace Viewer {

/// Says what the program is and which plug-ins it has loaded.
class AboutBox
{
    Q_DECLARE_TR_FUNCTIONS(AboutBox)

public:
    static void show(const Korvane::PluginRegistry &registry, QWidget *parent);
    /// The text, as HTML.
    static QString text(const Korvane::PluginRegistry &registry);
};

} // namespace Viewer
