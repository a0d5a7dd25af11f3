// SPDX-License-Identifier: MIT
#include "CallbackArray.h"

#include <CoreFoundation/CFArray.h>

namespace {

NSArray* values(CFArrayRef array) {
    return reinterpret_cast<NSArray*>(const_cast<__CFArray*>(array));
}

id object(const void* value) {
    return static_cast<id>(const_cast<void*>(value));
}

const void* retainObject(CFAllocatorRef, const void* value) {
    return CFRetain(value);
}

void releaseObject(CFAllocatorRef, const void* value) {
    CFRelease(value);
}

}  // namespace

const CFArrayCallBacks kCFTypeArrayCallBacks = {0, retainObject, releaseObject, CFCopyDescription,
                                                CFEqual};

CFArrayRef CFArrayCreate(CFAllocatorRef, const void** items, CFIndex count,
                         const CFArrayCallBacks* callBacks) {
    auto length = static_cast<NSUInteger>(count);
    id array = nil;
    if (callBacks == &kCFTypeArrayCallBacks)
        array = [[NSArray alloc] initWithObjects:reinterpret_cast<id*>(items) count:length];
    else
        array = [[ULACallbackArray alloc] initWithValues:items count:length callBacks:callBacks];
    return reinterpret_cast<CFArrayRef>(array);
}

CFArrayRef CFArrayCreateCopy(CFAllocatorRef, CFArrayRef array) {
    return reinterpret_cast<CFArrayRef>([values(array) copy]);
}

CFMutableArrayRef CFArrayCreateMutable(CFAllocatorRef, CFIndex, const CFArrayCallBacks* callBacks) {
    if (callBacks != &kCFTypeArrayCallBacks)
        return nullptr;
    return reinterpret_cast<CFMutableArrayRef>([[NSMutableArray alloc] init]);
}

CFIndex CFArrayGetCount(CFArrayRef array) {
    return static_cast<CFIndex>([values(array) count]);
}

const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index) {
    return [values(array) objectAtIndex:static_cast<NSUInteger>(index)];
}

Boolean CFArrayContainsValue(CFArrayRef array, CFRange range, const void* value) {
    NSRange part =
        NSMakeRange(static_cast<NSUInteger>(range.location), static_cast<NSUInteger>(range.length));
    return [values(array) indexOfObject:object(value) inRange:part] != NSNotFound;
}

void CFArrayAppendValue(CFMutableArrayRef array, const void* value) {
    [reinterpret_cast<NSMutableArray*>(array) addObject:object(value)];
}
