#include "aboutbox.h"

#include <QDGui/ilayerplugininfo.h>
#include <QDGui/pluginregistry.h>

#include <QDir>
#include <QMessageBox>

namespace Viewer {

QString AboutBox::text(const Korvane::PluginRegistry &registry)
{
    QString html =
        QStringLiteral("<h3>%1 %2</h3><p>%3</p>")
            .arg(QCoreApplication::applicationName().toHtmlEscaped(),
                 QCoreApplication::applicationVersion().toHtmlEscaped(),
                 tr("Shows very large wavelet-compressed images from files and image servers.").toHtmlEscaped());
    const QVector<Korvane::PluginRegistry::Plugin> plugins = registry.getPlugins();
    html += plugins.isEmpty() ? tr("No layer plug-in is loaded.").toHtmlEscaped() : tr("Plug-ins:").toHtmlEscaped();
    for (const Korvane::PluginRegistry::Plugin &plugin : plugins) {
        html += QStringLiteral("<br>%1 %2<br><small>%3</small>")
                    .arg(plugin.info->getDescription().toHtmlEscaped(), plugin.info->getVersion().toHtmlEscaped(),
                         QDir::toNativeSeparators(plugin.fileName).toHtmlEscaped());
    }
    const QStringList errors = registry.getErrors();
    for (const QString &error : errors)
        html += QStringLiteral("<br><small>%1</small>").arg(error.toHtmlEscaped());
    return html;
}

void AboutBox::show(const Korvane::PluginRegistry &registry, QWidget *parent)
{
    QMessageBox::about(parent, tr("About %1").arg(QCoreApplication::applicationName()), text(registry));
}

} // namespace Viewer
