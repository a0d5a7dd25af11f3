// SPDX-License-Identifier: MIT
#pragma once

#include <CoreFoundation/CFRunLoop.h>
#include <span>

namespace cf {

/// The loop that does the waiting for a run loop.
///
/// Thread: the run loop's.
class HostLoop {
public:
    virtual ~HostLoop() = default;

    /// Reports to the run loop's hostIsReady() when the descriptor is readable in that mode.
    virtual void watch(int descriptor, CFStringRef mode) = 0;

    /// One pass in the mode; with mayWait it waits until something has been handled. Returns false,
    /// at once, when there is nothing to wait for.
    virtual bool pass(CFStringRef mode, bool mayWait) = 0;

    /// Calls the run loop's hostIsReady() right now, in the surroundings of a pass.
    virtual void report(CFStringRef mode) = 0;

    /// Whether it has input of others than these descriptors in that mode.
    virtual bool hasInputBeside(std::span<const int> descriptors, CFStringRef mode) = 0;
};

}  // namespace cf
