// SPDX-License-Identifier: MIT
#include "ModeName.h"

#import <Foundation/Foundation.h>

#include <CoreFoundation/CFString.h>
#include <mutex>
#include <vector>

// GNUstep's own texts, so that names from either side are equal. These are literals because
// GNUstep's variables may not be set yet when another library's constructor reads these.
const CFRunLoopMode kCFRunLoopDefaultMode = CFSTR("NSDefaultRunLoopMode");
const CFRunLoopMode kCFRunLoopCommonModes = CFSTR("NSRunLoopCommonModes");

namespace cf {

namespace {

/// Kept for ever, as there are few modes.
std::vector<CFStringRef>& knownNames() {
    static auto* const names = new std::vector<CFStringRef>;
    return *names;
}

}  // namespace

std::mutex& modeNamesLock() {
    static auto* const lock = new std::mutex;
    return *lock;
}

CFStringRef modeName(CFStringRef name) {
    std::lock_guard guard(modeNamesLock());
    std::vector<CFStringRef>& names = knownNames();
    for (CFStringRef known : names) {
        if (known == name)
            return known;
    }
    for (CFStringRef known : names) {
        if (CFEqual(known, name))
            return known;
    }
    // A copy that the caller cannot change.
    names.push_back(CFStringCreateCopy(kCFAllocatorDefault, name));
    return names.back();
}

CFStringRef defaultMode() {
    static const CFStringRef name = modeName(kCFRunLoopDefaultMode);
    return name;
}

CFStringRef commonModes() {
    static const CFStringRef name = modeName(kCFRunLoopCommonModes);
    return name;
}

}  // namespace cf
