#include "layersource.h"

#include "layer/xrvjp2klayer.h"

QString layerSource(const Korvane::XRVJP2kLayer &layer)
{
    return QString::fromUtf8(layer.getDataSource().toLatin1());
}
