// SPDX-License-Identifier: MIT
#include "ula/MainThreadWatchdog.h"

#include "ula/MainThreadCaller.h"
#include "ula/foundation/debug/Log.h"
#include "ula/foundation/debug/StackTrace.h"
#include "ula/foundation/thread/ConditionVariable.h"
#include "ula/foundation/thread/Thread.h"
#include "ula/src/Core/TimeLimit.h"

#include <pthread.h>
#include <string>

namespace tav::ula {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

/// Sends a call to the main thread once in every limit and looks how long it takes to be run.
class MainThreadWatchdog::Watch {
public:
    explicit Watch(milliseconds limit)
        : _limit(boundedLimit(limit)),
          _mainThread(pthread_self()),
          _caller(*MainThreadCaller::instance()),
          _thread([this] { watch(); }) {}
    ~Watch() {
        {
            const Lock lock(_mutex);
            _ending = true;
        }
        _changed.notify_all();
        _thread.join();
    }

private:
    using Lock = thread::ScopedLock<thread::Mutex>;

    void watch() {
        while (!waitFor(_ending, Clock::now() + _limit))
            check();
    }

    /// False when the deadline passes before the flag, or the end, is there.
    bool waitFor(const bool& flag, Clock::time_point deadline) {
        Lock lock(_mutex);
        while (!flag && !_ending)
            if (!_changed.waitUntil(lock, deadline))
                return flag || _ending;
        return true;
    }

    void check() {
        const Clock::time_point begin = Clock::now();
        const auto handle = sendCall();
        if (!waitFor(_answered, begin + _limit)) {
            report();
            waitFor(_answered, Clock::time_point::max());
            if (isAnswered())
                reportEnd(begin);
        }
        handle->cancel();
    }

    util::SharedPtr<CallHandle> sendCall() {
        {
            const Lock lock(_mutex);
            _answered = false;
        }
        return _caller.callAsync([this] {
            {
                const Lock lock(_mutex);
                _answered = true;
            }
            _changed.notify_all();
        });
    }

    void report() const {
        const std::string text =
            "main thread blocked for more than " + std::to_string(_limit.count()) + " ms";
        log_with_stacktrace(text.c_str(), debug::StackTrace::captureOf(_mainThread));
    }
    void reportEnd(Clock::time_point begin) const {
        const auto time = std::chrono::duration_cast<milliseconds>(Clock::now() - begin);
        debug::logf("src/Core/MainThreadWatchdog", 1, debug::LogLevelWarning,
                    "main thread was blocked for %* ms")
            .add(std::to_string(time.count()));
    }
    bool isAnswered() {
        const Lock lock(_mutex);
        return _answered;
    }

    const milliseconds _limit;
    const pthread_t _mainThread;
    MainThreadCaller& _caller;
    thread::Mutex _mutex;
    thread::ConditionVariable _changed;
    bool _answered = false;
    bool _ending = false;
    thread::Thread _thread;
};

MainThreadWatchdog::MainThreadWatchdog(milliseconds limit)
    : _watch(std::make_unique<Watch>(limit)) {
}

MainThreadWatchdog::~MainThreadWatchdog() = default;

}  // namespace tav::ula
