// SPDX-License-Identifier: MIT
#include "ula/src/Core/TimedCall.h"

#include "ula/src/Core/ExceptionCopy.h"
#include "ula/src/Core/TimeLimit.h"

#include <memory>

namespace tav::ula {

namespace {

/// Stands in the queue for a call and tells it when the queue lets go.
class QueuedCall {
public:
    explicit QueuedCall(const util::SharedPtr<TimedCall>& call) : _call(call) {}
    QueuedCall(const QueuedCall&) = delete;
    QueuedCall& operator=(const QueuedCall&) = delete;
    ~QueuedCall() { _call->drop(); }
    void run() const { _call->run(); }

private:
    const util::SharedPtr<TimedCall> _call;
};

}  // namespace

CallOutcome MainThreadCaller::callSyncWithin(std::chrono::milliseconds limit,
                                             const util::Function0<void>& function) {
    if (isMainThread()) {
        callSync(function);
        return CallOutcome::Done;
    }
    const util::SharedPtr<TimedCall> call(new TimedCall(function));
    const auto handle = callAsync([queued = std::make_shared<QueuedCall>(call)] { queued->run(); });
    const CallOutcome outcome = call->wait(limit);
    if (outcome == CallOutcome::Cancelled)
        handle->cancel();
    return outcome;
}

bool TimedCall::change(State from, State to) {
    {
        const thread::ScopedLock lock(_mutex);
        if (_state != from)
            return false;
        _state = to;
    }
    _changed.notify_all();
    return true;
}

void TimedCall::run() {
    if (!change(State::Pending, State::Running))
        return;
    try {
        if (_function)
            _function();
    } catch (...) {
        _exception.reset(copyOfCurrentException());
    }
    change(State::Running, State::Done);
}

void TimedCall::drop() {
    change(State::Pending, State::Dropped);
}

TimedCall::State TimedCall::waitForEnd(std::chrono::steady_clock::time_point deadline) {
    thread::ScopedLock lock(_mutex);
    while (_state == State::Pending || _state == State::Running)
        if (!_changed.waitUntil(lock, deadline))
            break;
    if (_state == State::Pending)
        _state = State::Dropped;
    return _state;
}

CallOutcome TimedCall::wait(std::chrono::milliseconds limit) {
    const auto deadline = std::chrono::steady_clock::now() + boundedLimit(limit);
    switch (waitForEnd(deadline)) {
    case State::Done:
        raise(_exception);
        return CallOutcome::Done;
    case State::Running:
        return CallOutcome::StillRunning;
    default:
        return CallOutcome::Cancelled;
    }
}

}  // namespace tav::ula
