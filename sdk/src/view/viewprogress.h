#pragma once

#include <cstdint>
#include <mutex>

namespace xrv {

/// How far a view is. Percent and cache tiles, which callers know as blocks, only grow
/// while a view lasts. Any thread.
class ViewProgress
{
public:
    struct CacheTiles
    {
        std::uint64_t inView = 0, available = 0;
    };

    /// A new view: nothing is there yet.
    void restart();
    void setCacheTiles(std::uint64_t inView, std::uint64_t available);
    /// \a percent below 100; \a share (0 to 1) of the cache tiles is available.
    void advance(double percent, double share);
    /// Nothing more will come.
    void finish();

    int percent() const;
    CacheTiles cacheTiles() const;

private:
    mutable std::mutex mutex; ///< guards the rest
    int reached = 100;
    CacheTiles counted;
};

} // namespace xrv
