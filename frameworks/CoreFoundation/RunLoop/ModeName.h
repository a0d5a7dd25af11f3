// SPDX-License-Identifier: MIT
#pragma once

#include <CoreFoundation/CFRunLoop.h>
#include <mutex>

namespace cf {

/// The one object that stands for every mode name of that text, so that names of modes compare by
/// pointer. Owner: the process. Thread: any.
CFStringRef modeName(CFStringRef name);

/// What guards the names. Nothing else is locked under it.
std::mutex& modeNamesLock();

/// Those of the default mode and of all common modes together.
CFStringRef defaultMode();
CFStringRef commonModes();

}  // namespace cf
