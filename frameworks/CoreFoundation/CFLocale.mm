// SPDX-License-Identifier: MIT
#include "AutoreleasePool.h"

#include <CoreFoundation/CFLocale.h>

namespace {

NSLocale* settings(CFLocaleRef locale) {
    return reinterpret_cast<NSLocale*>(const_cast<__CFLocale*>(locale));
}

}  // namespace

const CFLocaleKey kCFLocaleIdentifier = reinterpret_cast<CFLocaleKey>(NSLocaleIdentifier);
const CFLocaleKey kCFLocaleLanguageCode = reinterpret_cast<CFLocaleKey>(NSLocaleLanguageCode);
const CFLocaleKey kCFLocaleCountryCode = reinterpret_cast<CFLocaleKey>(NSLocaleCountryCode);

CFLocaleRef CFLocaleCopyCurrent(void) {
    cf::AutoreleasePool pool;
    return reinterpret_cast<CFLocaleRef>([[NSLocale currentLocale] retain]);
}

CFArrayRef CFLocaleCopyAvailableLocaleIdentifiers(void) {
    cf::AutoreleasePool pool;
    // GNUstep makes the hundreds of names anew at each call.
    static NSArray* const identifiers = [[NSLocale availableLocaleIdentifiers] copy];
    return reinterpret_cast<CFArrayRef>([identifiers retain]);
}

CFArrayRef CFLocaleCopyPreferredLanguages(void) {
    cf::AutoreleasePool pool;
    return reinterpret_cast<CFArrayRef>([[NSLocale preferredLanguages] copy]);
}

CFTypeRef CFLocaleGetValue(CFLocaleRef locale, CFLocaleKey key) {
    id name = reinterpret_cast<id>(const_cast<__CFString*>(key));
    return [settings(locale) objectForKey:name];
}

CFLocaleIdentifier CFLocaleGetIdentifier(CFLocaleRef locale) {
    return reinterpret_cast<CFLocaleIdentifier>([settings(locale) localeIdentifier]);
}
