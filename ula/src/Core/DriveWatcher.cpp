// SPDX-License-Identifier: MIT
#include "ula/DriveWatcher.h"

namespace tav::ula {

DriveWatcher::DriveWatcher() = default;

DriveWatcher::~DriveWatcher() = default;

}  // namespace tav::ula
