#pragma once

#include <xrv60/plklog.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace xrv {

/// The one sink of a text type, and the calls that are in it. No lock is held while the sink runs.
template <typename Char> class LogSink
{
public:
    using Logger = PLK::ILogger<Char>;

    /// Never destroyed: threads that outlive the library's static objects may still end, and log.
    static LogSink &instance()
    {
        static auto *sink = new LogSink;
        return *sink;
    }

    bool isRegistered() const { return registered.load(std::memory_order_acquire); }

    /// Puts \a logger in the last one's place and waits until that is in no call, those of this thread left out: a sink
    /// may remove itself.
    void replace(Logger *logger)
    {
        std::unique_lock<std::mutex> lock(mutex);
        const std::shared_ptr<Registration> old = current;
        current = logger ? std::make_shared<Registration>(logger) : nullptr;
        registered.store(logger != nullptr, std::memory_order_release);
        if (!old)
            return;
        const int own = callsOfThisThread(old.get());
        changed.wait(lock, [&] { return old->calls <= own; });
    }

    /// Calls \a use with the sink and the thread's context; false without a sink.
    template <typename Use> bool call(Use use)
    {
        const std::shared_ptr<Registration> registration = enter();
        if (!registration)
            return false;
        const Leave leave{this, registration.get()};
        attachThread(registration);
        use(registration->logger, threadContext());
        return true;
    }

private:
    struct Registration
    {
        explicit Registration(Logger *sink)
            : logger(sink)
        {
        }
        Logger *const logger;
        int calls = 0; ///< calls in the sink; under the mutex
    };

    /// What a thread knows: the sinks that it is in, innermost last, and the one that it is attached to.
    struct Thread
    {
        ~Thread() { LogSink::instance().detachThread(this); }
        std::vector<const Registration *> inside;
        std::weak_ptr<Registration> attached;
    };

    struct Leave
    {
        ~Leave() { sink->leave(registration); }
        LogSink *sink;
        Registration *registration;
    };

    /// Ends a thread's record with the thread.
    struct ThreadEnd
    {
        ~ThreadEnd() { delete std::exchange(threadRecord(), nullptr); }
        void arm() {}
    };

    /// A bare pointer, for it can still be used when the thread's objects are gone: a plug-in that is unloaded at the
    /// process's exit removes its sinks then.
    static Thread *&threadRecord()
    {
        static thread_local Thread *record = nullptr;
        return record;
    }

    static Thread &thisThread()
    {
        Thread *&record = threadRecord();
        if (!record) {
            static thread_local ThreadEnd end;
            end.arm();
            record = new Thread;
        }
        return *record;
    }

    static void *threadContext() { return &thisThread(); }

    static int callsOfThisThread(const Registration *registration)
    {
        const auto &inside = thisThread().inside;
        return static_cast<int>(std::count(inside.begin(), inside.end(), registration));
    }

    std::shared_ptr<Registration> enter()
    {
        std::vector<const Registration *> &inside = thisThread().inside;
        const std::lock_guard<std::mutex> lock(mutex);
        if (current) {
            inside.push_back(current.get());
            ++current->calls;
        }
        return current;
    }

    void leave(Registration *registration)
    {
        thisThread().inside.pop_back();
        const std::lock_guard<std::mutex> lock(mutex);
        --registration->calls;
        changed.notify_all();
    }

    static void attachThread(const std::shared_ptr<Registration> &registration)
    {
        Thread &thread = thisThread();
        if (thread.attached.lock() == registration)
            return;
        thread.attached = registration;
        registration->logger->attach(&thread);
    }

    /// At the end of a thread. A sink that was removed in the meantime is not told.
    void detachThread(Thread *thread)
    {
        const std::shared_ptr<Registration> attached = thread->attached.lock();
        {
            const std::lock_guard<std::mutex> lock(mutex);
            if (!attached || attached != current)
                return;
            ++attached->calls;
        }
        attached->logger->detach(thread);
        const std::lock_guard<std::mutex> lock(mutex);
        --attached->calls;
        changed.notify_all();
    }

    std::mutex mutex; ///< guards current and the numbers of every registration
    std::condition_variable changed;
    std::shared_ptr<Registration> current;
    std::atomic<bool> registered{false}; ///< spares the lock while nobody listens
};

} // namespace xrv
