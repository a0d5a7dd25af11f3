// SPDX-License-Identifier: MIT
// Types of content, and which of them are special cases of which.
#pragma once

#include <CoreFoundation/CFString.h>

CF_EXTERN_C_BEGIN

CF_EXPORT const CFStringRef kUTTypeItem;
CF_EXPORT const CFStringRef kUTTypeData;
CF_EXPORT const CFStringRef kUTTypeDirectory;
CF_EXPORT const CFStringRef kUTTypeFolder;
CF_EXPORT const CFStringRef kUTTypeVolume;
CF_EXPORT const CFStringRef kUTTypePackage;
CF_EXPORT const CFStringRef kUTTypeApplicationBundle;
CF_EXPORT const CFStringRef kUTTypeResolvable;
CF_EXPORT const CFStringRef kUTTypeSymLink;
CF_EXPORT const CFStringRef kUTTypeAliasFile;
CF_EXPORT const CFStringRef kUTTypeText;
CF_EXPORT const CFStringRef kUTTypeImage;
CF_EXPORT const CFStringRef kUTTypeMovie;
CF_EXPORT const CFStringRef kUTTypeAudio;
CF_EXPORT const CFStringRef kUTTypeArchive;

/// Whether content of the type is content of the other one, too. Every type conforms to itself; the
/// case of letters does not matter. Unknown types conform to nothing else.
/// Thread: any.
CF_EXPORT Boolean UTTypeConformsTo(CFStringRef type, CFStringRef conformsTo);

CF_EXTERN_C_END
