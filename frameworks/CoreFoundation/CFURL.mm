// SPDX-License-Identifier: MIT
#include "AutoreleasePool.h"

#include <CoreFoundation/CFString.h>
#include <CoreFoundation/CFURL.h>

namespace {

NSURL* location(CFURLRef url) {
    return reinterpret_cast<NSURL*>(const_cast<__CFURL*>(url));
}

NSString* text(CFStringRef string) {
    return reinterpret_cast<NSString*>(const_cast<__CFString*>(string));
}

// The path as the file system wants it, or nil.
NSString* pathOf(CFURLRef url) {
    NSString* path = [location(url) path];
    if ([path length] > 1 && [path hasSuffix:@"/"])
        return [path substringToIndex:[path length] - 1];
    return path;
}

}  // namespace

CFURLRef CFURLCreateWithFileSystemPath(CFAllocatorRef, CFStringRef path, CFURLPathStyle style,
                                       Boolean isDirectory) {
    if (path == nullptr || style != kCFURLPOSIXPathStyle)
        return nullptr;
    cf::AutoreleasePool pool;
    return reinterpret_cast<CFURLRef>([[NSURL alloc] initFileURLWithPath:text(path)
                                                             isDirectory:isDirectory != 0]);
}

CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef allocator, const UInt8* path,
                                                 CFIndex length, Boolean isDirectory) {
    CFStringRef string =
        CFStringCreateWithBytes(allocator, path, length, kCFStringEncodingUTF8, false);
    if (string == nullptr)
        return nullptr;
    CFURLRef url =
        CFURLCreateWithFileSystemPath(allocator, string, kCFURLPOSIXPathStyle, isDirectory);
    CFRelease(string);
    return url;
}

CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFURLPathStyle style) {
    if (style != kCFURLPOSIXPathStyle)
        return nullptr;
    cf::AutoreleasePool pool;
    return reinterpret_cast<CFStringRef>([pathOf(url) copy]);
}

Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean, UInt8* buffer, CFIndex bufferSize) {
    // NSURL answers the whole path whether the URL is relative or not.
    cf::AutoreleasePool pool;
    auto path = reinterpret_cast<CFStringRef>(pathOf(url));
    return path != nullptr && CFStringGetCString(path, reinterpret_cast<char*>(buffer), bufferSize,
                                                 kCFStringEncodingUTF8);
}

CFStringRef CFURLGetString(CFURLRef url) {
    return reinterpret_cast<CFStringRef>([location(url) relativeString]);
}

CFStringRef CFURLCopyLastPathComponent(CFURLRef url) {
    cf::AutoreleasePool pool;
    return reinterpret_cast<CFStringRef>([[pathOf(url) lastPathComponent] copy]);
}

Boolean CFURLHasDirectoryPath(CFURLRef url) {
    cf::AutoreleasePool pool;
    return [[location(url) relativeString] hasSuffix:@"/"];
}
