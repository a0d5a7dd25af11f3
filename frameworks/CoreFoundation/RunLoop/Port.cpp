// SPDX-License-Identifier: MIT
#include "Port.h"

#include "DescriptorCalls.h"
#include "WakePort.h"

#include <algorithm>
#include <sys/epoll.h>
#include <sys/timerfd.h>

namespace cf {

namespace {

constexpr std::uint64_t wakeId = 0;
constexpr std::uint64_t timerId = 1;
constexpr int maxEvents = 16;

timespec timespecOf(std::int64_t ns) {
    return {ns / 1'000'000'000, ns % 1'000'000'000};
}

}  // namespace

Port::Port(const WakePort* wakePort)
    : _wakePort(wakePort), _epoll(checked(epoll_create1(EPOLL_CLOEXEC), "epoll_create1")) {
    if (_wakePort != nullptr)
        addOwn(_wakePort->descriptor(), wakeId);
}

Port::~Port() {
    closeDescriptor(_timer);
    closeDescriptor(_epoll);
}

// Edge-triggered: neither wake-ups nor timer expiries have to be read, which saves a call each.
void Port::addOwn(int descriptor, std::uint64_t id) noexcept {
    epoll_event event{};
    event.events = EPOLLIN | EPOLLET;
    event.data.u64 = id;
    epoll_ctl(_epoll, EPOLL_CTL_ADD, descriptor, &event);
}

bool Port::makeTimer() {
    if (_timer >= 0)
        return true;
    _timer = checked(timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC), "timerfd_create");
    if (_timer >= 0)
        addOwn(_timer, timerId);
    return _timer >= 0;
}

void Port::armTimer(std::int64_t deadlineNs) {
    if (deadlineNs >= _armedNs || !makeTimer())
        return;
    // Zero would disarm the timer; any time in the past fires at once.
    itimerspec setting{{0, 0}, timespecOf(std::max<std::int64_t>(deadlineNs, 1))};
    timerfd_settime(_timer, TFD_TIMER_ABSTIME, &setting, nullptr);
    _armedNs = deadlineNs;
}

bool Port::add(int descriptor, std::uint32_t events, std::uint64_t id) {
    epoll_event event{};
    event.events = events;
    event.data.u64 = id;
    return epoll_ctl(_epoll, EPOLL_CTL_ADD, descriptor, &event) == 0;
}

void Port::remove(int descriptor) {
    epoll_ctl(_epoll, EPOLL_CTL_DEL, descriptor, nullptr);
}

std::span<Port::Ready> Port::poll(std::span<Ready> room, bool& timerFired) {
    epoll_event events[maxEvents];
    int limit = static_cast<int>(std::min<std::size_t>(room.size(), maxEvents));
    int count = epoll_wait(_epoll, events, limit, 0);
    std::size_t ready = 0;
    for (int i = 0; i < count; ++i) {
        std::uint64_t id = events[i].data.u64;
        if (id == timerId)
            timerFired = true;
        else if (id >= firstId)
            room[ready++] = {id, events[i].events};
    }
    return room.first(ready);
}

void Port::renew() noexcept {
    replaceDescriptor(_epoll, epoll_create1(EPOLL_CLOEXEC));
    if (_wakePort != nullptr)
        addOwn(_wakePort->descriptor(), wakeId);
    _armedNs = noTimer;
    if (_timer < 0)
        return;
    replaceDescriptor(_timer, timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC));
    addOwn(_timer, timerId);
}

}  // namespace cf
