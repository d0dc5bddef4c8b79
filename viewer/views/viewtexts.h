#pragma once

#include <QPointF>
#include <QString>

/// Numbers of the status bar as texts, in the person's locale.
namespace Viewer::ViewTexts {

/// As many decimals as tell two neighbouring pixels apart, when a pixel is \a unitsPerPixel world units wide.
int decimalsFor(double unitsPerPixel);
/// "X 299940.0  Y 4100000.0"
QString coordinates(const QPointF &worldPoint, double unitsPerPixel);
/// "299940.0, 4100000.0" in every locale, for other programs.
QString plainCoordinates(const QPointF &worldPoint, double unitsPerPixel);
/// How many screen pixels a cell of \a cellSize world units takes: "25 %"; empty when either is not a number above 0.
QString zoomPercent(double cellSize, double unitsPerPixel);
/// "240 units per pixel"
QString unitsPerPixel(double units);

} // namespace Viewer::ViewTexts
