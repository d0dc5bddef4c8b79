#pragma once

#include "cells/cellmapping.h"
#include "xrv/xrvrecords.h"

#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

namespace xrv {

/// What is to be known of the cells of one band before they are coded. Asks for every cell once.
class BandSurvey
{
public:
    explicit BandSurvey(XrvBand band)
        : band(std::move(band))
    {
    }

    /// \a opacity: one for each cell, 0 where it is hidden; may be null.
    void add(const std::int32_t *cells, std::size_t count, const std::int32_t *opacity);

    /// The mapping in the fewest bits. Of a code, what is above \a mostBits bits is left to a component of its own.
    CellMapping mapping(int mostBits) const;
    /// Of whole numbers: what every cell needs, hidden or not.
    int neededBits() const;

private:
    /// Fractions 1/1, 1/\a factor, 1/\a factor^2 and so on, of which all cells so far are whole numbers.
    class StepChain
    {
    public:
        StepChain(double factor, double most)
            : factor(factor)
            , most(most)
        {
        }
        void add(std::int32_t floatBits);
        /// 0 where there is none.
        double stepsPerUnit() const { return steps; }
        void join(const StepChain &other)
        {
            steps = steps == 0.0 || other.steps == 0.0 ? 0.0 : std::max(steps, other.steps);
        }

    private:
        double factor, most, steps = 1.0;
    };
    /// The cells of one side of the mask.
    struct Range
    {
        std::int64_t smallest = std::numeric_limits<std::int64_t>::max();
        std::int64_t largest = std::numeric_limits<std::int64_t>::min(); ///< of cells in the order of the numbers
        StepChain binary{2.0, 65536.0}, decimal{10.0, 100000.0};
        bool isEmpty() const { return largest < smallest; }
    };
    void add(std::int32_t cell, Range *range) const;
    std::int64_t numberOf(std::int32_t cell) const;
    Range coded() const;
    static void narrowToSteps(const Range &range, const StepChain &chain, CellMapping *mapping);

    XrvBand band;
    Range visible, hidden;
    std::int32_t hiddenCell = 0;
    bool isHiddenAlike = true; ///< all hidden cells are the one
};

} // namespace xrv
