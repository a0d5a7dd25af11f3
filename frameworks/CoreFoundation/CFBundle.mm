// SPDX-License-Identifier: MIT
#include "AutoreleasePool.h"

#include <CoreFoundation/CFBundle.h>
#include <CoreFoundation/CFLocale.h>
#include <algorithm>

namespace {

unichar comparable(unichar letter) {
    if (letter == '-')
        return '_';
    return letter >= 'A' && letter <= 'Z' ? static_cast<unichar>(letter + ('a' - 'A')) : letter;
}

// "pt-BR" and "pt_BR" name the same localization. Without an object for each of hundreds.
bool areSame(NSString* left, NSString* right) {
    constexpr NSUInteger kLongest = 64;
    const NSUInteger length = [left length];
    if (length != [right length] || length > kLongest)
        return false;
    unichar leftLetters[kLongest];
    unichar rightLetters[kLongest];
    [left getCharacters:leftLetters];
    [right getCharacters:rightLetters];
    return std::equal(leftLetters, leftLetters + length, rightLetters,
                      [](unichar a, unichar b) { return comparable(a) == comparable(b); });
}

// Without its last subtag; nil when it has only one.
NSString* parent(NSString* identifier) {
    NSCharacterSet* separators = [NSCharacterSet characterSetWithCharactersInString:@"-_"];
    NSRange last = [identifier rangeOfCharacterFromSet:separators options:NSBackwardsSearch];
    return last.location == NSNotFound ? nil : [identifier substringToIndex:last.location];
}

NSArray* serving(NSString* preference, NSArray* localizations) {
    NSMutableArray* result = [NSMutableArray array];
    for (NSString* wanted = preference; wanted != nil; wanted = parent(wanted)) {
        for (NSString* localization in localizations) {
            if (areSame(localization, wanted))
                [result addObject:localization];
        }
    }
    return result;
}

NSArray* chosen(NSArray* localizations, NSArray* preferences) {
    for (NSString* preference in preferences) {
        NSArray* result = serving(preference, localizations);
        if ([result count] > 0)
            return result;
    }
    NSUInteger length = [localizations count] > 0 ? 1 : 0;
    return [localizations subarrayWithRange:NSMakeRange(0, length)];
}

}  // namespace

CFArrayRef CFBundleCopyLocalizationsForPreferences(CFArrayRef localizations,
                                                   CFArrayRef preferences) {
    cf::AutoreleasePool pool;
    auto* available = reinterpret_cast<NSArray*>(const_cast<__CFArray*>(localizations));
    auto* wanted = reinterpret_cast<NSArray*>(const_cast<__CFArray*>(preferences));
    if (wanted == nil)
        wanted = [[NSLocale preferredLanguages] arrayByAddingObject:@"en"];
    return reinterpret_cast<CFArrayRef>([chosen(available, wanted) copy]);
}
