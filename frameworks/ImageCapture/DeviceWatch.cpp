// SPDX-License-Identifier: MIT
#include "ImageCapture/DeviceWatch.h"

#include <cstdint>
#include <fcntl.h>
#include <libudev.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>

namespace imagecapture {

namespace {

bool add(const cf::Descriptor& set, int member, uint32_t events) {
    epoll_event event{};
    event.events = events;
    return epoll_ctl(set.get(), EPOLL_CTL_ADD, member, &event) == 0;
}

}  // namespace

// The table of mounts is always readable: its edges are what tells, and they stay in the set until
// somebody takes them from it.
DeviceWatch::DeviceWatch()
    : _mounts(open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC)),
      _wish(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)),
      _changes(epoll_create1(EPOLL_CLOEXEC)) {
    if (!add(_changes, _wish.get(), EPOLLIN)) {
        _changes = cf::Descriptor();
        return;
    }
    add(_changes, _mounts.get(), EPOLLIN | EPOLLET);
    watchUsb();
}

DeviceWatch::~DeviceWatch() {
    udev_monitor_unref(_usb);
    udev_unref(_context);
}

void DeviceWatch::watchUsb() {
    _context = udev_new();
    if (_context == nullptr)
        return;
    _usb = udev_monitor_new_from_netlink(_context, "udev");
    if (_usb == nullptr)
        return;
    udev_monitor_filter_add_match_subsystem_devtype(_usb, "usb", "usb_device");
    if (udev_monitor_enable_receiving(_usb) >= 0)
        add(_changes, udev_monitor_get_fd(_usb), EPOLLIN);
}

void DeviceWatch::take() {
    epoll_event events[3];
    epoll_wait(_changes.get(), events, 3, 0);
    uint64_t wishes = 0;
    // Nothing to read is as good.
    [[maybe_unused]] ssize_t count = read(_wish.get(), &wishes, sizeof wishes);
    while (udev_device* device = _usb != nullptr ? udev_monitor_receive_device(_usb) : nullptr)
        udev_device_unref(device);
}

void DeviceWatch::repeat() {
    uint64_t one = 1;
    [[maybe_unused]] ssize_t count = write(_wish.get(), &one, sizeof one);
}

}  // namespace imagecapture
