// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace systemprofiler {

/// The name of an ARM core by the codes that the kernel gives, "0x41" and "0xd08". Fails: the
/// maker's name with the code, or empty for an unknown maker.
std::string armCoreName(const std::string& implementer, const std::string& part);

}  // namespace systemprofiler
