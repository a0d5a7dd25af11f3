// SPDX-License-Identifier: MIT
// GNUstep knows bundles with their resources in Resources only, and takes a program that lies in no
// bundle for one with the path FOLDER/Resources/PROGRAM.
#import <Foundation/Foundation.h>

#include "CoreServices/VolumeLinks.h"
#include "Foundation/BundleLayout.h"
#import "Foundation/PropertyListFile.h"
#include "Foundation/ReplaceMethod.h"

#include <map>
#include <mutex>

using foundation::BundleLayout;

@interface NSBundle (ULALayout)
- (NSString*)ula_bundlePath;
- (NSString*)ula_executablePath;
- (NSDictionary*)ula_infoDictionary;
- (NSString*)ula_privateFrameworksPath;
- (NSString*)ula_resourcePath;
@end

namespace {

/// Nil for nothing.
NSString* text(const std::string& path) {
    return path.empty() ? nil : [NSString stringWithUTF8String:path.c_str()];
}

/// This process's program, on a volume named by that, as GNUstep names it.
const std::string& namedProgram() {
    static const auto* const path = [] {
        const std::string& program = foundation::runningProgram();
        const std::string named = coreservices::resolvedPath(program);
        return new std::string(named.empty() ? program : named);
    }();
    return *path;
}

/// What GNUstep takes for the path of a program that lies in no bundle it knows.
const std::string& pathOfPlainProgram() {
    static const auto* const path = [] {
        const std::string& program = namedProgram();
        const size_t name = program.rfind('/') + 1;
        return new std::string(program.substr(0, name) + "Resources/" + program.substr(name));
    }();
    return *path;
}

/// Nothing where GNUstep's answers are right.
std::optional<BundleLayout> layoutOf(NSBundle* bundle) {
    // By now this is the name of GNUstep's own.
    const char* const path = [[bundle ula_bundlePath] UTF8String];
    if (path == nullptr)
        return std::nullopt;
    if (path == pathOfPlainProgram())
        return foundation::programLayout(namedProgram());
    return foundation::contentsLayout(path);
}

NSDictionary* readInformation(const std::string& path) {
    NSDictionary* const list = foundation::propertyListAt(path);
    return list == nil ? [NSDictionary dictionary] : list;
}

/// Read once, as GNUstep does. Owner: the process.
NSDictionary* information(const BundleLayout& layout) {
    static std::mutex mutex;
    static auto* const known = new std::map<std::string, NSDictionary*>;
    const std::lock_guard lock(mutex);
    auto [entry, isNew] = known->try_emplace(layout.bundle, nil);
    if (isNew)
        entry->second = [readInformation(layout.information) retain];
    return entry->second;
}

}  // namespace

@implementation NSBundle (ULALayout)

+ (void)load {
    // Looked up, not sent a message: that would initialize it before the program has begun.
    Class const bundle = objc_getClass("NSBundle");
    for (const auto& [theirs, ours] : {
             std::pair{@selector(bundlePath), @selector(ula_bundlePath)},
             std::pair{@selector(executablePath), @selector(ula_executablePath)},
             std::pair{@selector(infoDictionary), @selector(ula_infoDictionary)},
             std::pair{@selector(privateFrameworksPath), @selector(ula_privateFrameworksPath)},
             std::pair{@selector(resourcePath), @selector(ula_resourcePath)},
         })
        foundation::exchangeInstanceMethods(bundle, theirs, ours);
}

- (NSString*)ula_bundlePath {
    NSString* const path = [self ula_bundlePath];
    const bool isProgram = path != nil && [path UTF8String] == pathOfPlainProgram();
    return isProgram ? text(layoutOf(self)->bundle) : path;
}

- (NSString*)ula_executablePath {
    const std::optional<BundleLayout> layout = layoutOf(self);
    if (!layout)
        return [self ula_executablePath];
    if (!layout->executable.empty())
        return text(layout->executable);
    NSString* const name = [information(*layout) objectForKey:@"CFBundleExecutable"];
    NSString* const folder =
        [text(layout->bundle) stringByAppendingPathComponent:@"Contents/MacOS"];
    return name == nil ? nil : [folder stringByAppendingPathComponent:name];
}

- (NSDictionary*)ula_infoDictionary {
    const std::optional<BundleLayout> layout = layoutOf(self);
    return layout ? information(*layout) : [self ula_infoDictionary];
}

- (NSString*)ula_privateFrameworksPath {
    const std::optional<BundleLayout> layout = layoutOf(self);
    return layout ? text(layout->frameworks) : [self ula_privateFrameworksPath];
}

- (NSString*)ula_resourcePath {
    const std::optional<BundleLayout> layout = layoutOf(self);
    return layout ? text(layout->resources) : [self ula_resourcePath];
}

@end
