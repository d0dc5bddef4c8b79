#pragma once

#include "cellkind.h"

#include <optional>

namespace xrv {

/// How cells of 32 bits and the codes of a codestream belong to each other (docs/xrv-format.md, box 'cell').
/// Reversible: every cell that is coded comes back bit by bit. A greater code is a greater cell, so that the codes can
/// be averaged.
struct CellMapping
{
    enum class Form : std::uint8_t {
        None,       ///< cells are their component's
        Whole,      ///< whole numbers, less the smallest
        FloatBits,  ///< bits of a Float, in the order of what they stand for
        FloatSteps, ///< Floats that are whole numbers of some fraction of 1
    };

    Form form = Form::None;
    std::int64_t base = 0;                ///< number that code 0 stands for
    std::uint32_t largest = 0;            ///< code
    std::uint8_t lowBits = 0;             ///< of a code, lie in a component of their own, 0 to 31
    double stepsPerUnit = 1.0;            ///< of FloatSteps
    std::optional<std::int32_t> hidden{}; ///< cell wherever the opacity is 0; what is coded there means nothing

    bool isMapped() const { return form != Form::None; }
    bool isFloat() const { return form == Form::FloatBits || form == Form::FloatSteps; }
    /// Of a code, 1 to 32.
    int bits() const;
    std::int32_t cellOf(std::uint32_t code) const;
    /// Of a cell that the mapping was made for.
    std::uint32_t codeOf(std::int32_t cell) const;

    /// The number of a Float's bits that is in the order of the Floats; it is its own inverse.
    static std::int32_t ordered(std::int32_t floatBits)
    {
        return floatBits < 0 ? floatBits ^ std::numeric_limits<std::int32_t>::max() : floatBits;
    }
};

} // namespace xrv
