// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace coreservices {

// What udisks calls the object of a block device, by the kernel's name of it: "sda1", "dm-0".
__attribute__((visibility("default"))) std::string uDisksObject(const std::string& name);

}  // namespace coreservices
