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
constexpr QLatin1String kRootElement("QDViewerProject");
constexpr QLatin1String kViewElement("View");
constexpr QLatin1String kExtentElement("Extent");
constexpr QLatin1String kLayerElement("Layer");
constexpr QLatin1String kVersionAttribute("version");
constexpr QLatin1String kCurrentAttribute("current");
constexpr QLatin1String kArrangementAttribute("arrangement");
constexpr QLatin1String kTitleAttribute("title");
constexpr QLatin1String kActiveAttribute("active");
constexpr QLatin1String kClassAttribute("class");
constexpr QLatin1String kTabs("tabs");
constexpr QLatin1String kWindows("windows");

constexpr int kProjectVersion = 1;

} // namespace Viewer
