// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace tav::tool {

/// Appends to standard output.
void print(std::string_view text);
/// To be called once everything is printed. Fails: throws `CommandError` when something, now or
/// earlier, could not be written, as on a full disk.
void finishOutput();

}  // namespace tav::tool
