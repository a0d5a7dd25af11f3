// SPDX-License-Identifier: MIT
#pragma once

#include "ula/FastString.h"

#include <string>

namespace tav::ula {

/// Copies a file that could not be understood to "PATH.corrupt-" and the UTC time, durably, unless
/// a copy with the same bytes is there already.
/// Fails: false, the reason in `result`; otherwise `result` is the copy's path.
bool keepUnreadableFile(const FastString& path, std::string& result);

}  // namespace tav::ula
