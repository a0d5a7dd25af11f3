// SPDX-License-Identifier: MIT
#pragma once

#include "Security/Keychain/FileStore.h"
#include "Security/Keychain/ServiceStore.h"
#include "Security/Keychain/StoreChoice.h"

#include <vector>

namespace security {

// Both stores of the user. An item is looked for in the one that new items go to, then in the other
// one: it is found again wherever it was put. Which store takes new items is decided by the first
// item that is added, by whether a Secret Service answers then, remembered for the user, and logged
// once in each process.
// Thread: any.
class SearchList {
public:
    // Those of the process. The folder is the present user's at each call.
    static SearchList& ofProcess();

    std::vector<StoreKind> kinds() const;
    OSStatus defaultKind(StoreKind& kind);
    OSStatus setDefault(StoreKind kind);

    // In all of these stores. `where` receives the one that has it.
    OSStatus find(const std::vector<StoreKind>& kinds, const ItemKey& name, SecretBytes* secret,
                  StoreKind& where);
    // To the default store, unless any has it. `where` receives it.
    OSStatus add(const ItemKey& name, std::string_view secret, StoreKind& where);
    OSStatus addTo(StoreKind kind, const ItemKey& name, std::string_view secret);
    OSStatus remove(StoreKind kind, const ItemKey& name);
    OSStatus list(const std::vector<StoreKind>& kinds, std::vector<ItemName>& names);
    OSStatus examine(StoreKind kind, bool& isLocked);
    std::string path(StoreKind kind);

private:
    template <class Work>
    OSStatus with(StoreKind kind, Work work);
    OSStatus decide(const StoreChoice& choice, StoreKind& kind);
    OSStatus findElsewhere(StoreKind kind, const ItemKey& name);
    OSStatus remember(StoreKind kind, const StoreChoice& choice);
    OSStatus addAndRemember(StoreKind kind, const ItemKey& name, std::string_view secret);
    void tellOnce(StoreKind kind, const char* reason);

    ServiceStore _service;
};

}  // namespace security
