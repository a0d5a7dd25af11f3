// SPDX-License-Identifier: MIT
// Generic passwords: bytes that are found by the name of a service and of an account. A null
// keychain stands for the user's list of them, or for the default one.
//
// Thread: any. Secrets lie in memory that is kept out of core files and of the swap.
#pragma once

#include <Security/SecBase.h>

CF_EXTERN_C_BEGIN

/// Names and data are bytes with their lengths. Of an item that is locked only the existence can
/// be told; asking for its data makes the Secret Service prompt the user, and waits.
///
/// `keychainOrArray` is a keychain, an array of them, or null. Each of the last four may be null.
/// Owner: the caller, of the data (SecKeychainItemFreeContent) and of the item (CFRelease).
/// Fails: errSecItemNotFound, and the others of SecBase.h; nothing is stored then.
CF_EXPORT OSStatus SecKeychainFindGenericPassword(CFTypeRef keychainOrArray,
                                                  UInt32 serviceNameLength, const char* serviceName,
                                                  UInt32 accountNameLength, const char* accountName,
                                                  UInt32* passwordLength, void** passwordData,
                                                  SecKeychainItemRef* itemRef);

/// With a null keychain the default one, and nothing is added when any other has the item.
/// Fails: errSecDuplicateItem, and the others of SecBase.h.
CF_EXPORT OSStatus SecKeychainAddGenericPassword(SecKeychainRef keychain, UInt32 serviceNameLength,
                                                 const char* serviceName, UInt32 accountNameLength,
                                                 const char* accountName, UInt32 passwordLength,
                                                 const void* passwordData,
                                                 SecKeychainItemRef* itemRef);

/// The default keychain first. Owner: the caller.
CF_EXPORT OSStatus SecKeychainCopySearchList(CFArrayRef* searchList);
/// What a null keychain would add to. Owner: the caller.
CF_EXPORT OSStatus SecKeychainCopyDefault(SecKeychainRef* keychain);
/// Remembered for the user. Nothing is moved: what is elsewhere is found there.
CF_EXPORT OSStatus SecKeychainSetDefault(SecKeychainRef keychain);

/// The encrypted file's path, or the address of the Secret Service. `*pathLength` is the room on
/// entry and the length on return; a zero follows it. Fails: errSecParam when there is no room.
CF_EXPORT OSStatus SecKeychainGetPath(SecKeychainRef keychain, UInt32* pathLength, char* pathName);

typedef UInt32 SecKeychainStatus;
enum {
    kSecUnlockStateStatus = 1,
    kSecReadPermStatus = 2,
    kSecWritePermStatus = 4,
};
/// Of the default one for null. Fails: errSecNotAvailable and others when it cannot be used.
CF_EXPORT OSStatus SecKeychainGetStatus(SecKeychainRef keychain, SecKeychainStatus* status);

CF_EXTERN_C_END
