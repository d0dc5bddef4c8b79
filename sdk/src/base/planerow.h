#pragma once

#include "plane.h"

namespace xrv {

/// Calls \a use with a pointer to row \a y of \a plane in its own type.
template <typename Use> void withRow(const Plane &plane, std::int64_t y, Use use)
{
    switch (plane.type) {
    case SampleType::UInt8:
        return use(plane.row<std::uint8_t>(y));
    case SampleType::Int8:
        return use(plane.row<std::int8_t>(y));
    case SampleType::UInt16:
        return use(plane.row<std::uint16_t>(y));
    case SampleType::Int16:
        return use(plane.row<std::int16_t>(y));
    case SampleType::Int32:
        return use(plane.row<std::int32_t>(y));
    case SampleType::UInt32:
        return use(plane.row<std::uint32_t>(y));
    case SampleType::Int64:
        return use(plane.row<std::int64_t>(y));
    case SampleType::Float:
        return use(plane.row<float>(y));
    }
}

/// Calls \a function with a value of the type.
template <typename Function> void withSampleType(SampleType type, Function function)
{
    switch (type) {
    case SampleType::UInt8: // NOLINT(bugprone-branch-clone): the types differ
        function(std::uint8_t());
        break;
    case SampleType::Int8:
        function(std::int8_t());
        break;
    case SampleType::UInt16:
        function(std::uint16_t());
        break;
    case SampleType::Int16:
        function(std::int16_t());
        break;
    case SampleType::Int32:
        function(std::int32_t());
        break;
    case SampleType::UInt32:
        function(std::uint32_t());
        break;
    case SampleType::Int64:
        function(std::int64_t());
        break;
    case SampleType::Float:
        function(float());
        break;
    }
}

} // namespace xrv
