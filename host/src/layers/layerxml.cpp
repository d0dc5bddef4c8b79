// Saving a layer in a project and restoring it.

#include <QDGui/addressutil.h>
#include <QDGui/layer.h>

#include "layer_p.h"
#include "propertytext.h"

#include <QDir>
#include <QDomDocument>
#include <QFileInfo>
#include <QMap>

namespace Korvane::Map {

namespace {

using Util::Address::isAddress;

const QLatin1String kUid("Uid");
const QLatin1String kDescription("Description");
const QLatin1String kComments("Comments");
const QLatin1String kVisible("Visible");
const QLatin1String kDataSource("DataSource");
const QLatin1String kRelative("relative");
const QLatin1String kProperties("Properties");
const QLatin1String kProperty("Property");
const QLatin1String kName("name");
const QLatin1String kClass("class");

/// A setter may undo an earlier one (re-opening a source resets some values), so restoring is repeated until it holds.
constexpr int kMaxRestorePasses = 3;

void appendText(QDomNode &node, QDomDocument &document, const QString &name, const QString &text)
{
    QDomElement element = document.createElement(name);
    element.appendChild(document.createTextNode(text));
    node.appendChild(element);
}

QString childText(const QDomNode &node, const QString &name)
{
    return node.firstChildElement(name).text();
}

/// \a source if such a file exists. Layers may also name a file by the bytes of its UTF-8 name, widened one by one;
/// then the file's real name. Otherwise empty.
QString existingFile(const QString &source)
{
    if (source.isEmpty() || isAddress(source))
        return QString();
    if (QFileInfo::exists(source))
        return source;
    const QString narrowed = Util::Address::narrowed(source);
    return QFileInfo::exists(narrowed) ? narrowed : QString();
}

/// Projects are passed on to others; whoever opens one gives name and password anew.
QString storedAddress(const QString &source)
{
    return Util::Address::withoutCredentials(isAddress(source) ? Util::Address::narrowed(source) : source);
}

/// The saved source, preferably where it lies relative to the project.
QString resolvedSource(const QDomElement &element, const QDir &projectFolder)
{
    const QString relative = element.attribute(kRelative);
    if (!relative.isEmpty()) {
        QString moved = QDir::cleanPath(projectFolder.absoluteFilePath(relative));
        if (QFileInfo::exists(moved))
            return moved;
    }
    QString source = element.text();
    if (!isAddress(source) && !source.isEmpty() && QDir::isRelativePath(source))
        return QDir::cleanPath(projectFolder.absoluteFilePath(source));
    return source;
}

QMap<QString, QString> savedProperties(const QDomNode &node)
{
    QMap<QString, QString> saved;
    QDomElement element = node.firstChildElement(kProperties).firstChildElement(kProperty);
    for (; !element.isNull(); element = element.nextSiblingElement(kProperty))
        saved.insert(element.attribute(kName), element.text());
    return saved;
}

/// Sets what differs from \a saved; returns whether anything did.
bool restoreProperties(Layer &layer, const QMap<QString, QString> &saved)
{
    bool hasChanged = false;
    const QVector<QMetaProperty> properties = storedProperties(layer, Layer::staticMetaObject);
    for (const QMetaProperty &property : properties) {
        const auto wanted = saved.constFind(QString::fromLatin1(property.name()));
        if (wanted == saved.constEnd() || propertyText(layer, property) == *wanted)
            continue;
        hasChanged = setPropertyText(layer, property, *wanted) || hasChanged;
    }
    return hasChanged;
}

} // namespace

bool Layer::writeXML(QDomNode &node, QDomDocument &document)
{
    QDomElement element = node.toElement();
    if (element.isNull())
        return false;
    element.setAttribute(kClass, QString::fromLatin1(metaObject()->className()));
    appendText(node, document, kUid, getUid());
    appendText(node, document, kDescription, getDescription());
    appendText(node, document, kComments, getComments());
    appendText(node, document, kVisible, isVisible() ? QStringLiteral("true") : QStringLiteral("false"));

    const QString source = getDataSource();
    const QString file = existingFile(source);
    appendText(node, document, kDataSource,
               file.isEmpty() ? storedAddress(source) : QFileInfo(file).absoluteFilePath());

    QDomElement list = document.createElement(kProperties);
    const QVector<QMetaProperty> properties = storedProperties(*this, Layer::staticMetaObject);
    for (const QMetaProperty &property : properties) {
        const std::optional<QString> text = propertyText(*this, property);
        if (!text)
            continue;
        appendText(list, document, kProperty, *text);
        list.lastChildElement().setAttribute(kName, QString::fromLatin1(property.name()));
    }
    node.appendChild(list);
    return true;
}

bool Layer::readXML(QDomNode &node, QDir &projectFolder, QString *error)
{
    const QDomElement sourceElement = node.firstChildElement(kDataSource);
    if (sourceElement.isNull()) {
        if (error)
            *error = tr("The project does not say what the layer shows.");
        return false;
    }
    const QString uid = childText(node, kUid);
    if (!uid.isEmpty())
        d->uid = uid;
    setComments(childText(node, kComments));

    const QString source = resolvedSource(sourceElement, projectFolder);
    const bool isOpen = source.isEmpty() || setDataSource(source);
    if (!isOpen && error)
        *error = tr("%1 cannot be opened: %2").arg(Util::Address::shown(source), getLastError());

    // Opening a source gives the layer its description, so the saved one comes after.
    const QString description = childText(node, kDescription);
    if (!description.isEmpty())
        setDescription(description);
    setVisible(childText(node, kVisible) != QLatin1String("false"));

    const QMap<QString, QString> saved = savedProperties(node);
    for (int pass = 0; pass < kMaxRestorePasses && restoreProperties(*this, saved); ++pass) {
    }
    return isOpen;
}

void Layer::makeSourceRelative(const QDomNode &layerNode, const QDir &projectFolder)
{
    QDomElement element = layerNode.firstChildElement(kDataSource);
    const QString file = existingFile(element.text());
    if (file.isEmpty())
        return;
    const QString relative = projectFolder.relativeFilePath(QFileInfo(file).absoluteFilePath());
    if (QDir::isRelativePath(relative))
        element.setAttribute(kRelative, relative);
}

} // namespace Korvane::Map
