// SPDX-License-Identifier: MIT
// For the other frameworks of this library: a descriptor as a run-loop source.
#pragma once

#include <CoreFoundation/CFRunLoop.h>
#include <cstdint>
#include <functional>

namespace cf {

class DescriptorItem;

/// Has a run loop watch a descriptor and call back while it is ready. Level-triggered: the callback
/// must take what made it ready, or else it is called again at once.
///
/// The descriptor stays the caller's, must outlive this object and may be watched once per mode. In
/// a forked child it is not watched any more, as what it delivers is for the parent.
class __attribute__((visibility("default"))) RunLoopDescriptor {
public:
    /// Gets what epoll_wait(2) reports. Thread: the run loop's, with no lock held.
    using Callback = std::function<void(std::uint32_t events)>;

    /// Events as for epoll_ctl(2), EPOLLIN for instance.
    RunLoopDescriptor(int descriptor, std::uint32_t events, Callback callback);
    /// Invalidates. A callback in progress on another thread goes on.
    ~RunLoopDescriptor();
    RunLoopDescriptor(const RunLoopDescriptor&) = delete;
    RunLoopDescriptor& operator=(const RunLoopDescriptor&) = delete;

    /// Thread: any, for all three.
    void schedule(CFRunLoopRef runLoop, CFStringRef mode);
    void unschedule(CFRunLoopRef runLoop, CFStringRef mode);
    /// No callback begins after this on the calling thread's run loop.
    void invalidate();

private:
    DescriptorItem* _item;
};

}  // namespace cf
