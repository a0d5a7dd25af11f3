// SPDX-License-Identifier: MIT
#include "AutoreleasePool.h"
#include "ThreadSanitizer.h"

#include <CoreFoundation/CFBase.h>
#include <cstdlib>

namespace {

id object(CFTypeRef reference) {
    return static_cast<id>(const_cast<void*>(reference));
}

}  // namespace

CFTypeRef CFRetain(CFTypeRef reference) {
    if (reference == nullptr)
        abort();
    return [object(reference) retain];
}

void CFRelease(CFTypeRef reference) {
    if (reference == nullptr)
        abort();
    cf::letsGoOf(reference);
    [object(reference) release];
}

CFIndex CFGetRetainCount(CFTypeRef reference) {
    return static_cast<CFIndex>([object(reference) retainCount]);
}

Boolean CFEqual(CFTypeRef reference, CFTypeRef other) {
    return reference == other || [object(reference) isEqual:object(other)];
}

CFHashCode CFHash(CFTypeRef reference) {
    return [object(reference) hash];
}

CFStringRef CFCopyDescription(CFTypeRef reference) {
    if (reference == nullptr)
        return nullptr;
    cf::AutoreleasePool pool;
    return reinterpret_cast<CFStringRef>([[object(reference) description] copy]);
}
