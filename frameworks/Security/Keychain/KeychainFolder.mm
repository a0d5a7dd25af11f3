// SPDX-License-Identifier: MIT
#include "Security/Keychain/KeychainFolder.h"

#import "Foundation/HomeDirectory.h"
#include "Foundation/UserFolders.h"

namespace security {

std::string keychainFolder() {
    NSAutoreleasePool* const pool = [[NSAutoreleasePool alloc] init];
    const std::string home = [ULAHomeDirectory() UTF8String];
    [pool release];
    return foundation::dataFolder(home) + "/ula/keychain";
}

}  // namespace security
