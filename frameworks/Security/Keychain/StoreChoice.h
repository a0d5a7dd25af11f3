// SPDX-License-Identifier: MIT
#pragma once

#include <CoreServices/MacTypes.h>
#include <string>

namespace security {

enum class StoreKind { SecretService, EncryptedFile };

// What is remembered of the user's two stores, in the file "store" of the keychain's folder: which
// one new items go to, once that was decided, and whether the Secret Service has any, so that its
// absence is told from the absence of an item.
struct StoreChoice {
    bool isDecided = false;
    StoreKind newItems = StoreKind::SecretService;
    bool isServiceUsed = false;

    bool operator==(const StoreChoice&) const = default;
};

// Without a file: undecided. With one that says nothing: undecided, and the Secret Service may have
// items. Fails: when there is one and it cannot be read.
OSStatus readChoice(const std::string& folder, StoreChoice& choice);
// Under the lock of adding.
OSStatus writeChoice(const std::string& folder, const StoreChoice& choice);

}  // namespace security
