// SPDX-License-Identifier: MIT
// Which items there are, where they lie, and moving them.
#include "ula/ScopedARPool.h"
#include "ula/SecureData.h"
#include "ula/src/Mac/Bridge.h"
#include "ula/src/Mac/CFOwner.h"
#include "ula/src/Mac/KeychainItem.h"

#include <algorithm>
#include <string_view>
#include <tuple>

namespace tav::ula {

namespace {

struct Item {
    FastString service;
    FastString account;

    bool isOurs() const {
        return service.view().starts_with(kPasswordPrefix) ||
               service.view().starts_with(kNotePrefix);
    }
};

OSStatus itemsOf(NSArray* keychains, std::vector<Item>& items) {
    NSDictionary* const query = @{
        (id)kSecClass : (id)kSecClassGenericPassword,
        (id)kSecMatchLimit : (id)kSecMatchLimitAll,
        (id)kSecReturnAttributes : (id)kCFBooleanTrue,
        (id)kSecMatchSearchList : keychains
    };
    CFOwner<CFTypeRef> found;
    const OSStatus status = SecItemCopyMatching((CFDictionaryRef)query, found.receive());
    for (NSDictionary* attributes in (NSArray*)found.get()) {
        NSString* const service = [attributes objectForKey:(id)kSecAttrService];
        NSString* const account = [attributes objectForKey:(id)kSecAttrAccount];
        if (service == nil)
            continue;
        Item item{fastTextOf(service), fastTextOf(account)};
        if (item.isOurs())
            items.push_back(std::move(item));
    }
    return status == errSecItemNotFound ? OSStatus(errSecSuccess) : status;
}

/// Autoreleased; empty when there is none.
NSArray* allKeychains() {
    CFArrayRef list = nullptr;
    if (SecKeychainCopySearchList(&list) != errSecSuccess)
        return [NSArray array];
    return [bridged(list) autorelease];
}

FastString pathOf(SecKeychainRef keychain) {
    char path[4096];
    UInt32 length = sizeof path;
    const bool isDone = SecKeychainGetPath(keychain, &length, path) == errSecSuccess;
    return isDone ? FastString(path, length) : FastString();
}

KeychainItemName nameOf(const Item& item) {
    const bool isPassword = item.service.view().starts_with(kPasswordPrefix);
    const std::size_t prefix = isPassword ? kPasswordPrefix.size() : kNotePrefix.size();
    return {isPassword ? KeychainItemKind::Password : KeychainItemKind::Note,
            item.service.substr(prefix), item.account};
}

/// Fails: false for a name that does not end with the qualifier.
bool dropQualifier(FastString& name, const FastString& qualifier) {
    const std::string ending = "_" + qualifier.toStdString();
    if (!name.view().ends_with(ending))
        return false;
    name = name.substr(0, name.length() - ending.size());
    return true;
}

KeychainStore describe(SecKeychainRef keychain, const FastString& defaultPath) {
    KeychainStore store;
    SecKeychainStatus state = 0;
    const OSStatus status = SecKeychainGetStatus(keychain, &state);
    store.path = pathOf(keychain);
    store.isDefault = store.path == defaultPath;
    store.isAvailable = status == errSecSuccess;
    store.isLocked = store.isAvailable && (state & kSecUnlockStateStatus) == 0;
    if (!store.isAvailable)
        store.error = keychainMessage(status);
    return store;
}

/// The same secret in both places is what an earlier move was stopped at.
OSStatus addWhereMissing(const KeychainItem& item, const FastString& secret,
                         SecKeychainRef keychain) {
    const OSStatus status = item.add(keychain, secret);
    if (status != errSecDuplicateItem)
        return status;
    bool isSame = secret.empty();
    const OSStatus read = item.readFrom(keychain, [&](const char* bytes, UInt32 length) {
        isSame = secret.view() == std::string_view(bytes, length);
    });
    if (read != errSecSuccess)
        return read;
    return isSame ? errSecSuccess : errSecDuplicateItem;
}

/// The secret is not copied: copies would not be wiped.
OSStatus copyItem(const KeychainItem& item, SecKeychainRef from, SecKeychainRef to) {
    bool isEmpty = true;
    OSStatus added = errSecSuccess;
    const OSStatus read = item.readFrom(from, [&](const char* bytes, UInt32 length) {
        isEmpty = false;
        added = addWhereMissing(item, FastString::borrow(bytes, length), to);
    });
    if (read != errSecSuccess)
        return read;
    return isEmpty ? addWhereMissing(item, FastString(), to) : added;
}

OSStatus moveItem(const KeychainItem& item, SecKeychainRef from, SecKeychainRef to) {
    const OSStatus status = copyItem(item, from, to);
    return status == errSecSuccess ? item.removeFrom(from) : status;
}

OSStatus moveItems(SecKeychainRef from, SecKeychainRef to, KeychainMove& move) {
    std::vector<Item> items;
    const OSStatus listed = itemsOf(@[ (id)from ], items);
    if (listed != errSecSuccess)
        return listed;
    for (const Item& item : items) {
        const OSStatus status = moveItem(KeychainItem(item.service, item.account), from, to);
        if (status != errSecSuccess && status != errSecDuplicateItem)
            return status;
        ++(status == errSecSuccess ? move.moved : move.left);
    }
    return errSecSuccess;
}

OSStatus moveFromAll(NSArray* keychains, SecKeychainRef to, KeychainMove& move) {
    SecKeychainStatus state = 0;
    const OSStatus reached = SecKeychainGetStatus(to, &state);
    if (reached != errSecSuccess)
        return reached;
    for (const id keychain in keychains) {
        const auto from = (SecKeychainRef)keychain;
        // What cannot be reached keeps what it has.
        if (CFEqual(from, to) || SecKeychainGetStatus(from, &state) == errSecNotAvailable)
            continue;
        const OSStatus status = moveItems(from, to, move);
        if (status != errSecSuccess)
            return status;
    }
    return SecKeychainSetDefault(to);
}

}  // namespace

bool listKeychain(std::vector<KeychainItemName>& names) {
    const ScopedARPool pool;
    std::vector<Item> items;
    const OSStatus status = itemsOf(allKeychains(), items);
    if (status != errSecSuccess) {
        reportKeychainStatus(status);
        return false;
    }
    std::vector<KeychainItemName> found;
    for (const Item& item : items)
        found.push_back(nameOf(item));
    const auto key = [](const KeychainItemName& name) {
        return std::tie(name.name, name.kind, name.account);
    };
    std::sort(found.begin(), found.end(),
              [&](const auto& left, const auto& right) { return key(left) < key(right); });
    found.erase(std::unique(found.begin(), found.end()), found.end());
    names.insert(names.end(), found.begin(), found.end());
    return true;
}

bool listKeychain(const FastString& qualifier, std::vector<KeychainItemName>& names) {
    std::vector<KeychainItemName> all;
    if (!listKeychain(all))
        return false;
    for (KeychainItemName& name : all) {
        if (dropQualifier(name.name, qualifier))
            names.push_back(name);
    }
    return true;
}

std::vector<KeychainStore> keychainStores() {
    const ScopedARPool pool;
    CFOwner<SecKeychainRef> first;
    const OSStatus status = SecKeychainCopyDefault(first.receive());
    if (status != errSecSuccess)
        reportKeychainStatus(status);
    const FastString defaultPath = first ? pathOf(first.get()) : FastString();
    std::vector<KeychainStore> stores;
    for (const id keychain in allKeychains())
        stores.push_back(describe((SecKeychainRef)keychain, defaultPath));
    std::stable_partition(stores.begin(), stores.end(),
                          [](const KeychainStore& store) { return store.isDefault; });
    return stores;
}

KeychainMove moveKeychain(const FastString& path) {
    const ScopedARPool pool;
    KeychainMove move;
    OSStatus status = errSecNoSuchKeychain;
    NSArray* const keychains = allKeychains();
    for (const id keychain in keychains) {
        if (pathOf((SecKeychainRef)keychain) == path)
            status = moveFromAll(keychains, (SecKeychainRef)keychain, move);
    }
    if (status != errSecSuccess)
        move.error = keychainMessage(status);
    return move;
}

}  // namespace tav::ula
