// SPDX-License-Identifier: MIT
#include "ImageCapture/UsbCameras.h"

#include "ImageCapture/Gphoto.h"

#include <libudev.h>
#include <string_view>

namespace imagecapture {

namespace {

struct Unreference {
    void operator()(udev* context) const { udev_unref(context); }
    void operator()(udev_enumerate* search) const { udev_enumerate_unref(search); }
    void operator()(udev_device* device) const { udev_device_unref(device); }
};
template <class Object>
using Owner = std::unique_ptr<Object, Unreference>;

// Still image capture, picture transfer protocol. Where the device rules have not been asked there
// is only this.
bool speaksPtp(udev_device* interface) {
    const char* number = udev_device_get_sysattr_value(interface, "bInterfaceClass");
    return number != nullptr && std::string_view(number) == "06";
}

bool isNamedCamera(udev_device* device) {
    return udev_device_get_property_value(device, "ID_GPHOTO2") != nullptr;
}

bool hasAny(udev* context, const char* type, bool (*isOne)(udev_device*)) {
    Owner<udev_enumerate> search(udev_enumerate_new(context));
    udev_enumerate_add_match_subsystem(search.get(), "usb");
    udev_enumerate_add_match_property(search.get(), "DEVTYPE", type);
    udev_enumerate_scan_devices(search.get());
    for (udev_list_entry* entry = udev_enumerate_get_list_entry(search.get()); entry != nullptr;
         entry = udev_list_entry_get_next(entry)) {
        Owner<udev_device> device(
            udev_device_new_from_syspath(context, udev_list_entry_get_name(entry)));
        if (device && isOne(device.get()))
            return true;
    }
    return false;
}

// Reading the drivers takes longer than a program without a camera should wait.
bool mayHaveCameras() {
    Owner<udev> context(udev_new());
    return context && (hasAny(context.get(), "usb_device", isNamedCamera) ||
                       hasAny(context.get(), "usb_interface", speaksPtp));
}

}  // namespace

std::vector<FoundDevice> UsbCameras::look() {
    std::vector<FoundDevice> found;
    if (!mayHaveCameras())
        return found;
    for (const DetectedCamera& camera : detectUsbCameras())
        found.push_back(
            {camera.port + " " + camera.model, camera.model, Kind::CameraDevice,
             [camera] { return std::make_unique<GphotoCamera>(camera.model, camera.port); }});
    return found;
}

}  // namespace imagecapture
