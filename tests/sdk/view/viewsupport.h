#pragma once

#include "fakereader.h"

#include "view/bandtables.h"
#include "view/viewengine.h"

#include <QByteArray>

#include <memory>
#include <vector>

/// Takes no notice of passes.
class SilentListener : public xrv::PassListener
{
public:
    PLKReadStatus passReady(PLKSetViewInfo *) override { return PLK_READ_SUCCESS; }
};

/// A reader with the bands that it has by itself or through boxes.
struct Image
{
    explicit Image(FakeReader &fakeReader, const xrv::Jp2Structure &boxes = {})
        : reader(fakeReader)
        , map(xrv::BandMap::make(reader.raster, boxes, nullptr))
    {
    }
    xrv::ViewSource source() { return {nullptr, &reader, &map}; }

    xrv::ViewRequest view(std::vector<int> bands, int width, int height, const xrv::EdgeRect &datasetRect)
    {
        xrv::ViewRequest request;
        request.bands = std::move(bands);
        request.width = width;
        request.height = height;
        request.datasetRect = request.worldRect = datasetRect;
        for (int band : request.bands) {
            const xrv::Band &info = map.bands()[static_cast<std::size_t>(band)];
            request.byteMaps.push_back(tables.mapOf(band, info, false));
            request.autoscaledByteMaps.push_back(tables.mapOf(band, info, true));
        }
        return request;
    }

    FakeReader &reader;
    xrv::BandMap map;
    xrv::BandTables tables;
};

/// An image with a blocking view.
struct BlockingView : Image
{
    explicit BlockingView(FakeReader &fakeReader, const xrv::Jp2Structure &boxes = {})
        : Image(fakeReader, boxes)
        , engine(source(), false, listener)
    {
    }
    void show(const std::vector<int> &bands, int width, int height, const xrv::EdgeRect &datasetRect)
    {
        engine.setView(view(bands, width, height, datasetRect));
    }
    void showSmoothly(const std::vector<int> &bands, int width, int height, const xrv::EdgeRect &datasetRect)
    {
        xrv::ViewRequest request = view(bands, width, height, datasetRect);
        request.resampleMethod = PLK_RESAMPLE_BILINEAR;
        engine.setView(request);
    }

    SilentListener listener;
    xrv::ViewEngine engine;
};

/// A line of a view, four bytes per pixel.
inline PLKReadStatus readLine(xrv::ViewEngine &engine, std::uint32_t *line, bool autoscale = false)
{
    xrv::LineTarget target;
    target.bgra = line;
    target.autoscaleOpacity = autoscale;
    return engine.readLine(target);
}

/// A whole view read line by line.
template <typename Cell> struct Lines
{
    PLKReadStatus status = PLK_READ_SUCCESS; ///< of the last line that was read
    int width = 0;
    std::vector<std::vector<Cell>> bands;
    Cell at(int x, int y, std::size_t band = 0) const { return bands[band][static_cast<std::size_t>(y * width + x)]; }
};

template <typename Cell>
Lines<Cell> readBil(xrv::ViewEngine &engine, PLKCellType type, std::size_t bandCount, bool autoscale = false)
{
    const PLKSetViewInfo info = engine.viewInfo();
    Lines<Cell> read;
    read.width = static_cast<int>(info.nSizeX);
    read.bands.assign(bandCount, std::vector<Cell>(std::size_t(info.nSizeX) * info.nSizeY));
    for (std::size_t y = 0; y < info.nSizeY && read.status == PLK_READ_SUCCESS; ++y) {
        std::vector<void *> lines;
        for (std::vector<Cell> &band : read.bands)
            lines.push_back(band.data() + y * info.nSizeX);
        xrv::LineTarget target;
        target.type = type;
        target.lines = lines.data();
        target.autoscaleOpacity = autoscale;
        read.status = engine.readLine(target);
    }
    return read;
}

/// Four bytes per pixel. Stops at the first line that fails.
inline Lines<std::uint32_t> readBgra(xrv::ViewEngine &engine, bool autoscale = false)
{
    const PLKSetViewInfo info = engine.viewInfo();
    Lines<std::uint32_t> read;
    read.width = static_cast<int>(info.nSizeX);
    read.bands.assign(1, std::vector<std::uint32_t>(std::size_t(info.nSizeX) * info.nSizeY));
    for (std::size_t y = 0; y < info.nSizeY && read.status == PLK_READ_SUCCESS; ++y)
        read.status = readLine(engine, read.bands[0].data() + y * info.nSizeX, autoscale);
    return read;
}

/// The four bytes of a pixel in memory: blue, green, red, alpha.
inline QByteArray bytesOf(std::uint32_t pixel)
{
    return QByteArray(reinterpret_cast<const char *>(&pixel), 4);
}
inline QByteArray bgra(int blue, int green, int red, int alpha)
{
    const char bytes[] = {static_cast<char>(blue), static_cast<char>(green), static_cast<char>(red),
                          static_cast<char>(alpha)};
    return QByteArray(bytes, 4);
}
inline QByteArray grey(int level)
{
    return bgra(level, level, level, 255);
}
