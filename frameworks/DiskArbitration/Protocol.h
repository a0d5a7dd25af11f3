// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace diskarbitration {

// How the device at this place of sysfs is attached, in the platform's words: "USB", "SATA",
// "PCI-Express", "Secure Digital", "Virtual Interface". Empty when that cannot be told. `sysfs` is
// the root of which `path` is a part.
std::string protocolOf(const std::string& path, const std::string& sysfs);

// Whether devices attached so can be taken away by the user while the system runs.
bool isHotPlugged(const std::string& protocol);

}  // namespace diskarbitration
