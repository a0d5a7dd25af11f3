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

class ModeNames {
public:
    CFStringRef find(CFStringRef name) {
        std::lock_guard guard(_mutex);
        for (CFStringRef known : _names) {
            if (known == name)
                return known;
        }
        for (CFStringRef known : _names) {
            if (CFEqual(known, name))
                return known;
        }
        // A copy that the caller cannot change; kept for ever, as there are few modes.
        _names.push_back(CFStringCreateCopy(kCFAllocatorDefault, name));
        return _names.back();
    }

private:
    std::mutex _mutex;
    std::vector<CFStringRef> _names;
};

}  // namespace

CFStringRef modeName(CFStringRef name) {
    static auto* const names = new ModeNames;
    return names->find(name);
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
