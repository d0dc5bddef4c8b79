#include "unattendedrequests.h"

#include <atomic>
#include <utility>

namespace xrv {

namespace {

/// A view fetches in steps: where tiles lie, a coarse pass, the final one. What the view before it had asked for last
/// may be what it comes to at its end; and while views replace each other before they come so far, nothing is told.
constexpr int kStepsWithoutUse = 2;

} // namespace

struct UnattendedRequests::Running
{
    RangeGroup group;
    ByteRangeSet ranges;
    int stepsWithoutUse = 0; ///< that were done; under the mutex
    std::atomic<bool> isUseless{false};
};

class UnattendedRequests::Follower : public Afterlife
{
public:
    Follower(std::shared_ptr<UnattendedRequests> owningRequests, RangeGroup group)
        : owner(std::move(owningRequests))
        , request(std::make_shared<Running>())
    {
        request->ranges = ByteRangeSet(group.ranges);
        request->group = std::move(group);
    }
    void begin() override
    {
        const std::lock_guard<std::mutex> lock(owner->mutex);
        request->isUseless = owner->isOver;
        owner->running.push_back(request);
    }
    bool goesOn() const override { return !request->isUseless; }
    /// Kept first: who waits for the bytes looks for them once they are not under way any more.
    void end(const HttpAnswer &answer) override
    {
        bool isWanted = false;
        {
            const std::lock_guard<std::mutex> lock(owner->mutex);
            isWanted = !owner->isDropped;
        }
        if (isWanted)
            owner->keep(request->group, answer);
        const std::lock_guard<std::mutex> lock(owner->mutex);
        owner->running.remove(request);
    }

private:
    const std::shared_ptr<UnattendedRequests> owner;
    const std::shared_ptr<Running> request;
};

UnattendedRequests::UnattendedRequests(Keep keeper)
    : keep(std::move(keeper))
{
}

std::shared_ptr<Afterlife> UnattendedRequests::afterlifeOf(const RangeGroup &group)
{
    return std::make_shared<Follower>(shared_from_this(), group);
}

ByteRangeSet UnattendedRequests::underWay() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    ByteRangeSet all;
    for (const std::shared_ptr<Running> &request : running)
        for (const ByteRange &range : request->ranges.ranges())
            all.add(range);
    return all;
}

void UnattendedRequests::noteWanted(const ByteRangeSet &ranges)
{
    const std::lock_guard<std::mutex> lock(mutex);
    for (const std::shared_ptr<Running> &request : running) {
        if (!request->ranges.intersected(ranges).isEmpty())
            request->stepsWithoutUse = 0;
        else if (request->stepsWithoutUse >= kStepsWithoutUse)
            request->isUseless = true;
    }
}

void UnattendedRequests::noteStepDone()
{
    const std::lock_guard<std::mutex> lock(mutex);
    for (const std::shared_ptr<Running> &request : running)
        ++request->stepsWithoutUse;
}

void UnattendedRequests::breakOff()
{
    const std::lock_guard<std::mutex> lock(mutex);
    isOver = true;
    for (const std::shared_ptr<Running> &request : running)
        request->isUseless = true;
}

void UnattendedRequests::drop()
{
    breakOff();
    const std::lock_guard<std::mutex> lock(mutex);
    isDropped = true;
}

} // namespace xrv
