// SPDX-License-Identifier: MIT
#include <CoreServices/UTType.h>

#import <Foundation/Foundation.h>

const CFStringRef kUTTypeItem = CFSTR("public.item");
const CFStringRef kUTTypeData = CFSTR("public.data");
const CFStringRef kUTTypeDirectory = CFSTR("public.directory");
const CFStringRef kUTTypeFolder = CFSTR("public.folder");
const CFStringRef kUTTypeVolume = CFSTR("public.volume");
const CFStringRef kUTTypePackage = CFSTR("com.apple.package");
const CFStringRef kUTTypeApplicationBundle = CFSTR("com.apple.application-bundle");
const CFStringRef kUTTypeResolvable = CFSTR("com.apple.resolvable");
const CFStringRef kUTTypeSymLink = CFSTR("public.symlink");
const CFStringRef kUTTypeAliasFile = CFSTR("com.apple.alias-file");
const CFStringRef kUTTypeText = CFSTR("public.text");
const CFStringRef kUTTypeImage = CFSTR("public.image");
const CFStringRef kUTTypeMovie = CFSTR("public.movie");
const CFStringRef kUTTypeAudio = CFSTR("public.audio");
const CFStringRef kUTTypeArchive = CFSTR("public.archive");

namespace {

struct Conformance {
    CFStringRef type;
    CFStringRef parent;
};

// Without circles.
const Conformance kConformances[] = {
    {kUTTypeData, kUTTypeItem},         {kUTTypeDirectory, kUTTypeItem},
    {kUTTypeFolder, kUTTypeDirectory},  {kUTTypeVolume, kUTTypeFolder},
    {kUTTypePackage, kUTTypeDirectory}, {kUTTypeApplicationBundle, kUTTypePackage},
    {kUTTypeSymLink, kUTTypeItem},      {kUTTypeSymLink, kUTTypeResolvable},
    {kUTTypeAliasFile, kUTTypeData},    {kUTTypeAliasFile, kUTTypeResolvable},
    {kUTTypeText, kUTTypeData},         {kUTTypeImage, kUTTypeData},
    {kUTTypeMovie, kUTTypeData},        {kUTTypeAudio, kUTTypeData},
    {kUTTypeArchive, kUTTypeData},
};

NSString* textOf(CFStringRef text) {
    return reinterpret_cast<NSString*>(const_cast<__CFString*>(text));
}

bool isSame(CFStringRef type, CFStringRef other) {
    return type == other || [textOf(type) caseInsensitiveCompare:textOf(other)] == NSOrderedSame;
}

}  // namespace

Boolean UTTypeConformsTo(CFStringRef type, CFStringRef conformsTo) {
    if (type == nullptr || conformsTo == nullptr)
        return false;
    if (isSame(type, conformsTo))
        return true;
    for (const Conformance& conformance : kConformances) {
        if (isSame(type, conformance.type) && UTTypeConformsTo(conformance.parent, conformsTo))
            return true;
    }
    return false;
}
