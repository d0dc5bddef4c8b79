#pragma once

#include <cstddef>
#include <functional>

namespace xrv {

/// The threads that decode, shared by all files.
class DecodePool
{
public:
    /// How many there are; one per core.
    static int threads();
    /// Calls \a work for 0 to count - 1, several at a time, and waits for the last. Once a call returns false the ones
    /// that have not begun are left out.
    static void run(std::size_t count, const std::function<bool(std::size_t)> &work);
};

} // namespace xrv
