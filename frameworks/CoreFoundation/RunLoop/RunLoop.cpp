// SPDX-License-Identifier: MIT
// The loop as others see it, and its runs. What one pass does is in RunLoopPass.cpp.
#include "RunLoop.h"

#include "Clock.h"
#include "DescriptorCalls.h"
#include "Membership.h"
#include "ThreadRunLoop.h"

#include <sys/epoll.h>

namespace cf {

namespace {

// Some callers say "for ever" with a large number.
constexpr double longestRunSeconds = 1e9;

std::int64_t limitAfter(double seconds) {
    return seconds >= longestRunSeconds ? neverNs : monotonicNs() + nanoseconds(seconds);
}

}  // namespace

/// Enters a run into the loop's stack of runs, with its limit.
class RunLoop::RunScope {
public:
    RunScope(RunLoop& loop, Run& run) : _loop(loop), _run(run) {
        std::lock_guard guard(_loop._mutex);
        _loop._runs.push_back(&run);
        if (run.limitNs == neverNs)
            return;
        _items = _loop._modes.served(run.mode)[0];
        _items->addLimit(run.limitNs);
        _items->arm(monotonicNs());
    }
    ~RunScope() {
        std::lock_guard guard(_loop._mutex);
        _loop._runs.pop_back();
        if (_items != nullptr)
            _items->removeLimit(_run.limitNs);
    }
    RunScope(const RunScope&) = delete;
    RunScope& operator=(const RunScope&) = delete;

private:
    RunLoop& _loop;
    Run& _run;
    ModeItems* _items = nullptr;
};

RunLoop::RunLoop(CFRunLoopRef object) : _object(object), _modes(_wakePort) {
    ThreadRunLoop::enter(*this);
}

RunLoop::~RunLoop() {
    ThreadRunLoop::leave(*this);
    closeDescriptor(_pollDescriptor);
}

void RunLoop::stop() {
    {
        std::lock_guard guard(_mutex);
        if (!_runs.empty())
            _runs.back()->stopped = true;
    }
    wake();
}

CFStringRef RunLoop::currentMode() const {
    std::lock_guard guard(_mutex);
    return _runs.empty() ? nullptr : _runs.back()->mode;
}

std::vector<Retained<Source>> RunLoop::addCommonMode(CFStringRef mode) {
    std::lock_guard guard(_mutex);
    return _modes.addCommon(mode);
}

int RunLoop::pollDescriptor() {
    std::lock_guard guard(_mutex);
    if (_pollDescriptor >= 0)
        return _pollDescriptor;
    _pollDescriptor = checked(epoll_create1(EPOLL_CLOEXEC), "epoll_create1");
    watchDefaultPorts();
    return _pollDescriptor;
}

void RunLoop::watchDefaultPorts() {
    for (ModeItems* items : {_modes.served(defaultMode())[0], &_modes.single(defaultMode())}) {
        epoll_event event{};
        event.events = EPOLLIN;
        epoll_ctl(_pollDescriptor, EPOLL_CTL_ADD, items->port().descriptor(), &event);
    }
}

void RunLoop::itemsChanged() {
    std::unique_lock guard(_mutex);
    if (!_modes.hasWatches())
        return;
    if (ThreadRunLoop::ofThisThread() != this || !_host) {
        guard.unlock();
        wake();
        return;
    }
    auto watches = _modes.takeWatches();
    guard.unlock();
    for (const auto& watch : watches)
        _host->watch(watch.descriptor, watch.mode);
}

void RunLoop::setFireDate(Timer& timer, CFAbsoluteTime fireDate) {
    std::lock_guard guard(_mutex);
    timer.setFireDate(fireDate);
    if (timer.isFiring())
        return;
    _modes.forEach([&](ModeItems& items) { items.schedule(timer); });
    armPorts();
}

void RunLoop::setHost(std::unique_ptr<HostLoop> host) {
    {
        std::lock_guard guard(_mutex);
        _host = std::move(host);
    }
    itemsChanged();
}

ModeTable::Served RunLoop::served(CFStringRef mode) {
    std::lock_guard guard(_mutex);
    return _modes.served(mode);
}

CFRunLoopRunResult RunLoop::run(CFStringRef mode, double seconds, bool returnAfterSource) {
    // Without a host the thread is ending.
    if (mode == commonModes() || !_host)
        return kCFRunLoopRunFinished;
    served(mode);
    itemsChanged();
    if (isFinished(mode))
        return kCFRunLoopRunFinished;
    Run run{mode, limitAfter(seconds), returnAfterSource, _passes};
    RunScope scope(*this, run);
    do {
        bool served = step(run, seconds > 0);
        if (run.exception)
            std::rethrow_exception(std::exchange(run.exception, nullptr));
        if (isStopped(run))
            return kCFRunLoopRunStopped;
        if (returnAfterSource && run.handled)
            return kCFRunLoopRunHandledSource;
        if (monotonicNs() >= run.limitNs)
            return kCFRunLoopRunTimedOut;
        if (!served)
            break;
    } while (!isFinished(mode));
    return kCFRunLoopRunFinished;
}

bool RunLoop::step(Run& run, bool mayWait) {
    // Sources may be signalled without a wake-up, and then no descriptor tells of them.
    bool ready = hasSignalledSource(run.mode);
    if (ready)
        _host->report(run.mode);
    if (isOver(run))
        return true;
    bool passed = _host->pass(run.mode, mayWait && !ready);
    _waiting.store(false, std::memory_order_relaxed);
    return passed;
}

RunLoop::Run* RunLoop::runBelowHost() const {
    if (_runs.empty() || _runs.back()->passes != _passes)
        return nullptr;
    return _runs.back();
}

void RunLoop::hostIsReady(CFStringRef mode) {
    bool triggered = _hostTriggered;
    Run* run = runBelowHost();
    // Where somebody else runs the host, exceptions go through it to them.
    if (run == nullptr)
        serve(mode, false);
    else
        serveFor(*run, mode);
    // After a report without a descriptor the host goes on to wait, for what it knew of before: not
    // for an event, a timer or an end that a call-back has brought about.
    if (triggered)
        wake();
    _hostTriggered = triggered;
}

// Exceptions are carried around the host, which would not be left in order by them.
void RunLoop::serveFor(Run& run, CFStringRef mode) {
    try {
        if (serve(mode, run.oneSourceOnly))
            run.handled = true;
    } catch (...) {
        run.exception = std::current_exception();
        // One that is not of C++ cannot be carried.
        if (!run.exception)
            throw;
    }
}

bool RunLoop::hostMayWait(CFStringRef mode) {
    bool ready = hasSignalledSource(mode);
    _hostTriggered = ready;
    _waiting.store(!ready, std::memory_order_relaxed);
    return !ready;
}

bool RunLoop::isStopped(const Run& run) const {
    std::lock_guard guard(_mutex);
    return run.stopped;
}

bool RunLoop::isOver(const Run& run) const {
    return run.exception || (run.oneSourceOnly && run.handled) || isStopped(run);
}

bool RunLoop::isFinished(CFStringRef mode) {
    std::vector<int> own;
    {
        std::lock_guard guard(_mutex);
        if (!_modes.isEmpty(mode))
            return false;
        for (ModeItems* items : _modes.served(mode)) {
            if (items != nullptr)
                own.push_back(items->port().descriptor());
        }
    }
    return !_host->hasInputBeside(own, mode);
}

bool RunLoop::hasSignalledSource(CFStringRef mode) const {
    std::lock_guard guard(_mutex);
    for (const ModeItems* items : _modes.present(mode)) {
        if (items != nullptr && items->hasSignalledSource())
            return true;
    }
    return false;
}

void RunLoop::close() {
    std::vector<Retained<Source>> sources;
    std::vector<Retained<Timer>> timers;
    std::vector<Retained<DescriptorItem>> descriptors;
    {
        std::lock_guard guard(_mutex);
        _closed = true;
        _modes.forEach([&](ModeItems& items) {
            items.appendSources(sources);
            items.appendTimers(timers);
            items.appendDescriptors(descriptors);
        });
    }
    for (auto& source : sources)
        Membership::removeEverywhere(*this, *source);
    for (auto& timer : timers)
        Membership::removeEverywhere(*this, *timer);
    for (auto& descriptor : descriptors)
        Membership::removeEverywhere(*this, *descriptor);
    _host.reset();
}

void RunLoop::renew() noexcept {
    _wakePort.renew();
    _modes.forEach([&](ModeItems& items) { items.port().renew(); });
    armPorts();
    if (_pollDescriptor < 0)
        return;
    replaceDescriptor(_pollDescriptor, epoll_create1(EPOLL_CLOEXEC));
    watchDefaultPorts();
}

}  // namespace cf
