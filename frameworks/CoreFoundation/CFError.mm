// SPDX-License-Identifier: MIT
#include "AutoreleasePool.h"

#include <CoreFoundation/CFError.h>

namespace {

NSError* errorOf(CFErrorRef error) {
    return reinterpret_cast<NSError*>(error);
}

}  // namespace

CFIndex CFErrorGetCode(CFErrorRef error) {
    return [errorOf(error) code];
}

CFStringRef CFErrorCopyDescription(CFErrorRef error) {
    const cf::AutoreleasePool pool;
    return reinterpret_cast<CFStringRef>([[errorOf(error) localizedDescription] copy]);
}
