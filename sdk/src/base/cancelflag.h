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
    bool isRaised() const { return isSet(flag) || (other && isSet(other)); }
    /// This flag, raised also when \a further is (of whose own joined flag nothing is known then).
    CancelFlag joinedWith(const CancelFlag &further) const
    {
        CancelFlag joined(*this);
        joined.other = further.flag;
        return joined;
    }

private:
    using Flag = std::shared_ptr<std::atomic<bool>>;
    static bool isSet(const Flag &flag) { return flag->load(std::memory_order_relaxed); }

    Flag flag;
    Flag other; ///< null as a rule
};

} // namespace xrv
