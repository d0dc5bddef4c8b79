#pragma once

#include <QString>

class QImage;

namespace Viewer::Pictures {

/// Writes \a image in the format that the ending of the name tells, PNG without one, whole or not at all: what was
/// there stays until the new file is complete. Returns an empty text, or why it failed.
QString write(const QImage &image, const QString &fileName);
/// The same check without a picture: an empty text, or why no picture can have that name.
QString checkName(const QString &fileName);

} // namespace Viewer::Pictures
