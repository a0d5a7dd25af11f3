// SPDX-License-Identifier: MIT
// Cameras on the network (PTP/IP). Nothing announces them here: a program names them.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

CF_EXTERN_C_BEGIN

/// Adds a camera by its address, "192.168.1.20" or "camera.local:15740". It is a device from then
/// on, whether it answers or not. Adding it twice does nothing.
/// Thread: any. Fails: false for what is no address.
CF_EXPORT Boolean ULANetworkCameraAdd(CFStringRef address);
/// Fails: false when it was not there.
CF_EXPORT Boolean ULANetworkCameraRemove(CFStringRef address);

CF_EXTERN_C_END
