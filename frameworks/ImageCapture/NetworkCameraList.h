// SPDX-License-Identifier: MIT
#pragma once

#include "ImageCapture/Camera.h"

#include <mutex>
#include <vector>

namespace imagecapture {

// "192.168.1.20:15740" for "192.168.1.20". Empty for what is no address: letters, digits, ".", "-"
// and "_" make a host.
std::string networkAddress(const std::string& text);

// The cameras on the network that programs have named. Thread: any.
class NetworkCameraList : public DeviceSource {
public:
    // Whether there is a change.
    bool add(const std::string& address);
    bool remove(const std::string& address);
    std::vector<FoundDevice> look() override;

private:
    std::mutex _mutex;
    std::vector<std::string> _addresses;
};

}  // namespace imagecapture
