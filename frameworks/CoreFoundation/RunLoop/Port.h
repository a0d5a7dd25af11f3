// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <span>

namespace cf {

class WakePort;

/// What a run loop waits on for one set of items: an epoll descriptor over the loop's wake-ups, a
/// timer and the descriptors of the items.
///
/// Thread: guarded by the run loop's lock, but for poll() and descriptor().
class Port {
public:
    struct Ready {
        std::uint64_t id;
        std::uint32_t events;
    };

    /// A null wake port leaves wake-ups to another port that is always waited on as well.
    explicit Port(const WakePort* wakePort);
    ~Port();
    Port(const Port&) = delete;
    Port& operator=(const Port&) = delete;

    /// Fails: -1 when descriptors have run out (logged).
    int descriptor() const { return _epoll; }

    /// Makes the port ready at that time at the latest. A time that was set earlier and lies before
    /// stays, as taking it back costs more than the one spare wake-up.
    void armTimer(std::int64_t deadlineNs);

    /// Ids are from firstId on. Fails: false, as epoll_ctl(2) does.
    bool add(int descriptor, std::uint32_t events, std::uint64_t id);
    void remove(int descriptor);
    static constexpr std::uint64_t firstId = 2;

    /// Takes what is ready without waiting. Returns the descriptors that are, in `room`; more of
    /// them than fit come with the next call.
    std::span<Ready> poll(std::span<Ready> room, bool& timerFired);

    /// To be called under the lock after poll() said that the timer fired.
    void timerFired() { _armedNs = noTimer; }

    /// In a forked child: leaves the parent's epoll, timer and watched descriptors alone.
    void renew() noexcept;

private:
    static constexpr std::int64_t noTimer = INT64_MAX;

    void addOwn(int descriptor, std::uint64_t id) noexcept;
    bool makeTimer();

    const WakePort* _wakePort;
    int _epoll;
    int _timer = -1;
    std::int64_t _armedNs = noTimer;
};

}  // namespace cf
