// SPDX-License-Identifier: MIT
#include "KeychainSpy.h"

#import <Foundation/Foundation.h>

using tav::test::KeychainSpy;

namespace {

KeychainSpy& spy() {
    return KeychainSpy::instance();
}

NSObject* theItem() {
    static NSObject* const item = [[NSObject alloc] init];
    return item;
}

std::string nameOf(UInt32 serviceLength, const char* service, UInt32 accountLength,
                   const char* account) {
    return std::string(service, serviceLength) + "|" + std::string(account, accountLength);
}

OSStatus nextFound() {
    const OSStatus status = spy().found.front();
    if (spy().found.size() > 1)
        spy().found.erase(spy().found.begin());
    return status;
}

}  // namespace

namespace tav::test {

KeychainSpy& KeychainSpy::instance() {
    static KeychainSpy spy;
    return spy;
}

long KeychainSpy::itemsHeld() const {
    return static_cast<long>([theItem() retainCount]) - 1;
}

}  // namespace tav::test

// Found before the frameworks' own.

OSStatus SecKeychainFindGenericPassword(CFTypeRef keychainOrArray, UInt32 serviceNameLength,
                                        const char* serviceName, UInt32 accountNameLength,
                                        const char* accountName, UInt32* passwordLength,
                                        void** passwordData, SecKeychainItemRef* itemRef) {
    spy().calls.push_back(
        "find " + nameOf(serviceNameLength, serviceName, accountNameLength, accountName) +
        (keychainOrArray != nullptr ? ", in one keychain" : "") +
        (passwordLength != nullptr ? ", length" : "") + (passwordData != nullptr ? ", data" : "") +
        (itemRef != nullptr ? ", item" : ""));
    const OSStatus status = nextFound();
    if (status != errSecSuccess)
        return status;
    if (passwordLength != nullptr)
        *passwordLength = static_cast<UInt32>(spy().data.size());
    if (passwordData != nullptr)
        *passwordData = spy().hasNoData ? nullptr : spy().data.data();
    if (itemRef != nullptr)
        *itemRef = reinterpret_cast<SecKeychainItemRef>([theItem() retain]);
    return status;
}

OSStatus SecKeychainAddGenericPassword(SecKeychainRef keychain, UInt32 serviceNameLength,
                                       const char* serviceName, UInt32 accountNameLength,
                                       const char* accountName, UInt32 passwordLength,
                                       const void* passwordData, SecKeychainItemRef* itemRef) {
    spy().calls.push_back(
        "add " + nameOf(serviceNameLength, serviceName, accountNameLength, accountName) + "=" +
        std::string(static_cast<const char*>(passwordData), passwordLength) +
        (keychain != nullptr ? ", in one keychain" : "") + (itemRef != nullptr ? ", item" : ""));
    return spy().added;
}

OSStatus SecKeychainItemDelete(SecKeychainItemRef itemRef) {
    spy().calls.push_back(reinterpret_cast<NSObject*>(itemRef) == theItem() ? "delete"
                                                                            : "delete another");
    return spy().deleted;
}

OSStatus SecKeychainItemFreeContent(SecKeychainAttributeList* attributes, void* data) {
    spy().calls.push_back(attributes == nullptr && data == spy().data.data() ? "free"
                                                                             : "free another");
    return errSecSuccess;
}
