// SPDX-License-Identifier: MIT
#include "ula/src/Mac/MoveCommands.h"

#include "ula/src/Mac/AppKitVersion.h"

namespace tav::ula {

namespace {

/// For between two single quotes: one within ends the quotation, stands for itself and begins it
/// again.
NSString* quotable(NSString* path) {
    return [path stringByReplacingOccurrencesOfString:@"'" withString:@"'\\''"];
}

NSString* quarantineCommand(NSString* bundle) {
    if (isAppKitNewerThan(kAppKit10_5))
        return [NSString
            stringWithFormat:@"/usr/bin/xattr -d -r com.apple.quarantine '%@';", quotable(bundle)];
    if (isAppKitNewerThan(kAppKit10_4))
        return [NSString
            stringWithFormat:@"/usr/bin/xattr -d com.apple.quarantine '%@';", quotable(bundle)];
    return @"";
}

}  // namespace

NSString* runningCommand(NSString* bundle) {
    return [NSString
        stringWithFormat:@"ps ax -o comm | grep '%@/' | grep -v grep >/dev/null", quotable(bundle)];
}

NSString* relaunchCommand(int process, NSString* bundle) {
    return
        [NSString stringWithFormat:
                      @"(while [ `ps -p %d | wc -l` -gt 1 ]; do sleep 0.1; done; %@ open '%@') &",
                      process, quarantineCommand(bundle), quotable(bundle)];
}

NSString* detachCommand(NSString* folder) {
    return [NSString stringWithFormat:@"(sleep 5 && hdiutil detach '%@') &", quotable(folder)];
}

}  // namespace tav::ula
