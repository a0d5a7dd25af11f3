// SPDX-License-Identifier: MIT
#include "WakePort.h"

#include "DescriptorCalls.h"

#include <cstdint>
#include <fcntl.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace cf {

WakePort::WakePort() : _descriptor(checked(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC), "eventfd")) {
}

WakePort::~WakePort() {
    closeDescriptor(_descriptor);
}

void WakePort::wake() noexcept {
    if (_pending.exchange(true, std::memory_order_acq_rel))
        return;
    // Cannot fail but for a full counter, after 2^64 wake-ups.
    std::uint64_t one = 1;
    [[maybe_unused]] ssize_t written = write(_descriptor, &one, sizeof one);
}

void WakePort::renew() noexcept {
    replaceDescriptor(_descriptor, eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC));
    // A wake-up that was on its way at the fork must not be lost.
    if (_pending.exchange(false, std::memory_order_acq_rel))
        wake();
}

}  // namespace cf
