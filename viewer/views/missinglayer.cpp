#include "missinglayer.h"

#include "sources/sources.h"

namespace Viewer {

namespace {

// As the host library writes them: the absolute source is the text, the way from the project's folder an attribute.
const QString kDataSource = QStringLiteral("DataSource");
const QString kRelative = QStringLiteral("relative");

} // namespace

MissingLayer::MissingLayer(const QDomElement &element, const QDir &projectFolder, int position)
    : folder(projectFolder)
    , position(position)
{
    holder.appendChild(holder.importNode(element, true));
}

QDomElement MissingLayer::toElement(QDomDocument &document, const QDir &projectFolder) const
{
    QDomElement element = document.importNode(holder.documentElement(), true).toElement();
    QDomElement source = element.firstChildElement(kDataSource);
    const QString shown = Sources::withoutCredentials(source.text());
    if (shown != source.text()) {
        while (source.hasChildNodes())
            source.removeChild(source.firstChild());
        source.appendChild(document.createTextNode(shown));
    }
    if (source.hasAttribute(kRelative)) {
        const QString absolute = QDir::cleanPath(folder.absoluteFilePath(source.attribute(kRelative)));
        source.setAttribute(kRelative, projectFolder.relativeFilePath(absolute));
    }
    return element;
}

} // namespace Viewer
