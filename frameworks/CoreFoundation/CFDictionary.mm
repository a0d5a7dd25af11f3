// SPDX-License-Identifier: MIT
#include "AutoreleasePool.h"

#include <CoreFoundation/CFDictionary.h>
#include <CoreFoundation/CFString.h>

namespace {

NSDictionary* table(CFDictionaryRef dictionary) {
    return reinterpret_cast<NSDictionary*>(const_cast<__CFDictionary*>(dictionary));
}

NSMutableDictionary* table(CFMutableDictionaryRef dictionary) {
    return reinterpret_cast<NSMutableDictionary*>(dictionary);
}

id object(const void* value) {
    return static_cast<id>(const_cast<void*>(value));
}

const void* retainObject(CFAllocatorRef, const void* value) {
    return CFRetain(value);
}

const void* copyString(CFAllocatorRef allocator, const void* value) {
    return CFStringCreateCopy(allocator, static_cast<CFStringRef>(value));
}

void releaseObject(CFAllocatorRef, const void* value) {
    CFRelease(value);
}

bool forObjects(const CFDictionaryKeyCallBacks* keys, const CFDictionaryValueCallBacks* values) {
    return (keys == &kCFTypeDictionaryKeyCallBacks ||
            keys == &kCFCopyStringDictionaryKeyCallBacks) &&
           values == &kCFTypeDictionaryValueCallBacks;
}

}  // namespace

const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks = {
    0, retainObject, releaseObject, CFCopyDescription, CFEqual, CFHash};
const CFDictionaryKeyCallBacks kCFCopyStringDictionaryKeyCallBacks = {
    0, copyString, releaseObject, CFCopyDescription, CFEqual, CFHash};
const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks = {0, retainObject, releaseObject,
                                                                    CFCopyDescription, CFEqual};

CFDictionaryRef CFDictionaryCreate(CFAllocatorRef allocator, const void** keys, const void** values,
                                   CFIndex count, const CFDictionaryKeyCallBacks* keyCallBacks,
                                   const CFDictionaryValueCallBacks* valueCallBacks) {
    CFMutableDictionaryRef made =
        CFDictionaryCreateMutable(allocator, count, keyCallBacks, valueCallBacks);
    if (made == nullptr)
        return nullptr;
    for (CFIndex i = 0; i < count; ++i)
        CFDictionaryAddValue(made, keys[i], values[i]);
    NSDictionary* fixed = [table(made) copy];
    CFRelease(made);
    return reinterpret_cast<CFDictionaryRef>(fixed);
}

CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef, CFIndex,
                                                 const CFDictionaryKeyCallBacks* keyCallBacks,
                                                 const CFDictionaryValueCallBacks* valueCallBacks) {
    if (!forObjects(keyCallBacks, valueCallBacks))
        return nullptr;
    return reinterpret_cast<CFMutableDictionaryRef>([[NSMutableDictionary alloc] init]);
}

CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary) {
    return static_cast<CFIndex>([table(dictionary) count]);
}

Boolean CFDictionaryContainsKey(CFDictionaryRef dictionary, const void* key) {
    return CFDictionaryGetValue(dictionary, key) != nullptr;
}

const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key) {
    return [table(dictionary) objectForKey:object(key)];
}

Boolean CFDictionaryGetValueIfPresent(CFDictionaryRef dictionary, const void* key,
                                      const void** value) {
    const void* found = CFDictionaryGetValue(dictionary, key);
    if (found != nullptr && value != nullptr)
        *value = found;
    return found != nullptr;
}

void CFDictionaryGetKeysAndValues(CFDictionaryRef dictionary, const void** keys,
                                  const void** values) {
    cf::AutoreleasePool pool;
    size_t i = 0;
    for (id key in table(dictionary)) {
        if (keys != nullptr)
            keys[i] = key;
        if (values != nullptr)
            values[i] = [table(dictionary) objectForKey:key];
        ++i;
    }
}

void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void* key, const void* value) {
    [table(dictionary) setObject:object(value) forKey:object(key)];
}

void CFDictionaryAddValue(CFMutableDictionaryRef dictionary, const void* key, const void* value) {
    if (!CFDictionaryContainsKey(dictionary, key))
        CFDictionarySetValue(dictionary, key, value);
}

void CFDictionaryRemoveValue(CFMutableDictionaryRef dictionary, const void* key) {
    [table(dictionary) removeObjectForKey:object(key)];
}
