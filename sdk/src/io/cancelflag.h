#pragma once

#include <atomic>
#include <memory>

namespace xrv {

/// Raised once, by any thread, to end a piece of work early. Copies share the flag. A default-made one can be raised
/// too.
class CancelFlag
{
public:
    CancelFlag()
        : flag(std::make_shared<std::atomic<bool>>(false))
    {
    }
    void raise() { flag->store(true, std::memory_order_relaxed); }
    bool isRaised() const { return flag->load(std::memory_order_relaxed); }

private:
    std::shared_ptr<std::atomic<bool>> flag;
};

} // namespace xrv
