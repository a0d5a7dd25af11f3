// SPDX-License-Identifier: MIT
// Lists items. Of the platform's search the part that tells names.
#pragma once

#include <Security/SecBase.h>

CF_EXTERN_C_BEGIN

CF_EXPORT const CFStringRef kSecClass;
CF_EXPORT const CFStringRef kSecClassGenericPassword;
CF_EXPORT const CFStringRef kSecMatchLimit;
CF_EXPORT const CFStringRef kSecMatchLimitAll;
CF_EXPORT const CFStringRef kSecMatchSearchList; /* CFArray of keychains; without it all */
CF_EXPORT const CFStringRef kSecReturnAttributes;
CF_EXPORT const CFStringRef kSecAttrAccount;
CF_EXPORT const CFStringRef kSecAttrService;

/// `query` says kSecClassGenericPassword, kSecMatchLimitAll and kSecReturnAttributes; the result is
/// an array of dictionaries with kSecAttrService and kSecAttrAccount. Names that are no text in
/// UTF-8 are left out. Nobody is asked to unlock anything. Thread: any.
/// Owner: the caller. Fails: errSecItemNotFound without any item; errSecUnimplemented for other
/// queries.
CF_EXPORT OSStatus SecItemCopyMatching(CFDictionaryRef query, CFTypeRef* result);

CF_EXTERN_C_END
