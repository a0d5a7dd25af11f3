// SPDX-License-Identifier: MIT
#pragma once

#include "ula/MainThreadCaller.h"
#include "ula/foundation/Exception.h"
#include "ula/foundation/thread/ConditionVariable.h"
#include "ula/foundation/util/ScopedPtr.h"

namespace tav::ula {

/// One call that somebody waits for with a time limit; shared between the two.
/// Thread: any.
class TimedCall {
public:
    explicit TimedCall(const util::Function0<void>& function) : _function(function) {}

    /// In the main thread: runs the function unless nobody waits any more.
    void run();
    /// The queue has let go of the call: it will not run if it has not yet.
    void drop();

    /// In the waiting thread. Throws what the function threw.
    CallOutcome wait(std::chrono::milliseconds limit);

private:
    enum class State { Pending, Running, Done, Dropped };

    /// False when it is too late for that.
    bool change(State from, State to);
    State waitForEnd(std::chrono::steady_clock::time_point deadline);

    const util::Function0<void> _function;
    thread::Mutex _mutex;
    thread::ConditionVariable _changed;
    State _state = State::Pending;
    util::ScopedPtr<Exception> _exception;
};

}  // namespace tav::ula
