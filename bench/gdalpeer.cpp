#include "gdalpeer.h"

#include <cpl_conv.h>
#include <gdal.h>

#include <algorithm>
#include <stdexcept>

struct GdalPeer::Dataset
{
    explicit Dataset(GDALDatasetH opened)
        : handle(opened)
        , type(GDALGetRasterDataType(GDALGetRasterBand(opened, 1)))
    {
    }
    ~Dataset() { GDALClose(handle); }

    GDALDatasetH handle;
    GDALDataType type;
};

GdalPeer::GdalPeer()
{
    CPLSetConfigOption("GDAL_NUM_THREADS", "2");
    GDALAllRegister();
}

GdalPeer::~GdalPeer() = default;

void GdalPeer::open(const std::string &path)
{
    const GDALDatasetH handle = GDALOpen(path.c_str(), GA_ReadOnly);
    if (!handle)
        throw std::runtime_error("GDAL cannot open '" + path + "'.");
    dataset = std::make_unique<Dataset>(handle);
}

int GdalPeer::bands() const
{
    return GDALGetRasterCount(dataset->handle);
}

int GdalPeer::cellSize() const
{
    return GDALGetDataTypeSizeBytes(dataset->type);
}

void GdalPeer::show(const Window &window)
{
    // GDAL refuses rectangles that reach beyond the image, so what lies outside is cut off here.
    const int right = std::min(window.x + window.width, GDALGetRasterXSize(dataset->handle));
    const int bottom = std::min(window.y + window.height, GDALGetRasterYSize(dataset->handle));
    const int x = std::max(window.x, 0), y = std::max(window.y, 0);
    const auto pixels = [](int part, int whole, int all) {
        return static_cast<int>(static_cast<long long>(part) * all / whole);
    };
    const int across = pixels(right - x, window.width, window.pixelsAcross);
    const int down = pixels(bottom - y, window.height, window.pixelsDown);
    const int pixelSize = bands() * cellSize();
    cells.resize(static_cast<std::size_t>(across) * static_cast<std::size_t>(down) *
                 static_cast<std::size_t>(pixelSize));
    const CPLErr result =
        GDALDatasetRasterIO(dataset->handle, GF_Read, x, y, right - x, bottom - y, cells.data(), across, down,
                            dataset->type, bands(), nullptr, pixelSize, across * pixelSize, cellSize());
    if (result != CE_None)
        throw std::runtime_error("GDAL cannot read the window.");
}
