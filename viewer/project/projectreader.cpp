#include "projectreader.h"

#include "projectelements.h"
#include "xmlsize.h"

#include <QDGui/ilayerplugin.h>
#include <QDGui/pluginregistry.h>

#include <QFile>
#include <QFileInfo>

#include <cmath>

namespace Viewer {

using Korvane::Map::Layer;

namespace {

/// A null rectangle when there is no usable extent.
QRectF readWorldRect(const QDomElement &extent)
{
    double corner[4] = {};
    const char *const names[4] = {"x1", "y1", "x2", "y2"};
    for (int i = 0; i < 4; ++i) {
        bool ok = false;
        corner[i] = extent.attribute(QLatin1String(names[i])).toDouble(&ok);
        if (!ok || !std::isfinite(corner[i]))
            return QRectF();
    }
    if (!(corner[2] > corner[0]) || !(corner[1] > corner[3]))
        return QRectF();
    return QRectF(corner[0], corner[1], corner[2] - corner[0], corner[3] - corner[1]);
}

} // namespace

ProjectReader::ProjectReader(const Korvane::PluginRegistry &registry)
    : registry(registry)
{
}

QString ProjectReader::parse(const QString &fileName, QDomDocument *document) const
{
    const QString name = QDir::toNativeSeparators(fileName);
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return tr("The project %1 cannot be read: %2.").arg(name, file.errorString());
    if (file.size() > kMaxFileBytes)
        return tr("%1 is too large to be a project.").arg(name);
    const QByteArray text = file.readAll();
    if (!isModestXml(text))
        return tr("%1 is too large to be a project: it has more than %2 elements and attributes, or more than %3 "
                  "levels "
                  "of them.")
            .arg(name)
            .arg(kMaxXmlParts)
            .arg(kMaxXmlDepth);
    QString message;
    int line = 0;
    int column = 0;
    if (!document->setContent(text, &message, &line, &column))
        return tr("%1 is not a project: %2 in line %3, column %4.").arg(name, message).arg(line).arg(column);
    const QDomElement root = document->documentElement();
    if (root.tagName() != kRootElement)
        return tr("%1 is an XML file, but not a project.").arg(name);
    bool ok = false;
    const int version = root.attribute(kVersionAttribute).toInt(&ok);
    if (!ok || version < 1)
        return tr("The project %1 does not tell its version.").arg(name);
    if (version > kProjectVersion)
        return tr("The project %1 was written by a newer version of this program.").arg(name);
    return QString();
}

Project ProjectReader::read(const QString &fileName, QString *error) const
{
    Project project;
    QDomDocument document;
    *error = parse(fileName, &document);
    if (!error->isEmpty())
        return project;

    const QDir folder = QFileInfo(fileName).absoluteDir();
    const QDomElement root = document.documentElement();
    QDomElement element = root.firstChildElement(kViewElement);
    for (; !element.isNull(); element = element.nextSiblingElement(kViewElement))
        project.views.push_back(readView(element, folder, &project.warnings));
    const int current = root.attribute(kCurrentAttribute).toInt();
    const int last = static_cast<int>(project.views.size()) - 1;
    project.currentView = project.views.empty() ? -1 : qBound(0, current, last);
    project.inTabs = root.attribute(kArrangementAttribute) != kWindows;
    return project;
}

ProjectView ProjectReader::readView(const QDomElement &element, const QDir &folder, QStringList *warnings) const
{
    ProjectView view;
    view.title = element.attribute(kTitleAttribute);
    const QDomElement extent = element.firstChildElement(kExtentElement);
    view.worldRect = readWorldRect(extent);
    if (!extent.isNull() && view.worldRect.isNull())
        warnings->append(tr("A view has no valid extent and is shown whole."));

    int position = 0;
    QDomElement child = element.firstChildElement(kLayerElement);
    for (; !child.isNull(); child = child.nextSiblingElement(kLayerElement)) {
        QString reason;
        std::unique_ptr<Layer> layer = readLayer(child, folder, &reason);
        if (layer) {
            if (child.attribute(kActiveAttribute) == QLatin1String("true"))
                view.activeLayer = static_cast<int>(view.layers.size());
            view.layers.push_back(std::move(layer));
        } else {
            warnings->append(reason);
            view.missing.append(MissingLayer(child, folder, position));
        }
        ++position;
    }
    return view;
}

std::unique_ptr<Layer> ProjectReader::readLayer(QDomElement element, QDir folder, QString *error) const
{
    const QString className = element.attribute(kClassAttribute);
    const Korvane::PluginRegistry::Plugin *plugin = registry.findForClass(className);
    if (!plugin) {
        *error = className.isEmpty() ? tr("A layer of the project does not tell its kind.")
                                     : tr("No loaded plug-in makes layers of the kind %1.").arg(className);
        return nullptr;
    }
    std::unique_ptr<Layer> layer(plugin->factory->createLayer(false));
    if (layer && layer->readXML(element, folder, error) && layer->isValid())
        return layer;
    *error = error->simplified();
    if (error->isEmpty())
        *error = tr("A layer of the kind %1 cannot be restored.").arg(className);
    return nullptr;
}

} // namespace Viewer
