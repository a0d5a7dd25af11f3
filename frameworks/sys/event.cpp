// SPDX-License-Identifier: MIT
#include "sys/event.h"

#include "sys/GuardedCall.h"
#include "sys/QueueTable.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>
#include <optional>

namespace {

using Clock = std::chrono::steady_clock;
using Deadline = std::optional<Clock::time_point>;

/// Longer waits are cut to this, which the clock can add.
constexpr time_t kLongestSeconds = 1'000'000'000;

Deadline deadlineAfter(const timespec* timeout) {
    if (timeout == nullptr)
        return std::nullopt;
    return Clock::now() + std::chrono::seconds(std::min(timeout->tv_sec, kLongestSeconds)) +
           std::chrono::nanoseconds(timeout->tv_nsec);
}

/// As poll(2) wants it. Rounded up: it would come back too early and be called again and again.
int millisecondsUntil(const Deadline& deadline) {
    if (!deadline)
        return -1;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(*deadline - Clock::now());
    return static_cast<int>(std::clamp<long>(left.count(), 0, INT_MAX));
}

/// False when it was closed, and perhaps another thing has its number.
bool isStillOpen(int descriptor, const kernelqueue::EventQueue& queue) {
    return kernelqueue::QueueTable::instance().find(descriptor).get() == &queue;
}

int failWith(int error) {
    errno = error;
    return -1;
}

int collectWithin(kernelqueue::EventQueue& queue, int descriptor, std::span<struct kevent> events,
                  const timespec* timeout) {
    const bool isWaiting = timeout == nullptr || timeout->tv_sec > 0 || timeout->tv_nsec > 0;
    const Deadline deadline = isWaiting ? deadlineAfter(timeout) : Clock::time_point::min();
    while (true) {
        const int count = queue.collect(events);
        const int left = count > 0 || !isWaiting ? 0 : millisecondsUntil(deadline);
        if (count > 0 || left == 0)
            return count;
        if (queue.wait(left) < 0)
            return -1;
        if (!isStillOpen(descriptor, queue))
            return failWith(EBADF);
    }
}

}  // namespace

int kqueue() {
    return kernelqueue::guardedCall([] { return kernelqueue::QueueTable::instance().add(); });
}

int kevent(int queue, const struct kevent* changes, int changeCount, struct kevent* events,
           int eventCount, const timespec* timeout) {
    if (changeCount < 0 || eventCount < 0)
        return failWith(EINVAL);
    if ((changes == nullptr && changeCount > 0) || (events == nullptr && eventCount > 0))
        return failWith(EFAULT);
    return kernelqueue::guardedCall([&] {
        const auto known = kernelqueue::QueueTable::instance().find(queue);
        if (!known)
            return failWith(EBADF);
        const std::span room(events, static_cast<std::size_t>(eventCount));
        if (changeCount > 0) {
            const int failed = known->apply({changes, static_cast<std::size_t>(changeCount)}, room);
            if (failed != 0)
                return failed;
        }
        return eventCount == 0 ? 0 : collectWithin(*known, queue, room, timeout);
    });
}
