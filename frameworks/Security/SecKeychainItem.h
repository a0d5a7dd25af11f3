// SPDX-License-Identifier: MIT
#pragma once

#include <Security/SecBase.h>

CF_EXTERN_C_BEGIN

typedef struct SecKeychainAttributeList SecKeychainAttributeList;

/// Fails: errSecInvalidItemRef when it has gone already, and the others of SecBase.h.
CF_EXPORT OSStatus SecKeychainItemDelete(SecKeychainItemRef itemRef);
/// Wipes and frees the data of an item; null is none. There are no lists of attributes: null.
CF_EXPORT OSStatus SecKeychainItemFreeContent(SecKeychainAttributeList* attributes, void* data);

CF_EXTERN_C_END
