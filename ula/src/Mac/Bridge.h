// SPDX-License-Identifier: MIT
// Between the platform's types of C, its classes and the library's texts, where any may be nil.
#pragma once

#import "ula/ObjCHelper.h"

#include <CoreFoundation/CoreFoundation.h>

namespace tav::ula {

/// The same object by the name of its class, or of its type of C.
inline NSString* bridged(CFStringRef text) {
    return (NSString*)text;
}
inline NSArray* bridged(CFArrayRef list) {
    return (NSArray*)list;
}
inline NSDictionary* bridged(CFDictionaryRef dictionary) {
    return (NSDictionary*)dictionary;
}
inline CFStringRef bridged(NSString* text) {
    return (CFStringRef)text;
}
inline CFArrayRef bridged(NSArray* list) {
    return (CFArrayRef)list;
}
inline CFDataRef bridged(NSData* bytes) {
    return (CFDataRef)bytes;
}

/// Empty for nil.
inline std::string textOf(NSString* text) {
    return text == nil ? std::string() : [text toStdString];
}
inline FastString fastTextOf(NSString* text) {
    return text == nil ? FastString() : [text toUTF8String];
}

}  // namespace tav::ula
