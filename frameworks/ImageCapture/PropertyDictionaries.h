// SPDX-License-Identifier: MIT
// What property dictionaries say; see ICAApplication.h.
#pragma once

#include "ImageCapture/Devices.h"

#include <CoreFoundation/CFDictionary.h>

namespace imagecapture {

// Owner: the caller.
CFDictionaryRef copyListProperties(const std::vector<DeviceFacts>& devices);
CFDictionaryRef copyDeviceProperties(const DeviceFacts& device,
                                     const std::vector<ObjectFacts>& files);
CFDictionaryRef copyObjectProperties(const ObjectFacts& object);

}  // namespace imagecapture
