// SPDX-License-Identifier: MIT
// The user's language and region. A CFLocaleRef is an NSLocale*.
#pragma once

#include <CoreFoundation/CFArray.h>
#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

typedef const struct __CFLocale* CFLocaleRef;
typedef CFStringRef CFLocaleIdentifier;
typedef CFStringRef CFLocaleKey;

CF_EXPORT const CFLocaleKey kCFLocaleIdentifier;
CF_EXPORT const CFLocaleKey kCFLocaleLanguageCode;
CF_EXPORT const CFLocaleKey kCFLocaleCountryCode;

CF_EXPORT CFLocaleRef CFLocaleCopyCurrent(void);
CF_EXPORT CFArrayRef CFLocaleCopyAvailableLocaleIdentifiers(void);
/// Best language first.
CF_EXPORT CFArrayRef CFLocaleCopyPreferredLanguages(void);
/// Owner: the locale. Fails: null when it has no such value.
CF_EXPORT CFTypeRef CFLocaleGetValue(CFLocaleRef locale, CFLocaleKey key);
CF_EXPORT CFLocaleIdentifier CFLocaleGetIdentifier(CFLocaleRef locale);

CF_EXTERN_C_END
