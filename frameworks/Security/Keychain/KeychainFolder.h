// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace security {

// Where the keychain's files lie: "ula/keychain" in $XDG_DATA_HOME or what stands for it. It need
// not exist.
std::string keychainFolder();

}  // namespace security
