#pragma once

#include <QLatin1String>

namespace Viewer {

// Names in a project file:
//
// <QDViewerProject version="1" current="0" arrangement="tabs">
//   <View title="Harbour" active="1">
//     <Extent x1="0" y1="100" x2="150" y2="0"/>
//     <Layer class="Korvane::SomeLayer"> what the layer itself writes </Layer>   the lowest layer first
//   </View>
// </QDViewerProject>
// Not constexpr: the length of a literal is no constant to every compiler here.
inline const QLatin1String kRootElement("QDViewerProject");
inline const QLatin1String kViewElement("View");
inline const QLatin1String kExtentElement("Extent");
inline const QLatin1String kLayerElement("Layer");
inline const QLatin1String kVersionAttribute("version");
inline const QLatin1String kCurrentAttribute("current");
inline const QLatin1String kArrangementAttribute("arrangement");
inline const QLatin1String kTitleAttribute("title");
inline const QLatin1String kActiveAttribute("active");
inline const QLatin1String kClassAttribute("class");
inline const QLatin1String kTabs("tabs");
inline const QLatin1String kWindows("windows");

constexpr int kProjectVersion = 1;

} // namespace Viewer
