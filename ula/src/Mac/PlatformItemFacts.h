// SPDX-License-Identifier: MIT
#pragma once

#include "ula/src/Core/ItemFacts.h"

#import <Foundation/Foundation.h>

namespace tav::ula {

/// Asks the file manager, launch services and the alias manager about a path.
/// Thread: one; an autorelease pool outlives the object.
class PlatformItemFacts : public ItemFacts {
public:
    explicit PlatformItemFacts(const std::string& path);

    bool name(std::string& name) override;
    bool isReadable() override;
    bool exists(bool& isDirectory) override;
    bool isWritable() override;
    bool attributes(ItemAttributes& attributes) override;
    std::string resolvedPath() override;
    bool isAliasOfFolderOrDisk() override;
    bool resolveAlias(std::string& path) override;
    const std::string& startupVolume() override;

private:
    NSString* const _path;  // nil for bytes that are no text
    bool _isDirectory = false;
    std::string _startupVolume;
};

}  // namespace tav::ula
