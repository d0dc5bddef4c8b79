#pragma once

#include <QDir>
#include <QDomDocument>

namespace Viewer {

/// A project's layer that could not be opened: its element as it stood, so that saving the project again keeps it.
class MissingLayer
{
public:
    MissingLayer() = default;
    /// \a element of a project in \a projectFolder; \a position is its place among all layers of its view, 0 lowest.
    MissingLayer(const QDomElement &element, const QDir &projectFolder, int position);

    int getPosition() const { return position; }
    /// A copy of the element for \a document, with its relative source rewritten for a project in \a projectFolder,
    /// and without the credentials that an address may hold.
    QDomElement toElement(QDomDocument &document, const QDir &projectFolder) const;

private:
    QDomDocument holder; ///< Keeps the element alive without the rest of the project.
    QDir folder;
    int position = 0;
};

} // namespace Viewer
