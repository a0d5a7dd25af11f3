// SPDX-License-Identifier: MIT
#pragma once

#include "ula/src/Core/ItemFacts.h"

#include <CoreServices/FolderListing.h>
#include <string>

namespace tav::ula {

/// Answers for an ordinary entry of a listed folder from the one look that the listing took.
class ListedItemFacts : public ItemFacts {
public:
    /// All are borrowed for the object's life.
    ListedItemFacts(coreservices::FolderListing& listing, const coreservices::FolderEntry& entry,
                    const coreservices::EntryFacts& facts, const std::string& startupVolume);

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
    coreservices::FolderListing& _listing;
    const coreservices::FolderEntry& _entry;
    const coreservices::EntryFacts& _facts;
    const std::string& _startupVolume;
};

}  // namespace tav::ula
