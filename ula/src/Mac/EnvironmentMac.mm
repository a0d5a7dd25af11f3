// SPDX-License-Identifier: MIT
#include "ula/Environment.h"

#include "ula/ScopedARPool.h"
#include "ula/src/Mac/Bridge.h"
#include "ula/src/Mac/CFOwner.h"

#include <CoreServices/CoreServices.h>
#import <Foundation/Foundation.h>

namespace tav::ula {

namespace {

/// 10.3.15, packed: later releases have numbers that the packed form has no room for.
constexpr SInt32 kLastPackedVersion = 0x103F;

NSString* stringOf(CFTypeRef text) {
    return bridged(static_cast<CFStringRef>(text));
}

/// By the names that the user's own language has for them.
NSString* displayName(NSString* localeIdentifier) {
    if (localeIdentifier == nil)
        return nil;
    return [[NSLocale currentLocale] displayNameForKey:NSLocaleIdentifier value:localeIdentifier];
}

struct Version {
    SInt32 major = 0;
    SInt32 minor = 0;
    SInt32 bugFix = 0;
};

/// Fails: 0.
SInt32 systemNumber(OSType selector) {
    SInt32 number = 0;
    return Gestalt(selector, &number) == noErr ? number : 0;
}

Version unpacked(SInt32 version) {
    return {10 * (version >> 12 & 0xF) + (version >> 8 & 0xF), version >> 4 & 0xF, version & 0xF};
}

Version systemVersion() {
    SInt32 packed = 0;
    if (Gestalt(gestaltSystemVersion, &packed) != noErr)
        return {};
    if (packed <= kLastPackedVersion)
        return unpacked(packed);
    return {systemNumber(gestaltSystemVersionMajor), systemNumber(gestaltSystemVersionMinor),
            systemNumber(gestaltSystemVersionBugFix)};
}

}  // namespace

std::string Environment::getOSLanguageISO3166() {
    const ScopedARPool pool;
    const CFOwner<CFArrayRef> available(CFLocaleCopyAvailableLocaleIdentifiers());
    const CFOwner<CFArrayRef> preferred(
        CFBundleCopyLocalizationsForPreferences(available.get(), nullptr));
    if (!preferred || CFArrayGetCount(preferred.get()) == 0)
        return "en";
    return textOf(stringOf(CFArrayGetValueAtIndex(preferred.get(), 0)));
}

std::string Environment::getOSLanguage() {
    const ScopedARPool pool;
    NSString* const name = displayName([[NSLocale currentLocale] localeIdentifier]);
    return name == nil ? std::string()
                       : textOf([[name componentsSeparatedByString:@" "] objectAtIndex:0]);
}

std::string Environment::getOSCountryISO3166() {
    const ScopedARPool pool;
    const CFOwner<CFLocaleRef> locale(CFLocaleCopyCurrent());
    return locale ? textOf(stringOf(CFLocaleGetValue(locale.get(), kCFLocaleCountryCode)))
                  : std::string();
}

std::string Environment::getOSCountry() {
    const ScopedARPool pool;
    NSArray* const languages = [NSLocale preferredLanguages];
    return [languages count] == 0 ? std::string()
                                  : textOf(displayName([languages objectAtIndex:0]));
}

std::string Environment::getOSVersion() {
    const ScopedARPool pool;
    const Version version = systemVersion();
    return std::to_string(version.major) + '.' + std::to_string(version.minor) + '.' +
           std::to_string(version.bugFix);
}

std::string Environment::getUserName() {
    const ScopedARPool pool;
    return textOf(NSUserName());
}

}  // namespace tav::ula
