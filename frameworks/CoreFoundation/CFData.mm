// SPDX-License-Identifier: MIT
#import <Foundation/Foundation.h>

#include <CoreFoundation/CFData.h>

namespace {

NSData* bytesOf(CFDataRef data) {
    return reinterpret_cast<NSData*>(const_cast<__CFData*>(data));
}

}  // namespace

CFDataRef CFDataCreate(CFAllocatorRef, const UInt8* bytes, CFIndex length) {
    return reinterpret_cast<CFDataRef>([[NSData alloc] initWithBytes:bytes
                                                              length:static_cast<size_t>(length)]);
}

CFIndex CFDataGetLength(CFDataRef data) {
    return static_cast<CFIndex>([bytesOf(data) length]);
}

const UInt8* CFDataGetBytePtr(CFDataRef data) {
    return static_cast<const UInt8*>([bytesOf(data) bytes]);
}
