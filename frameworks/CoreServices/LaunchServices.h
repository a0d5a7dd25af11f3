// SPDX-License-Identifier: MIT
// What the desktop makes of items: their types, the names it shows, what it does not show.
#pragma once

#include <CoreFoundation/CFArray.h>
#include <CoreFoundation/CFDictionary.h>
#include <CoreFoundation/CFString.h>
#include <CoreServices/Files.h>
#include <CoreServices/MacTypes.h>

CF_EXTERN_C_BEGIN

typedef OptionBits LSRolesMask;
enum { kLSRolesViewer = 2 };

/// A text of UTType.h.
CF_EXPORT const CFStringRef kLSItemContentType;
/// kCFBooleanTrue or kCFBooleanFalse.
CF_EXPORT const CFStringRef kLSItemIsInvisible;
/// A text.
CF_EXPORT const CFStringRef kLSItemDisplayName;

/// Those of the named attributes that the item has. A link is described itself, not what it leads
/// to. The role has no meaning here.
/// Owner: the caller, of `*values`. Thread: any.
/// Fails: paramErr for null arguments, fnfErr where nothing lies; `*values` is null then.
CF_EXPORT OSStatus LSCopyItemAttributes(const FSRef* item, LSRolesMask roles, CFArrayRef names,
                                        CFDictionaryRef* values);

CF_EXTERN_C_END
