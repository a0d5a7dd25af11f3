// SPDX-License-Identifier: MIT
#pragma once

#include "Security/Keychain/SecretBytes.h"

#include <CoreServices/MacTypes.h>
#include <string>
#include <string_view>
#include <vector>

namespace security {

// Bytes, as the caller gave them.
struct ItemName {
    std::string service;
    std::string account;

    bool operator==(const ItemName&) const = default;
};

// The same for looking an item up, borrowed. It is not copied anywhere: an account may be a secret
// that someone takes for one.
struct ItemKey {
    ItemKey(std::string_view itemService, std::string_view itemAccount)
        : service(itemService), account(itemAccount) {}
    ItemKey(const ItemName& name) : service(name.service), account(name.account) {}

    std::string_view service;
    std::string_view account;
};

// A place that keeps secrets. All results are statuses of SecBase.h.
// Thread: any.
class Store {
public:
    virtual ~Store() = default;

    // Whether there is such an item; asks nobody to unlock anything.
    virtual OSStatus find(const ItemKey& name) = 0;
    virtual OSStatus read(const ItemKey& name, SecretBytes& secret) = 0;
    virtual OSStatus add(const ItemKey& name, std::string_view secret) = 0;
    virtual OSStatus remove(const ItemKey& name) = 0;
    // Appends.
    virtual OSStatus list(std::vector<ItemName>& names) = 0;
    // Whether it can be used at all, and whether it is locked.
    virtual OSStatus examine(bool& isLocked) = 0;
    // What the user would call the place.
    virtual std::string path() const = 0;
};

}  // namespace security
