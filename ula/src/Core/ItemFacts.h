// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace tav::ula {

/// What launch services tell of an item.
struct ItemAttributes {
    std::string displayName;
    bool isInvisible = false;
    // To which types its content conforms.
    bool isSymbolicLink = false;
    bool isFolder = false;
    bool isResolvable = false;
    bool isPackage = false;
    bool isVolume = false;
};

/// Answers the questions that make up a `FileProperties`, each when it is asked: a question that is
/// not asked costs nothing. One item each.
/// Thread: one.
class ItemFacts {
public:
    virtual ~ItemFacts() = default;

    /// The last component of the path. False when the path is no text of the platform's.
    virtual bool name(std::string& name) = 0;
    virtual bool isReadable() = 0;
    /// Links followed.
    virtual bool exists(bool& isDirectory) = 0;
    virtual bool isWritable() = 0;
    /// False when launch services cannot tell.
    virtual bool attributes(ItemAttributes& attributes) = 0;
    /// The path without symbolic links.
    virtual std::string resolvedPath() = 0;
    /// Of what conforms to "resolvable": whether it is an alias of a folder or a disk.
    virtual bool isAliasOfFolderOrDisk() = 0;
    /// Where the alias leads as far as can be found without the user. False when it cannot.
    virtual bool resolveAlias(std::string& path) = 0;
    /// "/Volumes/" and the name of the start-up disk.
    virtual const std::string& startupVolume() = 0;
};

}  // namespace tav::ula
