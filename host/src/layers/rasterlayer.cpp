#include <QDGui/rasterlayer.h>

#include <QDGui/irendererclient.h>

namespace Korvane::Map {

RasterLayer::RasterLayer(IRendererClient *client)
    : client(client)
{
    if (client) {
        connect(this, &Layer::refreshRequested, this,
                [this](const QRectF &worldRect) { this->client->layerRefreshed(this, worldRect); });
    }
}

RasterLayer::~RasterLayer() = default;

int RasterLayer::getEpsgCode() const
{
    return epsgCode;
}

void RasterLayer::setEpsgCode(int code)
{
    epsgCode = code;
}

IRendererClient *RasterLayer::getRendererClient() const
{
    return client;
}

} // namespace Korvane::Map
