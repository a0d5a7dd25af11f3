// SPDX-License-Identifier: MIT
#include "Security/Keychain/Note.h"

#import <Foundation/Foundation.h>

namespace security {

void note(const std::string& line) {
    NSAutoreleasePool* const pool = [[NSAutoreleasePool alloc] init];
    NSString* const text = [NSString stringWithUTF8String:line.c_str()];
    NSLog(@"%@", text != nil ? text : @"keychain: a path is no text");
    [pool release];
}

}  // namespace security
