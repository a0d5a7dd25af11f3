// SPDX-License-Identifier: MIT
#include "Security/Keychain/Note.h"

#include "CoreFoundation/AutoreleasePool.h"

namespace security {

void note(const std::string& line) {
    const cf::AutoreleasePool pool;
    NSString* const text = [NSString stringWithUTF8String:line.c_str()];
    NSLog(@"%@", text != nil ? text : @"keychain: a path is no text");
}

}  // namespace security
