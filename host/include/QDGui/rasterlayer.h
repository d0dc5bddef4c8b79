#pragma once

#include <QDGui/layer.h>

#include <QSize>
#include <QVector>

namespace Korvane::Map {

class IRendererClient;

/// A layer made of cells. Of a raster layer's operations this class declares those that every raster can answer, from
/// getCellSizeX() to getColorSpace(), in slot order. What only some formats have (contrast, resampling, progressive
/// display, quality layers and the like, from getContrast() on) the format's own class adds after them.
class QDGUI_EXPORT RasterLayer : public Layer
{
    Q_OBJECT
    Q_PROPERTY(double Transparency READ getTransparency WRITE setTransparency)

public:
    enum ColorSpace { RGB = 0, Greyscale = 1, Multiband = 2, UnknownColorSpace = 3 };

    /// \a client, if not null, is told of every refresh; it must outlive the layer.
    explicit RasterLayer(IRendererClient *client);
    ~RasterLayer() override;

    /// World units per cell; negative where the coordinate falls from cell to cell.
    virtual double getCellSizeX() const = 0;
    virtual double getCellSizeY() const = 0;
    /// Opacity that the layer is drawn with: 0 invisible to 1 opaque.
    virtual double getTransparency() const = 0;
    virtual void setTransparency(double transparency) = 0;
    virtual int getNumberOfBands() const = 0;
    /// Zero-based bands shown as red, green, blue and, optionally, opacity.
    virtual QVector<int> getBandList() const = 0;
    virtual void setBandList(QVector<int> bands) = 0;
    /// Size in cells; invalid without an image.
    virtual QSize getSize() const = 0;
    virtual QString getCellType() const = 0;
    virtual bool hasOpacity() const = 0;
    /// Zero-based, -1 when there is none.
    virtual int getOpacityBandNumber() const = 0;
    /// Degrees, clockwise.
    virtual double getRotation() const = 0;
    virtual ColorSpace getColorSpace() const = 0;

    /// The coordinate reference system's EPSG code; 0 when not known.
    int getEpsgCode() const;
    void setEpsgCode(int code);

    IRendererClient *getRendererClient() const;

private:
    IRendererClient *client;
    int epsgCode = 0;
};

} // namespace Korvane::Map
