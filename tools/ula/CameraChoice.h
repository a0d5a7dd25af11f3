// SPDX-License-Identifier: MIT
#pragma once

#include "ula/ImportSession.h"

#include <string>
#include <vector>

namespace tav::tool {

/// The devices, with the cameras at these addresses among them. Fails: throws `CommandError`.
std::vector<ula::ImportDevice> connectedCameras(const std::vector<std::string>& addresses);

/// The device of this name or number; without one the only device there is.
/// Fails: throws `CommandError` when there is none, or when it could be several.
ula::ImportDevice chooseCamera(const std::vector<ula::ImportDevice>& devices,
                               const std::string& wanted);

}  // namespace tav::tool
