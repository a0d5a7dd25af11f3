// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace security {

// A line in the platform's log. Never given a secret. Thread: any.
void note(const std::string& line);

}  // namespace security
