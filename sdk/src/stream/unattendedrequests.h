#pragma once

#include "stream/http/rangeplan.h"

#include "stream/values/httpexchange.h"

#include <functional>
#include <list>
#include <memory>
#include <mutex>

namespace xrv {

/// The requests of a source that go on although who asked has turned to something else, as a view that was replaced by
/// the next: what they bring is kept, so that a pan does not ask twice for what both views show. Those that the next
/// view turns out not to want are broken off, and what came of them is kept all the same. Any thread.
class UnattendedRequests : public std::enable_shared_from_this<UnattendedRequests>
{
public:
    /// Takes what a request for \a group brought, whole or not. On the client's thread, also when the source is gone.
    using Keep = std::function<void(const RangeGroup &group, const HttpAnswer &answer)>;

    explicit UnattendedRequests(Keep keeper);
    /// What becomes of a request for \a group once nobody waits for it.
    std::shared_ptr<Afterlife> afterlifeOf(const RangeGroup &group);
    /// What they will bring.
    ByteRangeSet underWay() const;
    /// \a ranges have to be fetched now: begins a step.
    void noteWanted(const ByteRangeSet &ranges);
    /// The step was not cancelled.
    void noteStepDone();
    /// The source is gone: all are broken off.
    void breakOff();
    /// And nothing of them is kept.
    void drop();

private:
    struct Running;
    class Follower;

    const Keep keep;
    mutable std::mutex mutex; ///< guards the members below
    std::list<std::shared_ptr<Running>> running;
    bool isOver = false, isDropped = false;
};

} // namespace xrv
