// SPDX-License-Identifier: MIT
#include <CoreServices/LaunchServices.h>

#include "CoreFoundation/AutoreleasePool.h"
#include "CoreFoundation/Descriptor.h"
#include "CoreFoundation/Guarded.h"
#include "CoreServices/HiddenNames.h"
#include "CoreServices/ItemType.h"

#include <CoreFoundation/CFNumber.h>
#include <CoreServices/UTType.h>
#include <fcntl.h>
#include <gio/gio.h>
#include <memory>
#include <optional>
#include <string>

const CFStringRef kLSItemContentType = CFSTR("LSItemContentType");
const CFStringRef kLSItemIsInvisible = CFSTR("LSItemIsInvisible");
const CFStringRef kLSItemDisplayName = CFSTR("LSItemDisplayName");

namespace {

using coreservices::ItemType;

std::string leafOf(const std::string& path) {
    return path == "/" ? path : path.substr(path.rfind('/') + 1);
}

std::string parentOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos)
        return ".";
    return path.substr(0, slash == 0 ? 1 : slash);
}

// By the shared MIME database's opinion of the name.
CFStringRef contentTypeOfFile(const std::string& path) {
    const std::unique_ptr<char, decltype(&g_free)> type(
        g_content_type_guess(leafOf(path).c_str(), nullptr, 0, nullptr), g_free);
    if (type == nullptr)
        return kUTTypeData;
    const struct {
        const char* mimeType;
        CFStringRef type;
    } kinds[] = {{"image/*", kUTTypeImage},
                 {"video/*", kUTTypeMovie},
                 {"audio/*", kUTTypeAudio},
                 {"application/zip", kUTTypeArchive},
                 {"application/x-tar", kUTTypeArchive},
                 {"text/plain", kUTTypeText}};
    for (const auto& kind : kinds) {
        if (g_content_type_is_mime_type(type.get(), kind.mimeType))
            return kind.type;
    }
    return kUTTypeData;
}

CFStringRef contentTypeOf(ItemType type, const std::string& path) {
    switch (type) {
    case ItemType::SymbolicLink:
        return kUTTypeSymLink;
    case ItemType::Folder:
        return kUTTypeFolder;
    case ItemType::Package:
        return kUTTypePackage;
    case ItemType::ApplicationBundle:
        return kUTTypeApplicationBundle;
    case ItemType::Volume:
        return kUTTypeVolume;
    case ItemType::AliasFile:
        return kUTTypeAliasFile;
    case ItemType::File:
        return contentTypeOfFile(path);
    case ItemType::Other:
        break;
    }
    return kUTTypeItem;
}

bool isInvisible(const std::string& path) {
    const std::string name = leafOf(path);
    if (name.front() == '.')
        return true;
    const cf::Descriptor folder(open(parentOf(path).c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    return folder && coreservices::HiddenNames(folder.get()).contains(name);
}

// Null for a name that is no text.
NSString* displayName(const std::string& path) {
    return [NSString stringWithUTF8String:leafOf(path).c_str()];
}

OSStatus copyAttributes(const std::string& path, CFArrayRef names, CFDictionaryRef* values) {
    const std::optional<ItemType> type = coreservices::itemType(path);
    if (!type.has_value())
        return fnfErr;
    NSMutableDictionary* const answers = [NSMutableDictionary dictionaryWithCapacity:3];
    for (NSString* name in reinterpret_cast<NSArray*>(const_cast<__CFArray*>(names))) {
        if ([name isEqual:(NSString*)kLSItemContentType])
            [answers setObject:(NSString*)contentTypeOf(*type, path) forKey:name];
        else if ([name isEqual:(NSString*)kLSItemIsInvisible])
            [answers setObject:(NSNumber*)(isInvisible(path) ? kCFBooleanTrue : kCFBooleanFalse)
                        forKey:name];
        else if ([name isEqual:(NSString*)kLSItemDisplayName] && displayName(path) != nil)
            [answers setObject:displayName(path) forKey:name];
    }
    *values = reinterpret_cast<CFDictionaryRef>([answers retain]);
    return noErr;
}

}  // namespace

OSStatus LSCopyItemAttributes(const FSRef* item, LSRolesMask, CFArrayRef names,
                              CFDictionaryRef* values) {
    if (values != nullptr)
        *values = nullptr;
    if (item == nullptr || names == nullptr || values == nullptr)
        return paramErr;
    const cf::AutoreleasePool pool;
    return cf::guarded<OSStatus>(memFullErr, ioErr, [&] {
        return copyAttributes(coreservices::pathOf(*item), names, values);
    });
}
