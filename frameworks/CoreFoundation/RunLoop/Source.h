// SPDX-License-Identifier: MIT
#pragma once

#include "Item.h"

namespace cf {

/// A version-0 source: any thread marks it, its loop calls it. Lives within its CF object.
class Source final : public Item {
public:
    /// Retains the context's info until the source dies, as a call may be in progress on another
    /// thread when the source is invalidated.
    Source(CFRunLoopSourceRef object, CFIndex order, const CFRunLoopSourceContext& context);
    ~Source() override;

    void retain() override { CFRetain(_object); }
    void release() override { CFRelease(_object); }

    CFIndex order() const { return _order; }
    const CFRunLoopSourceContext& context() const { return _context; }

    void signal() noexcept { _signalled.store(true, std::memory_order_release); }
    bool isSignalled() const noexcept { return _signalled.load(std::memory_order_acquire); }
    /// Whether there was a signal; there is none after this.
    bool takeSignal() noexcept { return _signalled.exchange(false, std::memory_order_acq_rel); }
    void perform();

    void didEnter(CFRunLoopRef loop, CFStringRef mode) override;
    void didLeave(CFRunLoopRef loop, CFStringRef mode) override;

private:
    CFRunLoopSourceRef _object;
    CFIndex _order;
    CFRunLoopSourceContext _context;
    std::atomic<bool> _signalled{false};
};

}  // namespace cf
