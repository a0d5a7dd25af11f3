// SPDX-License-Identifier: MIT
#pragma once

#include "ImageCapture/Camera.h"

namespace imagecapture {

// The cameras on USB.
class UsbCameras : public DeviceSource {
public:
    std::vector<FoundDevice> look() override;
};

}  // namespace imagecapture
