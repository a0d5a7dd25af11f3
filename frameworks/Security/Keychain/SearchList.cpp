// SPDX-License-Identifier: MIT
#include "Security/Keychain/SearchList.h"

#include "Security/Keychain/Files.h"
#include "Security/Keychain/KeychainFolder.h"
#include "Security/Keychain/Note.h"
#include "Security/SecBase.h"

#include <atomic>

namespace security {

namespace {

constexpr const char* kAddLock = "adding";

StoreKind other(StoreKind kind) {
    return kind == StoreKind::SecretService ? StoreKind::EncryptedFile : StoreKind::SecretService;
}

// Where the service never had an item, none is missing without it.
bool isNoMatter(StoreKind kind, OSStatus status) {
    if (kind != StoreKind::SecretService || status != errSecNotAvailable)
        return false;
    StoreChoice choice;
    return readChoice(keychainFolder(), choice) == errSecSuccess && !choice.isServiceUsed;
}

}  // namespace

SearchList& SearchList::ofProcess() {
    // Never destroyed: threads may outlive the statics.
    static auto* const list = new SearchList;
    return *list;
}

template <class Work>
OSStatus SearchList::with(StoreKind kind, Work work) {
    if (kind == StoreKind::SecretService)
        return work(static_cast<Store&>(_service));
    FileStore file(keychainFolder());
    return work(static_cast<Store&>(file));
}

std::vector<StoreKind> SearchList::kinds() const {
    StoreChoice choice;
    // In any order if it cannot be read: that is told where it matters.
    readChoice(keychainFolder(), choice);
    return {choice.newItems, other(choice.newItems)};
}

OSStatus SearchList::find(const std::vector<StoreKind>& kinds, const ItemKey& name,
                          SecretBytes* secret, StoreKind& where) {
    OSStatus result = errSecItemNotFound;
    for (const StoreKind kind : kinds) {
        const OSStatus status = with(kind, [&](Store& store) {
            return secret != nullptr ? store.read(name, *secret) : store.find(name);
        });
        where = kind;
        if (status == errSecSuccess)
            return status;
        if (status != errSecItemNotFound && result == errSecItemNotFound &&
            !(kinds.size() > 1 && isNoMatter(kind, status)))
            result = status;
        // What the user has declined is not looked for elsewhere.
        if (status == errSecUserCanceled)
            return status;
    }
    return result;
}

OSStatus SearchList::decide(const StoreChoice& choice, StoreKind& kind) {
    kind = choice.newItems;
    if (choice.isDecided) {
        tellOnce(kind, "as decided before");
        return errSecSuccess;
    }
    bool isLocked = false;
    const OSStatus status = _service.examine(isLocked);
    if (status != errSecSuccess && status != errSecNotAvailable)
        return status;
    const bool isThere = status == errSecSuccess;
    kind = isThere ? StoreKind::SecretService : StoreKind::EncryptedFile;
    tellOnce(kind, isThere ? "which answers" : "as no Secret Service answers");
    return errSecSuccess;
}

OSStatus SearchList::defaultKind(StoreKind& kind) {
    StoreChoice choice;
    const OSStatus status = readChoice(keychainFolder(), choice);
    return status == errSecSuccess ? decide(choice, kind) : status;
}

OSStatus SearchList::setDefault(StoreKind kind) {
    const std::string folder = keychainFolder();
    const FolderLock lock(folder, kAddLock);
    if (lock.status() != errSecSuccess)
        return lock.status();
    StoreChoice choice;
    const OSStatus status = readChoice(folder, choice);
    if (status != errSecSuccess)
        return status;
    std::vector<ItemName> names;
    if (_service.list(names) == errSecSuccess)
        choice.isServiceUsed = !names.empty();
    choice.isDecided = true;
    choice.newItems = kind;
    return writeChoice(folder, choice);
}

// One of two items of the same name would hide the other. The store itself refuses a second one;
// what is in a service that cannot be reached comes after the file that was chosen.
OSStatus SearchList::findElsewhere(StoreKind kind, const ItemKey& name) {
    const OSStatus status = with(other(kind), [&](Store& store) { return store.find(name); });
    return status == errSecNotAvailable ? OSStatus(errSecItemNotFound) : status;
}

// Before the item: it shall not be missed where it cannot be reached.
OSStatus SearchList::remember(StoreKind kind, const StoreChoice& choice) {
    bool isLocked = false;
    const OSStatus status = examine(kind, isLocked);
    return status == errSecSuccess ? writeChoice(keychainFolder(), choice) : status;
}

OSStatus SearchList::addAndRemember(StoreKind kind, const ItemKey& name, std::string_view secret) {
    const std::string folder = keychainFolder();
    StoreChoice choice;
    OSStatus status = readChoice(folder, choice);
    if (status != errSecSuccess)
        return status;
    StoreChoice decided = choice;
    decided.isDecided = true;
    if (!choice.isDecided)
        decided.newItems = kind;
    decided.isServiceUsed = choice.isServiceUsed || kind == StoreKind::SecretService;
    if (decided != choice)
        status = remember(kind, decided);
    if (status != errSecSuccess)
        return status;
    return with(kind, [&](Store& store) { return store.add(name, secret); });
}

OSStatus SearchList::add(const ItemKey& name, std::string_view secret, StoreKind& where) {
    const FolderLock lock(keychainFolder(), kAddLock);
    if (lock.status() != errSecSuccess)
        return lock.status();
    OSStatus status = defaultKind(where);
    if (status != errSecSuccess)
        return status;
    status = findElsewhere(where, name);
    if (status != errSecItemNotFound)
        return status == errSecSuccess ? OSStatus(errSecDuplicateItem) : status;
    return addAndRemember(where, name, secret);
}

OSStatus SearchList::addTo(StoreKind kind, const ItemKey& name, std::string_view secret) {
    const FolderLock lock(keychainFolder(), kAddLock);
    return lock.status() == errSecSuccess ? addAndRemember(kind, name, secret) : lock.status();
}

OSStatus SearchList::remove(StoreKind kind, const ItemKey& name) {
    return with(kind, [&](Store& store) { return store.remove(name); });
}

OSStatus SearchList::list(const std::vector<StoreKind>& kinds, std::vector<ItemName>& names) {
    OSStatus result = errSecSuccess;
    for (const StoreKind kind : kinds) {
        const OSStatus status = with(kind, [&](Store& store) { return store.list(names); });
        if (result == errSecSuccess && !(kinds.size() > 1 && isNoMatter(kind, status)))
            result = status;
    }
    return result;
}

OSStatus SearchList::examine(StoreKind kind, bool& isLocked) {
    return with(kind, [&](Store& store) { return store.examine(isLocked); });
}

std::string SearchList::path(StoreKind kind) {
    std::string path;
    with(kind, [&](Store& store) {
        path = store.path();
        return OSStatus(errSecSuccess);
    });
    return path;
}

void SearchList::tellOnce(StoreKind kind, const char* reason) {
    static std::atomic<bool> isTold = false;
    if (!isTold.exchange(true))
        note("keychain: new items go to " +
             (kind == StoreKind::SecretService ? "the Secret Service" : path(kind)) + ", " +
             reason);
}

}  // namespace security
