#include "viewarguments.h"

#include "refusals.h"

#include <algorithm>
#include <cmath>

namespace xrv {

namespace {

constexpr int kMaxSize = 65535;

} // namespace

PLK::CError ViewArguments::check(std::size_t fileBands) const
{
    if (bandCount < 1 || bandCount > kMaxBands || bands == nullptr)
        return invalidArgument("A view shows one to four bands.");
    for (int i = 0; i < bandCount; ++i)
        if (bands[i] < 0 || static_cast<std::size_t>(bands[i]) >= fileBands)
            return invalidArgument("The view asks for a band that the file does not have.");
    if (width < 1 || height < 1 || width > kMaxSize || height > kMaxSize)
        return invalidArgument("The size of a view is 1 to 65535 pixels either way.");
    if (!isArea(worldRect))
        return invalidArgument("The world rectangle of the view is empty or not finite.");
    return {};
}

bool areFinite(std::initializer_list<double> numbers)
{
    return std::all_of(numbers.begin(), numbers.end(), [](double number) { return std::isfinite(number); });
}

bool isArea(const EdgeRect &rect)
{
    return areFinite({rect.left, rect.top, rect.right, rect.bottom}) && rect.left != rect.right &&
           rect.top != rect.bottom;
}

} // namespace xrv
