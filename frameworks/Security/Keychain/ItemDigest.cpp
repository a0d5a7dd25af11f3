// SPDX-License-Identifier: MIT
#include "Security/Keychain/ItemDigest.h"

#include "Security/Keychain/Bytes.h"
#include "Security/Keychain/LittleEndian.h"

#include <array>
#include <sodium.h>

namespace security {

namespace {

constexpr std::size_t kSize = 16;

}  // namespace

std::string itemDigest(const ItemKey& name) {
    std::array<std::uint8_t, 4> serviceSize;
    std::array<std::uint8_t, kSize> digest;
    std::array<char, 2 * kSize + 1> digits;
    writeNumber(serviceSize.data(), name.service.size());
    crypto_generichash_state state;
    crypto_generichash_init(&state, nullptr, 0, kSize);
    crypto_generichash_update(&state, serviceSize.data(), serviceSize.size());
    crypto_generichash_update(&state, bytesOf(name.service), name.service.size());
    crypto_generichash_update(&state, bytesOf(name.account), name.account.size());
    crypto_generichash_final(&state, digest.data(), kSize);
    // It holds the end of the account.
    sodium_memzero(&state, sizeof state);
    return sodium_bin2hex(digits.data(), digits.size(), digest.data(), digest.size());
}

}  // namespace security
