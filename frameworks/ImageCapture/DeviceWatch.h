// SPDX-License-Identifier: MIT
#pragma once

#include "CoreFoundation/Descriptor.h"

struct udev;
struct udev_monitor;

namespace imagecapture {

// Tells through a descriptor that devices may have come or gone: what is mounted has changed, or
// something was plugged in or pulled out.
// Thread: take() is for one at a time, repeat() for any. Not for a forked child.
class DeviceWatch {
public:
    DeviceWatch();
    ~DeviceWatch();
    DeviceWatch(const DeviceWatch&) = delete;
    DeviceWatch& operator=(const DeviceWatch&) = delete;

    // Polls readable from a change on until take(). Owner: this object. Fails: -1, errno is set.
    int descriptor() const { return _changes.get(); }
    // To be called before the devices are looked at.
    void take();
    // Makes the descriptor readable once more.
    void repeat();

private:
    // Without the system's device daemon nobody tells of USB.
    void watchUsb();

    cf::Descriptor _mounts;
    cf::Descriptor _wish;
    cf::Descriptor _changes;
    udev* _context = nullptr;
    udev_monitor* _usb = nullptr;
};

}  // namespace imagecapture
