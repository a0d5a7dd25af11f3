// SPDX-License-Identifier: MIT
// GNUstep takes for the user's languages only those whose tables it has installed, knows one region
// for language and country, and takes an empty variable for a locale.
#include "Foundation/ReplaceMethod.h"
#include "Foundation/UserLocale.h"

#include <mutex>

namespace {

// The locale of the last identifier. An earlier one is kept: another thread may just be using it.
class LastLocale {
public:
    NSLocale* get(const std::string& identifier) {
        const std::lock_guard lock(_mutex);
        if (_locale == nil || _identifier != identifier) {
            NSString* const text = [NSString stringWithUTF8String:identifier.c_str()];
            _locale = [[NSLocale alloc] initWithLocaleIdentifier:text];
            _identifier = identifier;
        }
        return _locale;
    }

private:
    std::mutex _mutex;
    std::string _identifier;
    NSLocale* _locale = nil;
};

NSLocale* userLocale() {
    static LastLocale last;
    return last.get(foundation::localeIdentifier(foundation::processVariable));
}

}  // namespace

@interface NSLocale (ULAEnvironment)
+ (NSLocale*)ula_currentLocale;
+ (NSArray*)ula_preferredLanguages;
@end

@implementation NSLocale (ULAEnvironment)

+ (void)load {
    Class locale = [NSLocale class];
    foundation::exchangeClassMethods(locale, @selector(currentLocale),
                                     @selector(ula_currentLocale));
    foundation::exchangeClassMethods(locale, @selector(preferredLanguages),
                                     @selector(ula_preferredLanguages));
}

+ (NSLocale*)ula_currentLocale {
    return userLocale();
}

+ (NSArray*)ula_preferredLanguages {
    NSMutableArray* languages = [NSMutableArray array];
    for (const std::string& tag : foundation::preferredLanguages(foundation::processVariable))
        [languages addObject:[NSString stringWithUTF8String:tag.c_str()]];
    return languages;
}

@end
