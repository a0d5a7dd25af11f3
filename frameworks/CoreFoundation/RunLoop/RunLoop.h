// SPDX-License-Identifier: MIT
#pragma once

#include "HostLoop.h"
#include "ModeName.h"
#include "ModeTable.h"

#include <atomic>
#include <exception>
#include <memory>
#include <mutex>

namespace cf {

/// A thread's run loop. It owns the items and the descriptors to wait on; a host loop (the thread's
/// NSRunLoop) does the waiting and reports back, whoever runs it. Lives within its CF object.
class RunLoop {
public:
    explicit RunLoop(CFRunLoopRef object);
    ~RunLoop();
    RunLoop(const RunLoop&) = delete;
    RunLoop& operator=(const RunLoop&) = delete;

    CFRunLoopRef object() const { return _object; }
    void retain() { CFRetain(_object); }
    void release() { CFRelease(_object); }

    // From any thread.

    void wake() noexcept { _wakePort.wake(); }
    void stop();
    bool isWaiting() const { return _waiting.load(std::memory_order_relaxed); }
    /// The mode that the loop runs in, or null. Owner: the process.
    CFStringRef currentMode() const;
    /// Returns the sources that are served in that mode only from now on.
    std::vector<Retained<Source>> addCommonMode(CFStringRef mode);
    /// Fails: -1 when descriptors have run out.
    int pollDescriptor();

    /// For Membership; see ModeTable. A loop that has ended takes nothing in.
    template <class T>
    ModeTable::Modes insert(T& item, CFStringRef mode);
    template <class T>
    ModeTable::Modes erase(T& item, CFStringRef mode);
    template <class T>
    ModeTable::Modes eraseEverywhere(T& item);
    template <class T>
    bool contains(const T& item, CFStringRef mode) const;
    template <class T>
    bool containsAnywhere(const T& item) const;
    /// Has new ports watched; to be called with no lock held after one of those.
    void itemsChanged();
    /// Moves a timer that is in this loop.
    void setFireDate(Timer& timer, CFAbsoluteTime fireDate);

    // On the loop's own thread.

    void setHost(std::unique_ptr<HostLoop> host);
    CFRunLoopRunResult run(CFStringRef mode, double seconds, bool returnAfterSource);
    /// One pass over what is ready, without waiting. Returns whether a source was handled. Throws
    /// what a call-back throws; what it left undone is served by the next pass.
    bool serve(CFStringRef mode, bool oneSourceOnly);
    /// For the host: its wait for one of the ports ended, in that mode.
    void hostIsReady(CFStringRef mode);
    /// For the host: it is about to wait. Returns false when there is work to report first.
    bool hostMayWait(CFStringRef mode);
    /// At the end of the thread: everything leaves the loop.
    void close();

    // In a fork, which must not leave a lock of this loop behind in the child.

    std::mutex& lock() const { return _mutex; }
    /// In the child, for the loop of the thread that lives on.
    void renew() noexcept;
    /// In the child, for all others: they must not reach the parent any more.
    void disconnect() noexcept { _wakePort.renew(); }

private:
    /// One activation of run().
    struct Run {
        CFStringRef mode;
        std::int64_t limitNs;
        bool oneSourceOnly;
        /// How many passes were in progress when it began.
        unsigned passes;
        bool handled = false;
        /// Guarded by _mutex, as any thread may stop the loop.
        bool stopped = false;
        std::exception_ptr exception = nullptr;
    };
    class RunScope;
    class PassScope;
    class FireScope;

    ModeTable::Served served(CFStringRef mode);
    bool step(Run& run, bool mayWait);
    Run* runBelowHost() const;
    void serveFor(Run& run, CFStringRef mode);
    bool isStopped(const Run& run) const;
    bool isOver(const Run& run) const;
    bool isFinished(CFStringRef mode);
    bool hasSignalledSource(CFStringRef mode) const;

    std::span<Port::Ready> takeReady(CFStringRef mode, std::span<Port::Ready> room);
    bool performSources(CFStringRef mode, bool oneSourceOnly);
    void fireTimers(CFStringRef mode);
    void fire(Timer& timer, CFStringRef mode, std::int64_t nowNs);
    bool callDescriptors(CFStringRef mode, std::span<const Port::Ready> ready);
    void armPorts();
    void watchDefaultPorts();

    CFRunLoopRef _object;
    WakePort _wakePort;
    mutable std::mutex _mutex;
    /// These four are guarded by _mutex; only the own thread changes _runs.
    ModeTable _modes;
    std::vector<Run*> _runs;
    int _pollDescriptor = -1;
    bool _closed = false;

    std::atomic<bool> _waiting{false};
    /// These are the own thread's. How many passes are in progress, each in a call-back of the
    /// last.
    unsigned _passes = 0;
    /// Whether hostMayWait() has made the host report without a descriptor. There may be several
    /// such reports for one answer, as the host asks for each of its watches.
    bool _hostTriggered = false;
    std::unique_ptr<HostLoop> _host;
};

template <class T>
ModeTable::Modes RunLoop::insert(T& item, CFStringRef mode) {
    std::lock_guard guard(_mutex);
    if (_closed)
        return {};
    ModeTable::Modes entered = _modes.insert(item, mode);
    armPorts();
    return entered;
}

template <class T>
ModeTable::Modes RunLoop::erase(T& item, CFStringRef mode) {
    std::lock_guard guard(_mutex);
    ModeTable::Modes left = _modes.erase(item, mode);
    armPorts();
    return left;
}

template <class T>
ModeTable::Modes RunLoop::eraseEverywhere(T& item) {
    std::lock_guard guard(_mutex);
    return _modes.eraseEverywhere(item);
}

template <class T>
bool RunLoop::contains(const T& item, CFStringRef mode) const {
    std::lock_guard guard(_mutex);
    return _modes.contains(item, mode);
}

template <class T>
bool RunLoop::containsAnywhere(const T& item) const {
    std::lock_guard guard(_mutex);
    return _modes.containsAnywhere(item);
}

}  // namespace cf
