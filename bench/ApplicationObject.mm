// SPDX-License-Identifier: MIT
#include "bench/ApplicationObject.h"

#include "ula/ScopedARPool.h"

#import <AppKit/AppKit.h>

namespace tav::bench {

void makeApplicationObject() {
    const ula::ScopedARPool pool;
    [NSApplication sharedApplication];
}

}  // namespace tav::bench
