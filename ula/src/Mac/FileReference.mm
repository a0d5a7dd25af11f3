// SPDX-License-Identifier: MIT
#include "ula/src/Mac/FileReference.h"

#include "ula/src/Mac/Bridge.h"
#include "ula/src/Mac/CFOwner.h"

namespace tav::ula {

bool fileReferenceOf(NSString* path, bool isDirectory, FSRef& reference) {
    const CFOwner<CFURLRef> url(CFURLCreateWithFileSystemPath(kCFAllocatorDefault, bridged(path),
                                                              kCFURLPOSIXPathStyle, isDirectory));
    return url && CFURLGetFSRef(url.get(), &reference);
}

NSString* pathOfFileReference(const FSRef& reference) {
    const CFOwner<CFURLRef> url(CFURLCreateFromFSRef(kCFAllocatorDefault, &reference));
    if (!url)
        return nil;
    const CFStringRef path = CFURLCopyFileSystemPath(url.get(), kCFURLPOSIXPathStyle);
    return [bridged(path) autorelease];
}

}  // namespace tav::ula
