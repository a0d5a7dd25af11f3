// SPDX-License-Identifier: MIT
#include "tools/ula/CameraChoice.h"

#include "tools/ula/CommandError.h"
#include "tools/ula/Translation.h"

#include <CoreFoundation/CoreFoundation.h>
#include <ImageCapture/NetworkCameras.h>

namespace tav::tool {

using ula::ImportDevice;

namespace {

bool addNetworkCamera(const std::string& address) {
    CFStringRef text =
        CFStringCreateWithCString(kCFAllocatorDefault, address.c_str(), kCFStringEncodingUTF8);
    if (text == nullptr)
        return false;
    const bool isAdded = ULANetworkCameraAdd(text) != 0;
    CFRelease(text);
    return isAdded;
}

std::string namesOf(const std::vector<ImportDevice>& devices) {
    std::string names;
    for (const ImportDevice& device : devices)
        names += (names.empty() ? "" : ", ") + ("\"" + device.name + "\"");
    return names;
}

}  // namespace

std::vector<ImportDevice> connectedCameras(const std::vector<std::string>& addresses) {
    for (const std::string& address : addresses)
        if (!addNetworkCamera(address))
            throw CommandError{ExitUsage, translated("\"%1\" is no camera's address", address),
                               translated("write it like 192.168.1.20 or camera.local:15740")};
    return ula::ImportSession::devices();
}

ImportDevice chooseCamera(const std::vector<ImportDevice>& devices, const std::string& wanted) {
    std::vector<ImportDevice> chosen;
    for (const ImportDevice& device : devices)
        if (wanted.empty() || device.name == wanted || device.id == wanted)
            chosen.push_back(device);
    if (chosen.size() == 1)
        return chosen[0];
    if (devices.empty())
        throw CommandError{ExitDiffers, translated("no camera and no memory card is connected"),
                           translated("switch the camera on and choose its transfer mode; a card "
                                      "has to be mounted and have a folder DCIM")};
    if (chosen.empty())
        throw CommandError{ExitDiffers, translated("there is no device \"%1\"", wanted),
                           translated("connected are: %1", namesOf(devices))};
    throw CommandError{ExitUsage, translated("there are several devices: %1", namesOf(chosen)),
                       translated("choose one with --device and its number; 'ula cameras' shows "
                                  "them")};
}

}  // namespace tav::tool
