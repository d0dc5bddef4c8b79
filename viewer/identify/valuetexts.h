#pragma once

#include <QString>

namespace Korvane::Map {
struct CellValues;
} // namespace Korvane::Map

namespace Viewer::ValueTexts {

/// As it is stored: whole numbers without decimals or separators, others with as many digits as a 32-bit number has.
QString number(double value);
/// What a status bar says: "523 400 312", "≈ 523 400 312" where the cells are not read at full resolution; empty where
/// there are none.
QString list(const Korvane::Map::CellValues &values);

} // namespace Viewer::ValueTexts
