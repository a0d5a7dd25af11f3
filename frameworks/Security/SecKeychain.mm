// SPDX-License-Identifier: MIT
#include "Security/KeychainObjects.h"

#include <Security/SecKeychain.h>
#include <Security/SecKeychainItem.h>

#include <cstring>

using security::guarded;
using security::ItemKey;
using security::SearchList;
using security::SecretBytes;
using security::StoreKind;

namespace {

bool isText(UInt32 length, const void* bytes) {
    return length == 0 || bytes != nullptr;
}

std::string_view viewOf(UInt32 length, const char* bytes) {
    return length == 0 ? std::string_view() : std::string_view(bytes, length);
}

// Empty data is a pointer all the same.
void hand(SecretBytes& secret, UInt32* length, void** data) {
    if (length != nullptr)
        *length = static_cast<UInt32>(secret.size());
    if (data != nullptr)
        *data = secret.release();
}

}  // namespace

OSStatus SecKeychainFindGenericPassword(CFTypeRef keychainOrArray, UInt32 serviceNameLength,
                                        const char* serviceName, UInt32 accountNameLength,
                                        const char* accountName, UInt32* passwordLength,
                                        void** passwordData, SecKeychainItemRef* itemRef) {
    return guarded([&]() -> OSStatus {
        const std::vector<StoreKind> kinds = security::kindsOf(keychainOrArray);
        if (kinds.empty() || !isText(serviceNameLength, serviceName) ||
            !isText(accountNameLength, accountName))
            return errSecParam;
        const ItemKey name(viewOf(serviceNameLength, serviceName),
                           viewOf(accountNameLength, accountName));
        SecretBytes secret;
        const bool wantsData = passwordLength != nullptr || passwordData != nullptr;
        StoreKind where = kinds.front();
        const OSStatus status =
            SearchList::ofProcess().find(kinds, name, wantsData ? &secret : nullptr, where);
        if (status != errSecSuccess)
            return status;
        hand(secret, passwordLength, passwordData);
        if (itemRef != nullptr)
            *itemRef = security::makeItem(where, name);
        return errSecSuccess;
    });
}

OSStatus SecKeychainAddGenericPassword(SecKeychainRef keychain, UInt32 serviceNameLength,
                                       const char* serviceName, UInt32 accountNameLength,
                                       const char* accountName, UInt32 passwordLength,
                                       const void* passwordData, SecKeychainItemRef* itemRef) {
    return guarded([&]() -> OSStatus {
        const std::optional<StoreKind> kind = security::kindOf(keychain);
        if ((keychain != nullptr && !kind) || !isText(serviceNameLength, serviceName) ||
            !isText(accountNameLength, accountName) || !isText(passwordLength, passwordData))
            return errSecParam;
        const ItemKey name(viewOf(serviceNameLength, serviceName),
                           viewOf(accountNameLength, accountName));
        const std::string_view secret(static_cast<const char*>(passwordData), passwordLength);
        SearchList& list = SearchList::ofProcess();
        StoreKind where = kind.value_or(StoreKind::SecretService);
        const OSStatus status =
            kind ? list.addTo(*kind, name, secret) : list.add(name, secret, where);
        if (status == errSecSuccess && itemRef != nullptr)
            *itemRef = security::makeItem(where, name);
        return status;
    });
}

OSStatus SecKeychainItemDelete(SecKeychainItemRef itemRef) {
    return guarded([&]() -> OSStatus {
        const security::ItemPlace* const place = security::placeOf(itemRef);
        if (place == nullptr)
            return errSecInvalidItemRef;
        const OSStatus status = SearchList::ofProcess().remove(place->kind, place->name);
        return status == errSecItemNotFound ? OSStatus(errSecInvalidItemRef) : status;
    });
}

OSStatus SecKeychainItemFreeContent(SecKeychainAttributeList*, void* data) {
    security::SecretMemory::free(data);
    return errSecSuccess;
}

OSStatus SecKeychainCopySearchList(CFArrayRef* searchList) {
    return guarded([&]() -> OSStatus {
        if (searchList == nullptr)
            return errSecParam;
        CFMutableArrayRef list =
            CFArrayCreateMutable(kCFAllocatorDefault, 0, &kCFTypeArrayCallBacks);
        for (const StoreKind kind : SearchList::ofProcess().kinds()) {
            const SecKeychainRef keychain = security::makeKeychain(kind);
            CFArrayAppendValue(list, keychain);
            CFRelease(keychain);
        }
        *searchList = list;
        return errSecSuccess;
    });
}

OSStatus SecKeychainCopyDefault(SecKeychainRef* keychain) {
    return guarded([&]() -> OSStatus {
        StoreKind kind = StoreKind::SecretService;
        const OSStatus status = SearchList::ofProcess().defaultKind(kind);
        if (keychain == nullptr || status != errSecSuccess)
            return keychain == nullptr ? OSStatus(errSecParam) : status;
        *keychain = security::makeKeychain(kind);
        return errSecSuccess;
    });
}

OSStatus SecKeychainSetDefault(SecKeychainRef keychain) {
    return guarded([&]() -> OSStatus {
        const std::optional<StoreKind> kind = security::kindOf(keychain);
        return kind ? SearchList::ofProcess().setDefault(*kind) : OSStatus(errSecNoSuchKeychain);
    });
}

OSStatus SecKeychainGetPath(SecKeychainRef keychain, UInt32* pathLength, char* pathName) {
    return guarded([&]() -> OSStatus {
        const std::optional<StoreKind> kind = security::kindOf(keychain);
        if (!kind || pathLength == nullptr || pathName == nullptr)
            return kind ? errSecParam : errSecNoSuchKeychain;
        const std::string path = SearchList::ofProcess().path(*kind);
        if (path.size() + 1 > *pathLength)
            return errSecParam;
        std::memcpy(pathName, path.c_str(), path.size() + 1);
        *pathLength = static_cast<UInt32>(path.size());
        return errSecSuccess;
    });
}

OSStatus SecKeychainGetStatus(SecKeychainRef keychain, SecKeychainStatus* status) {
    return guarded([&]() -> OSStatus {
        SearchList& list = SearchList::ofProcess();
        StoreKind kind = security::kindOf(keychain).value_or(StoreKind::SecretService);
        if (status == nullptr)
            return errSecParam;
        if (keychain == nullptr && list.defaultKind(kind) != errSecSuccess)
            return errSecNotAvailable;
        bool isLocked = false;
        const OSStatus result = list.examine(kind, isLocked);
        *status = kSecReadPermStatus | kSecWritePermStatus | (isLocked ? 0 : kSecUnlockStateStatus);
        return result;
    });
}
