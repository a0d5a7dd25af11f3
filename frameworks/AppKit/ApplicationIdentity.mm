// SPDX-License-Identifier: MIT
#include "AppKit/ApplicationIdentity.h"

#include "CoreFoundation/AutoreleasePool.h"
#import "Foundation/PropertyListFile.h"

#import <Foundation/Foundation.h>

#include <initializer_list>
#include <map>
#include <mutex>
#include <sys/stat.h>
#include <unistd.h>

namespace appkit {

namespace {

constexpr std::string_view kPrograms = "/Contents/MacOS";
constexpr std::string_view kSuffix = ".app";

struct Properties {
    std::string name;
    std::string identifier;
    std::string executable;
};

std::string folderOf(const std::string& path) {
    const size_t slash = path.rfind('/');
    return slash == std::string::npos ? "" : path.substr(0, slash);
}

std::string nameOf(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

std::string firstText(NSDictionary* list, std::initializer_list<NSString*> keys) {
    for (NSString* key : keys) {
        id value = [list objectForKey:key];
        if ([value isKindOfClass:[NSString class]] && [value length] != 0)
            return [value UTF8String];
    }
    return {};
}

Properties read(const std::string& path) {
    const cf::AutoreleasePool pool;
    NSDictionary* const list = foundation::propertyListAt(path);
    return {firstText(list, {@"CFBundleDisplayName", @"CFBundleName", @"ApplicationName"}),
            firstText(list, {@"CFBundleIdentifier"}),
            firstText(list, {@"CFBundleExecutable", @"NSExecutable"})};
}

struct Known {
    timespec changed;
    ino_t item;
    Properties properties;
};

bool isUnchanged(const Known& known, const struct stat& item) {
    return known.item == item.st_ino && known.changed.tv_sec == item.st_mtim.tv_sec &&
           known.changed.tv_nsec == item.st_mtim.tv_nsec;
}

// Nothing when there is no such file.
std::optional<Properties> propertiesAt(const std::string& path) {
    struct stat item {};
    if (stat(path.c_str(), &item) != 0)
        return std::nullopt;
    static std::mutex mutex;
    // Never destroyed: other threads may ask until the very end.
    static auto* lists = new std::map<std::string, Known>;
    const std::lock_guard lock(mutex);
    auto known = lists->find(path);
    if (known == lists->end() || !isUnchanged(known->second, item))
        known = lists->insert_or_assign(path, Known{item.st_mtim, item.st_ino, read(path)}).first;
    return known->second.properties;
}

std::optional<Properties> propertiesOf(const std::string& bundle) {
    for (const char* place : {"/Contents/Info.plist", "/Resources/Info-gnustep.plist"})
        if (auto properties = propertiesAt(bundle + place))
            return properties;
    return std::nullopt;
}

// Empty for a program that lies in none.
std::string bundleOf(const std::string& program) {
    const std::string folder = folderOf(program);
    if (folder.ends_with(kPrograms))
        return folder.substr(0, folder.size() - kPrograms.size());
    return folder.ends_with(kSuffix) ? folder : "";
}

}  // namespace

std::optional<ApplicationIdentity> bundleIdentity(const std::string& program) {
    const std::string bundle = bundleOf(program);
    const std::optional<Properties> properties =
        bundle.empty() ? std::nullopt : propertiesOf(bundle);
    if (!properties ||
        (!properties->executable.empty() && properties->executable != nameOf(program)))
        return std::nullopt;
    ApplicationIdentity identity{properties->name, properties->identifier, bundle};
    if (identity.name.empty()) {
        identity.name = nameOf(bundle);
        if (identity.name.ends_with(kSuffix))
            identity.name.resize(identity.name.size() - kSuffix.size());
    }
    return identity;
}

std::string programOfBundle(const std::string& bundle) {
    const std::optional<Properties> properties = propertiesOf(bundle);
    if (!properties || properties->executable.find('/') != std::string::npos)
        return {};
    std::string name = properties->executable.empty() ? nameOf(bundle) : properties->executable;
    if (properties->executable.empty() && name.ends_with(kSuffix))
        name.resize(name.size() - kSuffix.size());
    for (const std::string& program :
         {bundle + std::string(kPrograms) + "/" + name, bundle + "/" + name})
        if (struct stat item{}; stat(program.c_str(), &item) == 0 && S_ISREG(item.st_mode) &&
                                access(program.c_str(), X_OK) == 0)
            return program;
    return {};
}

}  // namespace appkit
