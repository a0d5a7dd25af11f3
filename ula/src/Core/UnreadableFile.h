// SPDX-License-Identifier: MIT
#pragma once

#include "ula/FastString.h"

#include <string>

namespace tav::ula {

/// Copies a file that could not be understood to "PATH.corrupt-" and the UTC time, durably, unless
/// a copy with the same bytes is there already. One that is too large to be read is not copied: it
/// gets that name as a second one. What is no file is no loss.
/// `note` is what there is to say of it behind the reason for which it could not be read; empty
/// without a file.
/// Fails: false.
bool keepUnreadableFile(const FastString& path, std::string& note);

}  // namespace tav::ula
