// SPDX-License-Identifier: MIT
#include "Security/Keychain/KeychainFolder.h"

#include "CoreFoundation/AutoreleasePool.h"
#import "Foundation/HomeDirectory.h"
#include "Foundation/UserFolders.h"

namespace security {

std::string keychainFolder() {
    const cf::AutoreleasePool pool;
    const std::string home = [ULAHomeDirectory() UTF8String];
    return foundation::dataFolder(home) + "/ula/keychain";
}

}  // namespace security
