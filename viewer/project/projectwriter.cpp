#include "projectwriter.h"

#include "projectelements.h"

#include <QFileInfo>
#include <QSaveFile>

namespace Viewer {

using Korvane::Map::Layer;

namespace {

constexpr int kIndent = 2;

/// With all digits that a double has, so that a view comes back exactly where it was.
QString exact(double value)
{
    return QString::number(value, 'g', 17);
}

QDomElement extentElement(const QRectF &worldRect, QDomDocument &document)
{
    QDomElement element = document.createElement(kExtentElement);
    element.setAttribute(QStringLiteral("x1"), exact(worldRect.x()));
    element.setAttribute(QStringLiteral("y1"), exact(worldRect.y()));
    element.setAttribute(QStringLiteral("x2"), exact(worldRect.x() + worldRect.width()));
    element.setAttribute(QStringLiteral("y2"), exact(worldRect.y() + worldRect.height()));
    return element;
}

} // namespace

QString ProjectWriter::write(const ProjectSource &project, const QString &fileName)
{
    const QDir folder = QFileInfo(fileName).absoluteDir();
    QDomDocument document;
    document.appendChild(document.createProcessingInstruction(QStringLiteral("xml"),
                                                              QStringLiteral("version=\"1.0\" encoding=\"UTF-8\"")));
    QDomElement root = document.createElement(kRootElement);
    root.setAttribute(kVersionAttribute, kProjectVersion);
    root.setAttribute(kCurrentAttribute, project.currentView);
    root.setAttribute(kArrangementAttribute, project.inTabs ? kTabs : kWindows);
    for (const ProjectViewSource &view : project.views)
        root.appendChild(viewElement(view, document, folder));
    document.appendChild(root);

    QSaveFile file(fileName);
    if (file.open(QIODevice::WriteOnly) && file.write(document.toByteArray(kIndent)) >= 0 && file.commit())
        return QString();
    return tr("%1 cannot be written: %2").arg(QDir::toNativeSeparators(fileName), file.errorString());
}

QDomElement ProjectWriter::viewElement(const ProjectViewSource &view, QDomDocument &document, const QDir &folder)
{
    QDomElement element = document.createElement(kViewElement);
    if (!view.title.isEmpty())
        element.setAttribute(kTitleAttribute, view.title);
    if (!view.worldRect.isNull())
        element.appendChild(extentElement(view.worldRect, document));
    appendLayers(view, &element, document, folder);
    return element;
}

void ProjectWriter::appendLayers(const ProjectViewSource &view, QDomElement *element, QDomDocument &document,
                                 const QDir &folder)
{
    QVector<MissingLayer> missing = view.missing;
    int position = 0;
    const auto appendMissing = [&](bool all) {
        while (!missing.isEmpty() && (all || missing.first().getPosition() <= position)) {
            element->appendChild(missing.takeFirst().toElement(document, folder));
            ++position;
        }
    };
    for (Layer *layer : view.layers) {
        appendMissing(false);
        QDomElement layerElement = document.createElement(kLayerElement);
        layer->writeXML(layerElement, document);
        Layer::makeSourceRelative(layerElement, folder);
        if (layer == view.activeLayer)
            layerElement.setAttribute(kActiveAttribute, QStringLiteral("true"));
        element->appendChild(layerElement);
        ++position;
    }
    appendMissing(true);
}

} // namespace Viewer
