// SPDX-License-Identifier: MIT
#include "ula/src/Core/ItemExamination.h"

#include "ula/NSPathUtil.h"
#include "ula/src/Core/ItemFacts.h"

#include <algorithm>
#include <string_view>

namespace tav::ula {

namespace {

constexpr std::string_view kVolumes = "/Volumes";

bool startsWith(const std::string& text, std::string_view start) {
    return std::string_view(text).substr(0, start.size()) == start;
}

/// What a folder or a link is, once links are resolved. Paths on the start-up disk are compared in
/// the form that the list of drives gives it, so that a folder given as "/home" counts as a link to
/// "/Volumes/Linux/home"; this is meant.
void followLink(ItemFacts& facts, FileProperties& properties) {
    const std::string& path = properties.fullPath();
    std::string resolved = facts.resolvedPath();
    if (resolved == "/") {
        properties.setFlag(Link, true);
        properties.setTargetPath(path);
        return;
    }
    if (!startsWith(resolved, kVolumes))
        resolved.insert(0, facts.startupVolume());
    properties.setFlag(Link, resolved != path);
    if (properties.isFlagSet(Link))
        properties.setTargetPath(std::move(resolved));
}

/// An alias of a plain file is left a file.
void followAlias(ItemFacts& facts, FileProperties& properties) {
    if (!facts.isAliasOfFolderOrDisk())
        return;
    properties.setFlag(Alias, true);
    std::string target;
    const bool found = facts.resolveAlias(target);
    properties.setFlag(UnresolvedAlias, !found);
    if (found)
        properties.setTargetPath(std::move(target));
}

void normalizeTarget(FileProperties& properties) {
    if (properties.targetPath().empty())
        properties.setTargetPath(properties.fullPath());
    else
        properties.setTargetPath(
            NSPathUtilNameSpace::normalizeMacPathToRoot(properties.targetPath()));
}

/// The system's own folders at the top of the start-up disk, and there only.
bool isSystemFolder(const std::string& path, const std::string& startupVolume) {
    constexpr std::string_view kFolders[] = {"/tmp",       "/Network", "/etc",  "/var",
                                             "/automount", "/net",     "/home", "/dev"};
    if (!startsWith(path, startupVolume))
        return false;
    const std::string_view rest = std::string_view(path).substr(startupVolume.size());
    return std::find(std::begin(kFolders), std::end(kFolders), rest) != std::end(kFolders);
}

/// What follows from the attributes, in this order.
void applyAttributes(ItemAttributes& attributes, ItemFacts& facts, FileProperties& properties) {
    properties.setFlag(Hidden, attributes.isInvisible || attributes.displayName.empty());
    properties.setTitle(std::move(attributes.displayName));
    if (attributes.isSymbolicLink || attributes.isFolder)
        followLink(facts, properties);
    else if (attributes.isResolvable)
        followAlias(facts, properties);
    // Packages count as hidden items, not as folders to look into.
    if (attributes.isPackage)
        properties.setFlag(Hidden, true);
    if (attributes.isVolume)
        properties.setFlag(MountPoint, true);
    if (properties.isFlagSet(Link) || properties.isFlagSet(Alias)) {
        properties.setFlag(Directory, false);
        properties.setTitle(properties.name());
    }
}

void hideSystemItem(ItemFacts& facts, FileProperties& properties) {
    const std::string& name = properties.name();
    properties.setFlag(Hidden, name == "." || name == ".." ||
                                   isSystemFolder(properties.targetPath(), facts.startupVolume()));
}

}  // namespace

FileProperties examineItem(std::string path, ItemFacts& facts) {
    FileProperties properties;
    properties.setFullPath(std::move(path));
    properties.setFlag(Hidden, true);
    std::string name;
    if (!facts.name(name))
        return properties;
    properties.setName(std::move(name));
    bool isDirectory = false;
    if (!facts.isReadable() || !facts.exists(isDirectory))
        return properties;
    properties.setFlag(Directory, isDirectory);
    properties.setFlag(ReadOnly, !facts.isWritable());
    ItemAttributes attributes;
    if (!facts.attributes(attributes))
        return properties;
    applyAttributes(attributes, facts, properties);
    normalizeTarget(properties);
    if (!properties.isFlagSet(Hidden))
        hideSystemItem(facts, properties);
    return properties;
}

}  // namespace tav::ula
