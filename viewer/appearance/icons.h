#pragma once

#include <QIcon>

/// The viewer's own icons, drawn as lines in the palette's text colour: sharp at every size and scale factor, legible
/// on light and dark themes.
namespace Viewer::Icons {

enum class Shape {
    Open,
    Save,
    NewView,
    ZoomIn,
    ZoomOut,
    ZoomAll,
    ZoomLayer,
    ZoomNative,
    Up,
    Down,
    Remove,
    Properties,
    Map
};

QIcon icon(Shape shape);

} // namespace Viewer::Icons
