// SPDX-License-Identifier: MIT
#include "DiskArbitration/Sources.h"

#include <charconv>
#include <libudev.h>
#include <memory>
#include <sys/sysmacros.h>

namespace diskarbitration {

namespace {

struct Unref {
    void operator()(udev* context) const { udev_unref(context); }
    void operator()(udev_device* device) const { udev_device_unref(device); }
};

// "8:17". Fails: 0.
dev_t deviceNumber(const std::string& text) {
    unsigned major = 0, minor = 0;
    const char* end = text.data() + text.size();
    auto colon = std::from_chars(text.data(), end, major);
    if (colon.ec != std::errc() || colon.ptr == end || *colon.ptr != ':')
        return 0;
    auto last = std::from_chars(colon.ptr + 1, end, minor);
    return last.ec == std::errc() && last.ptr == end ? makedev(major, minor) : 0;
}

}  // namespace

Properties udevProperties(const std::string& number) {
    Properties properties;
    std::unique_ptr<udev, Unref> context(udev_new());
    std::unique_ptr<udev_device, Unref> device(
        context ? udev_device_new_from_devnum(context.get(), 'b', deviceNumber(number)) : nullptr);
    // Without its daemon udev knows only what sysfs says.
    if (!device || udev_device_get_is_initialized(device.get()) <= 0)
        return properties;
    udev_list_entry* entry = udev_device_get_properties_list_entry(device.get());
    for (; entry != nullptr; entry = udev_list_entry_get_next(entry)) {
        const char* value = udev_list_entry_get_value(entry);
        properties[udev_list_entry_get_name(entry)] = value != nullptr ? value : "";
    }
    return properties;
}

}  // namespace diskarbitration
