// SPDX-License-Identifier: MIT
#pragma once

#include "Security/Keychain/Store.h"

#include <string>

namespace security {

// 32 hexadecimal digits by which an item is looked up where names would be seen on the way.
// Different names give different digests.
std::string itemDigest(const ItemKey& name);

}  // namespace security
