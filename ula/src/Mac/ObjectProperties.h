// SPDX-License-Identifier: MIT
#pragma once

#include "ula/src/Mac/CFOwner.h"

#include <ImageCapture/ImageCapture.h>

namespace tav::ula {

/// What image capture tells of a device, a folder or a file.
using ObjectProperties = CFOwner<CFDictionaryRef>;

/// Fails: leaves the owner empty.
inline ICAError copyProperties(ICAObject object, ObjectProperties& properties) {
    ICACopyObjectPropertyDictionaryPB block = {};
    block.object = object;
    block.theDict = properties.receive();
    return ICACopyObjectPropertyDictionary(&block, nullptr);
}

}  // namespace tav::ula
