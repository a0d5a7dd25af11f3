// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace tav::tool {

/// Appends to standard output.
void print(std::string_view text);
/// To be called once everything is printed. Fails: throws `CommandError` when something, now or
/// earlier, could not be written, as on a full disk.
void finishOutput();
/// A line on standard error, and one with what to do about it; after all that was printed, also
/// where both go to one place. What could steer a terminal is escaped.
void printError(std::string_view message, std::string_view hint = {});

}  // namespace tav::tool
