// SPDX-License-Identifier: MIT
#pragma once

#include "ula/Export.h"
#include "ula/foundation/util/Function0.h"
#include "ula/foundation/util/SharedPtr.h"
#include "ula/foundation/util/Signal.h"

#include <atomic>
#include <chrono>
#include <cstdint>

namespace tav::ula {

class CallOwner;
class JobQueue;

/// How a call with a time limit ended.
enum class CallOutcome {
    Done,         ///< the function has run
    Cancelled,    ///< it has not begun and never will
    StillRunning  ///< it has begun and goes on; what it throws later is dropped
};

/// Speaks of one call made with `MainThreadCaller::callAsync`; it does not keep the call alive.
/// Thread: any, several at once too.
class ULA_API CallHandle {
public:
    /// True once the call has been run or cancelled and nobody holds it any more; false while its
    /// function runs.
    virtual bool isFinished() const = 0;
    /// Returns when the call has been run or cancelled. On the main thread, where waiting would
    /// never end, a call that has not begun is run here and now, and what its function throws
    /// comes out of here.
    virtual void wait() = 0;
    /// Makes sure that the function does not begin from now on, and ends every wait for it. A
    /// function that is already running is not stopped.
    virtual void cancel() = 0;
    virtual ~CallHandle();
};

/// Runs functions on the application's main thread. That is, by definition, the thread that first
/// calls `instance()`; its run loop must run for the functions to be called.
class ULA_API MainThreadCaller {
public:
    /// For clients; the library itself never emits it.
    util::Signal0 signal;

    /// The process's caller, made by the first call. Thread: the first call must come from the
    /// main thread and before other threads use the caller; no lock is taken.
    static MainThreadCaller* instance();
    /// Cancels every queued call, which lets blocked callers return, and deletes the caller; the
    /// next `instance()` makes a new one. Does nothing where there is none. Safe from within a
    /// running call. Thread: the main thread; no other one may begin a call meanwhile.
    static void destroyInstance();

    /// Thread: any.
    bool isMainThread() const;

    /// Queues a copy of the function and returns at once, on the main thread too: there it runs
    /// when the run loop gets to it. What the function throws is dropped.
    /// From the 10000th pending call on, each call logs an assertion; none is refused.
    /// Thread: any.
    virtual util::SharedPtr<CallHandle> callAsync(const util::Function0<void>& function) = 0;
    /// Runs the function on the main thread and returns when it is done; on the main thread itself
    /// it is simply called. When the call is cancelled (`cancelAllJobs`, `destroyInstance`) it
    /// returns without having run it.
    /// Fails: what the function throws is thrown here: a `tav::Exception` with its dynamic type, a
    /// `std::exception` as a `tav::Exception` with its text, anything else as an empty one.
    /// Thread: any.
    virtual void callSync(const util::Function0<void>& function) = 0;

    /// As `callSync`, but waits no longer than `limit`; a function that has not begun by then is
    /// cancelled. On the main thread the function is simply called, whatever the limit.
    /// Fails: what a finished function throws is thrown here, as with `callSync`.
    /// Thread: any.
    CallOutcome callSyncWithin(std::chrono::milliseconds limit,
                               const util::Function0<void>& function);
    /// As `callAsync`, for a function that uses an object: it does not begin once the object's
    /// `CallOwner` has gone. Thread: any, while the owner lives.
    util::SharedPtr<CallHandle> callAsyncOwned(const CallOwner& owner,
                                               const util::Function0<void>& function);

    virtual ~MainThreadCaller();

    /// Runs the calls that were pending when it began. Fails: logs an assertion and runs nothing on
    /// another thread than the main one.
    virtual void processJobs() = 0;
    /// Cancels every queued call. Thread: any.
    virtual void cancelAllJobs() = 0;

protected:
    /// Outlives the caller where a call destroys it.
    struct State {
        std::atomic<bool> running = true;
        std::atomic<std::uint32_t> mainThreadId;
    };

    /// The main thread is the constructing one, until `instance()` says so.
    MainThreadCaller();

    const util::SharedPtr<State>& state() const { return _state; }

private:
    friend class JobQueue;

    util::SharedPtr<State> _state;
    static std::atomic<MainThreadCaller*> _instance;
};

/// Keeps the calls in a queue. What makes the main thread look at it is left to the platform.
class ULA_API JobBasedMainThreadCaller : public MainThreadCaller {
public:
    JobBasedMainThreadCaller();
    ~JobBasedMainThreadCaller() override;

    util::SharedPtr<CallHandle> callAsync(const util::Function0<void>& function) override;
    void callSync(const util::Function0<void>& function) override;
    void processJobs() override;
    void cancelAllJobs() override;

    /// Makes the main thread call `runPendingJobs` soon. Called in any thread with the queue's lock
    /// held: it must not call back into this object.
    virtual void wakeUpMainThread() = 0;

protected:
    /// Runs the calls that were pending when it began; those that are queued meanwhile wait for
    /// the next time. Nothing is thrown. The caller may be destroyed by one of the calls.
    void runPendingJobs();

private:
    util::SharedPtr<JobQueue> _queue;
};

}  // namespace tav::ula
