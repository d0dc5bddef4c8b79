#include <QDGui/layervaluereader.h>

namespace Korvane::Map {

LayerValueReader::LayerValueReader() = default;

LayerValueReader::~LayerValueReader() = default;

} // namespace Korvane::Map
