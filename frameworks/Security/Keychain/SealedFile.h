// SPDX-License-Identifier: MIT
// The formats of the encrypted file and of the file with its key. Nothing here touches the disk.
//
// The encrypted file: "keychain", version, zero, the identity of its key (16 bytes), a nonce (24,
// new at each writing), a check sum of all this (16); then everything else, encrypted and
// authenticated with XChaCha20-Poly1305, the beginning included in the authentication.
// The key's file: "keychkey", version, zero, the key's identity (16), the key (32), a check sum.
// The check sums tell a damaged file from one of another key, or of a later version.
#pragma once

#include "Security/Keychain/SecretBytes.h"

#include <string>
#include <string_view>

namespace security {

enum class SealState { Intact, Damaged, OtherKey, LaterVersion };

// Fails: Damaged or LaterVersion, when these are not a key's file.
SealState examineKey(std::string_view keyFile);
// A new key, as the content of its file.
SecretBytes makeKey();

// `keyFile` is intact.
std::string seal(const SecretBytes& plain, const SecretBytes& keyFile);
SealState unseal(std::string_view sealed, const SecretBytes& keyFile, SecretBytes& plain);

}  // namespace security
