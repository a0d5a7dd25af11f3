// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>

namespace cf {

/// The descriptor through which any thread wakes a run loop. Wake-ups coalesce: between two looks
/// of the loop at its sources, only the first one costs a system call.
///
/// The descriptor is watched edge-triggered and so is never read: each write is an edge of its own.
class WakePort {
public:
    WakePort();
    ~WakePort();
    WakePort(const WakePort&) = delete;
    WakePort& operator=(const WakePort&) = delete;

    /// Fails: -1 when descriptors have run out (logged).
    int descriptor() const { return _descriptor; }

    /// Thread: any.
    void wake() noexcept;

    /// To be called after the edge was taken and before the sources are looked at. Both this and
    /// wake() are read-modify-write operations on one variable, so either the loop sees what the
    /// waking thread did before its call, or that thread sees that it has to write.
    void served() noexcept { _pending.exchange(false, std::memory_order_acq_rel); }

    /// In a forked child: replaces what the descriptor leads to, as writing to it would wake the
    /// parent. The number stays.
    void renew() noexcept;

private:
    int _descriptor;
    std::atomic<bool> _pending{false};
};

}  // namespace cf
