// SPDX-License-Identifier: MIT
// GNUstep's workspace knows neither shares nor images, takes file systems of the kernel's for
// volumes, asks a mounted server that may be gone, and has one icon for all. What it tells of
// volumes is taken over here; icons of anything else stay as they are.
#import <AppKit/AppKit.h>

#include "AppKit/IconPixels.h"
#include "AppKit/IconTheme.h"
#include "AppKit/VolumeFacts.h"
#include "AppKit/VolumeNotifications.h"
#include "Foundation/ReplaceMethod.h"

#include <cstring>
#include <map>
#include <mutex>

using diskarbitration::Machine;

namespace {

constexpr int kIconPixels = 48;
constexpr char kVolumes[] = "/Volumes";

using IconForFile = NSImage* (*)(id, SEL, NSString*);

IconForFile originalIconForFile = nullptr;

std::string pathOf(NSString* text) {
    const char* bytes = text == nil ? nullptr : [text fileSystemRepresentation];
    return bytes != nullptr ? bytes : "";
}

// The themes as they are when the first icon is asked for. Null where none has any of the names.
const appkit::IconPixels* iconNamed(const std::vector<std::string>& names) {
    static std::mutex mutex;
    // Never destroyed: other threads may ask until the very end.
    static auto* icons = new std::map<std::vector<std::string>, std::optional<appkit::IconPixels>>;
    std::lock_guard lock(mutex);
    static const auto* theme = new appkit::IconTheme(appkit::IconPlaces::ofProcess());
    auto [icon, isNew] = icons->try_emplace(names);
    if (isNew)
        icon->second = appkit::drawIcon(theme->find(names, kIconPixels), kIconPixels);
    return icon->second ? &*icon->second : nullptr;
}

NSImage* imageOf(const appkit::IconPixels& icon) {
    NSBitmapImageRep* pixels =
        [[[NSBitmapImageRep alloc] initWithBitmapDataPlanes:nullptr
                                                 pixelsWide:icon.width
                                                 pixelsHigh:icon.height
                                              bitsPerSample:8
                                            samplesPerPixel:4
                                                   hasAlpha:YES
                                                   isPlanar:NO
                                             colorSpaceName:NSDeviceRGBColorSpace
                                                bytesPerRow:icon.width * 4
                                               bitsPerPixel:32] autorelease];
    memcpy([pixels bitmapData], icon.bytes.data(), icon.bytes.size());
    NSImage* image = [[NSImage alloc] initWithSize:NSMakeSize(icon.width, icon.height)];
    [image addRepresentation:pixels];
    return [image autorelease];
}

NSImage* iconForFile(id self, SEL command, NSString* path) {
    const Machine& machine = Machine::ofProcess();
    std::vector<std::string> names = appkit::volumeIconNames(pathOf(path), machine, kVolumes);
    if (names.empty())
        return originalIconForFile(self, command, path);
    const appkit::IconPixels* icon = iconNamed(names);
    // The original looks at the item, which nobody may answer for: it is shown another disk.
    return icon != nullptr ? imageOf(*icon) : originalIconForFile(self, command, @"/");
}

std::vector<std::string> listedPaths() {
    if (const std::vector<std::string>* told = appkit::volumesBeingTold())
        return *told;
    coreservices::MountList mounts = Machine::ofProcess().mounts();
    std::vector<appkit::Volume> volumes = appkit::mountedVolumes(*mounts, kVolumes);
    appkit::volumesWereListed(volumes);
    std::vector<std::string> paths;
    for (const appkit::Volume& volume : volumes)
        paths.push_back(volume.path);
    return paths;
}

NSArray* mountedLocalVolumePaths(id, SEL) {
    NSMutableArray* paths = [NSMutableArray arrayWithObject:@"/"];
    for (const std::string& path : listedPaths()) {
        NSString* text = [NSString stringWithUTF8String:path.c_str()];
        // Bytes that are no text name nothing that could be asked about later.
        if (text != nil)
            [paths addObject:text];
    }
    return paths;
}

template <class Value>
void store(Value* target, Value value) {
    if (target != nullptr)
        *target = value;
}

BOOL getFileSystemInfo(id, SEL, NSString* path, BOOL* removable, BOOL* writable, BOOL* unmountable,
                       NSString** description, NSString** type) {
    auto info = appkit::fileSystemInfo(pathOf(path), Machine::ofProcess());
    if (!info)
        return NO;
    store<BOOL>(removable, info->isRemovable);
    store<BOOL>(writable, info->isWritable);
    store<BOOL>(unmountable, info->isUnmountable);
    store<NSString*>(description, [NSString stringWithUTF8String:info->description.c_str()]);
    store<NSString*>(type, [NSString stringWithUTF8String:info->type.c_str()]);
    return YES;
}

}  // namespace

@interface ULAWorkspaceVolumes : NSObject
@end

@implementation ULAWorkspaceVolumes

+ (void)load {
    originalIconForFile =
        foundation::replaceInstanceMethod("NSWorkspace", @selector(iconForFile:), iconForFile);
    foundation::replaceInstanceMethod("NSWorkspace", @selector(mountedLocalVolumePaths),
                                      mountedLocalVolumePaths);
    foundation::replaceInstanceMethod(
        "NSWorkspace",
        @selector(getFileSystemInfoForPath:isRemovable:isWritable:isUnmountable:description:type:),
        getFileSystemInfo);
}

@end
