// SPDX-License-Identifier: MIT
// The objects behind the references.
#pragma once

#include "CoreFoundation/Guarded.h"
#include "Security/Keychain/SearchList.h"

#include <Security/SecBase.h>
#include <optional>
#include <vector>

namespace security {

// Owner: the caller.
SecKeychainRef makeKeychain(StoreKind kind);
SecKeychainItemRef makeItem(StoreKind kind, const ItemKey& name);

// Nothing for what is no such reference, null included.
std::optional<StoreKind> kindOf(CFTypeRef keychain);
// The stores of a keychain or of an array of them; for null all. Nothing when it is neither.
std::vector<StoreKind> kindsOf(CFTypeRef keychainOrArray);

struct ItemPlace {
    StoreKind kind;
    ItemName name;
};
// Null for what is no such reference. Owner: the item.
const ItemPlace* placeOf(SecKeychainItemRef item);

// The status that a call ends with; what it throws has one, too.
template <class Call>
OSStatus guarded(Call call) {
    return cf::guarded<OSStatus>(errSecAllocate, errSecInternalComponent, call);
}

}  // namespace security
