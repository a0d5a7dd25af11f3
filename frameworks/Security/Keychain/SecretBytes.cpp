// SPDX-License-Identifier: MIT
#include "Security/Keychain/SecretBytes.h"

#include <cstring>

namespace security {

SecretBytes::SecretBytes(std::string_view bytes) : SecretBytes(bytes.size()) {
    if (!bytes.empty())
        std::memcpy(_data, bytes.data(), bytes.size());
}

}  // namespace security
