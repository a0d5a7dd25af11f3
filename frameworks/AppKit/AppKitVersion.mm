// SPDX-License-Identifier: MIT
#import "AppKit/AppKitVersion.h"

double ULAAppKitVersionNumber() {
    return NSAppKitVersionNumber10_6;
}
