#pragma once

#include <QString>
#include <QStringList>

class QMimeData;

namespace Korvane::Map {
class Layer;
} // namespace Korvane::Map

/// File names and addresses of images, as texts. A source is an address when it begins with a scheme ("xrvp://...");
/// anything else is a local file name.
namespace Viewer::Sources {

bool isAddress(const QString &source);
/// The source in the form that is stored and compared: an absolute path for a file (also for a file: address), an
/// address as it stands, without blanks around either.
QString normalized(const QString &source);
/// The address without user name and password, for whatever is stored or handed on; a file name as it stands.
QString withoutCredentials(const QString &source);
/// The same without what follows "?", for whatever is shown or logged.
QString shown(const QString &source);
/// What a person calls it: the last part of the path.
QString shortName(const QString &source);
/// What a drag or the clipboard holds: addresses, else the lines of its text that are an address or an existing file.
QStringList fromMimeData(const QMimeData &data);

/// The layer's source as a readable file name. A layer may keep a file name as the UTF-8 bytes of it, one character
/// each; such a text is turned back where the file exists.
QString ofLayer(const Korvane::Map::Layer &layer);
/// The description of \a layer as it may be shown: without what follows "?" in its address.
QString nameOfLayer(const Korvane::Map::Layer &layer);

/// Why a local file cannot be opened at all, as a sentence; empty for an address and for a readable file.
QString checkReadable(const QString &source);

} // namespace Viewer::Sources
