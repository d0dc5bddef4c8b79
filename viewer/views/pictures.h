#pragma once

#include <QString>

class QImage;

namespace Viewer::Pictures {

/// Writes \a image as a PNG file, whole or not at all: what was there stays until the new file is complete. Returns an
/// empty text, or why it failed.
QString writePng(const QImage &image, const QString &fileName);

} // namespace Viewer::Pictures
