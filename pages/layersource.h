#pragma once

#include <QString>

namespace Korvane {
class XRVJP2kLayer;
}

/// The layer's data source as a person writes it. The layer itself widens the bytes of the UTF-8 name one by one.
QString layerSource(const Korvane::XRVJP2kLayer &layer);
