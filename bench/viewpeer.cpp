#include "viewpeer.h"

#include <xrv60/plkinit.h>

#include <stdexcept>

namespace {

void check(const PLK::CError &error)
{
    if (error)
        throw std::runtime_error(error.GetErrorMessage());
}

} // namespace

std::vector<int> pictureBands(const PLK::CView &view)
{
    std::vector<std::uint32_t> rgb;
    if (view.GetDefaultRGBABandList(&rgb).IsSuccess() && rgb.size() >= 3)
        return {static_cast<int>(rgb[0]), static_cast<int>(rgb[1]), static_cast<int>(rgb[2])};
    return {0};
}

void setWindow(PLK::CView *view, const std::vector<int> &bands, const Window &window)
{
    double x1, y1, x2, y2;
    check(view->ConvertDatasetToWorld(window.x, window.y, &x1, &y1));
    check(view->ConvertDatasetToWorld(window.x + window.width, window.y + window.height, &x2, &y2));
    check(view->SetView(static_cast<int>(bands.size()), bands.data(), window.pixelsAcross, window.pixelsDown, x1, y1,
                        x2, y2));
}

ViewPeer::ViewPeer()
{
    PLKInit();
}

void ViewPeer::open(const std::string &path)
{
    check(view.Open(PLK::CString(path.c_str()), false, false));
    bands = pictureBands(view);
}

void ViewPeer::show(const Window &window)
{
    setWindow(&view, bands, window);
    const std::size_t lineBytes = static_cast<std::size_t>(window.pixelsAcross) * 4;
    pixels.resize(lineBytes * static_cast<std::size_t>(window.pixelsDown));
    for (std::size_t place = 0; place < pixels.size(); place += lineBytes) {
        if (view.ReadLineBGRA(pixels.data() + place) != PLK_READ_SUCCESS) {
            check(view.GetLastError());
            throw std::runtime_error("A line could not be read.");
        }
    }
}
