#pragma once

#include "rasterreader.h"

#include "cells/cellmapping.h"

#include <memory>
#include <vector>

namespace xrv {

/// What is needed to make one component of cells from the codes of a codestream.
struct MappedComponent
{
    CellMapping mapping;
    bool isSigned = false; ///< the cells, where they are mapped whole numbers
};

/// Gives cells of 32 bits, Floats among them, from a codestream of their codes (docs/xrv-format.md, box 'cell'). The
/// codestream has a component for each of these in the same order and behind them one for the low bits of each that
/// keeps them apart; callers see none of that. Levels above 0 are made without the low bits, which are noise there.
class MappedReader : public RasterReader
{
public:
    /// \a codes reads the codestream. Null where its components are not what \a components need.
    static std::unique_ptr<RasterReader> make(std::unique_ptr<RasterReader> codes,
                                              std::vector<MappedComponent> components);

    const RasterInfo &info() const override { return raster; }
    const MainHeader &mainHeader() const override { return codes->mainHeader(); }
    ReadCost cost(const ReadRequest &request) override { return codes->cost(requestOfCodes(request)); }
    PLK::CError read(const ReadRequest &request, ReadResult *result) override;
    PLK::CError prefetch(const std::vector<ReadRequest> &requests) override;
    void dropCached() override { codes->dropCached(); }

private:
    MappedReader(std::unique_ptr<RasterReader> codes, std::vector<MappedComponent> components);
    const CellMapping &mapping(int component) const { return components[static_cast<std::size_t>(component)].mapping; }
    bool isWellMade() const;
    ReadRequest requestOfCodes(const ReadRequest &request) const;
    Plane planeOf(int component, int level, std::vector<Plane> *planes) const;

    const std::unique_ptr<RasterReader> codes;
    const std::vector<MappedComponent> components;
    std::vector<int> lowComponents; ///< of each component, -1 without
    RasterInfo raster;
};

} // namespace xrv
