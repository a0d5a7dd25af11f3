// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace systemprofiler {

/// The report on the data types ("SPHardwareDataType", "SPDisplaysDataType") as an XML property
/// list: an array with a dictionary for each type that is known and of which the machine has
/// something. `root` is the folder that stands for "/".
std::string hardwareReport(const std::vector<std::string>& dataTypes, const std::string& root = "");

}  // namespace systemprofiler
