// SPDX-License-Identifier: MIT
#pragma once

#import <AppKit/AppKit.h>
#include <ApplicationServices/ApplicationServices.h>

namespace tav::ula {

/// Of the display that the screen object stands for, attached or not. Null where it has none.
inline CGDirectDisplayID displayNumberOf(NSScreen* screen) {
    return [[[screen deviceDescription] objectForKey:@"NSScreenNumber"] unsignedIntValue];
}

}  // namespace tav::ula
