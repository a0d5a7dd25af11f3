// SPDX-License-Identifier: MIT
// GNUstep takes arguments and environment for texts in the locale's encoding and ends the program
// over one that is none, for which the name of a file is enough. Here it is read as Latin-1.
#include "Foundation/ReplaceMethod.h"

namespace {

thread_local bool readsArguments = false;

}  // namespace

@interface NSString (ULAArguments)
+ (instancetype)ula_stringWithCString:(const char*)bytes encoding:(NSStringEncoding)encoding;
- (instancetype)ula_initWithCString:(const char*)bytes;
@end

@implementation NSString (ULAArguments)

+ (instancetype)ula_stringWithCString:(const char*)bytes encoding:(NSStringEncoding)encoding {
    NSString* const text = [self ula_stringWithCString:bytes encoding:encoding];
    if (text != nil || !readsArguments)
        return text;
    return [self ula_stringWithCString:bytes encoding:NSISOLatin1StringEncoding];
}

// So it makes a text of the program's own path.
- (instancetype)ula_initWithCString:(const char*)bytes {
    NSString* const text = [self ula_initWithCString:bytes];
    if (text != nil || !readsArguments)
        return text;
    return [[NSString alloc] initWithCString:bytes encoding:NSISOLatin1StringEncoding];
}

@end

@interface NSProcessInfo (ULAArguments)
+ (void)ula_initialize;
@end

@implementation NSProcessInfo (ULAArguments)

// Looked up, not sent messages: that would initialize them before the program has begun.
+ (void)load {
    foundation::exchangeClassMethods(objc_lookUpClass("NSString"),
                                     @selector(stringWithCString:encoding:),
                                     @selector(ula_stringWithCString:encoding:));
    foundation::exchangeInstanceMethods(objc_lookUpClass("NSString"), @selector(initWithCString:),
                                        @selector(ula_initWithCString:));
    foundation::exchangeClassMethods(objc_lookUpClass("NSProcessInfo"), @selector(initialize),
                                     @selector(ula_initialize));
}

+ (void)ula_initialize {
    readsArguments = true;
    [self ula_initialize];
    readsArguments = false;
}

@end
