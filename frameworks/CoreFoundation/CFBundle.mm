// SPDX-License-Identifier: MIT
#include "AutoreleasePool.h"

#include <CoreFoundation/CFBundle.h>
#include <CoreFoundation/CFLocale.h>

namespace {

// "pt-BR" and "pt_BR" name the same localization.
NSString* comparable(NSString* identifier) {
    return [[identifier stringByReplacingOccurrencesOfString:@"-" withString:@"_"] lowercaseString];
}

// Without its last subtag; nil when it has only one.
NSString* parent(NSString* identifier) {
    NSRange last = [identifier rangeOfString:@"_" options:NSBackwardsSearch];
    return last.location == NSNotFound ? nil : [identifier substringToIndex:last.location];
}

NSArray* serving(NSString* preference, NSArray* localizations) {
    NSMutableArray* result = [NSMutableArray array];
    for (NSString* wanted = comparable(preference); wanted != nil; wanted = parent(wanted)) {
        for (NSString* localization in localizations) {
            if ([comparable(localization) isEqualToString:wanted])
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
        wanted = [NSLocale preferredLanguages];
    return reinterpret_cast<CFArrayRef>([chosen(available, wanted) copy]);
}
