// SPDX-License-Identifier: MIT
// What every part of Security shares: its references and its results.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <CoreServices/MacTypes.h>

CF_EXTERN_C_BEGIN

/// A place that keeps secrets: the desktop's Secret Service, or the encrypted file.
typedef struct __SecKeychain* SecKeychainRef;
/// Where an item was when it was found.
typedef struct __SecKeychainItem* SecKeychainItemRef;

enum {
    errSecSuccess = 0,
    errSecUnimplemented = -4,
    errSecDiskFull = -34,
    errSecIO = -36,
    errSecParam = -50,
    errSecAllocate = -108,
    errSecUserCanceled = -128, /* a prompt of the Secret Service was dismissed */
    errSecInternalComponent = -2070,
    errSecNotAvailable = -25291, /* the Secret Service is needed and does not answer */
    errSecReadOnly = -25292,     /* the encrypted file may not be changed */
    errSecAuthFailed = -25293,   /* the encrypted file's key is missing, wrong or not private */
    errSecNoSuchKeychain = -25294,
    errSecInvalidKeychain = -25295, /* the encrypted file is damaged */
    errSecDuplicateItem = -25299,
    errSecItemNotFound = -25300,
    errSecDataTooLarge = -25302,
    errSecInvalidItemRef = -25304,
    errSecInteractionNotAllowed = -25308, /* locked, and no one can be asked to unlock it */
    errSecIncompatibleVersion = -67704,   /* the encrypted file is a later version's */
};

/// A sentence in English; of an unknown status its number. `reserved` is null.
/// Owner: the caller. Thread: any.
CF_EXPORT CFStringRef SecCopyErrorMessageString(OSStatus status, void* reserved);

CF_EXTERN_C_END
