#pragma once

#include "colour/bandmap.h"
#include "view/sampling/bytemap.h"

#include <map>
#include <memory>
#include <utility>

namespace xrv {

/// The maps from cells to 8 bits of a file's bands, each made when it is first asked for. One thread at a time.
class BandTables
{
public:
    /// Band \a index is stretched from \a minimum..maximum to 0..255.
    void setRange(int index, double minimum, double maximum);
    void clear();

    /// Map of \a band, number \a index. \a autoscaled tells whether opacity of less than 8 bits is scaled up.
    std::shared_ptr<const ByteMap> mapOf(int index, const Band &band, bool autoscaled);

private:
    std::map<int, std::pair<double, double>> ranges;
    std::map<std::pair<int, bool>, std::shared_ptr<const ByteMap>> maps;
};

} // namespace xrv
