// SPDX-License-Identifier: MIT
#pragma once

#include "AppKit/Trash.h"
#include "CoreFoundation/Descriptor.h"

#include <optional>
#include <string>

namespace appkit {

// Where an item is before it is trashed.
struct TrashableItem {
    int folder;        // its folder, open
    std::string leaf;  // its name there
    std::string path;  // both, absolute and without symbolic links
};

// One trash folder, open for adding to. Everything goes through descriptors, so that folders that
// are renamed or replaced meanwhile lead nowhere else.
class TrashFolder {
public:
    // The user's own. Makes it when it is missing, with the folders above it.
    static std::optional<TrashFolder> openHome(const TrashPlaces& places, int* error);

    // The one at the top of a file system: the shared folder an administrator has made there, or
    // the user's own. A folder that is a link, or another user's, is not trusted.
    static std::optional<TrashFolder> openTop(const coreservices::Mount& mount,
                                              const TrashPlaces& places, int* error);

    // Moves the item here. Its info file exists before it comes and names it alone, since it is
    // made only when there was none.
    // Fails: errno, EXDEV when this folder is not on the item's mount; 0 when done, and `receipt`
    // is filled.
    int put(const TrashableItem& item, std::time_t when, TrashReceipt* receipt) const;

private:
    TrashFolder(cf::Descriptor folder, std::string path, std::string top);
    static std::optional<TrashFolder> open(cf::Descriptor folder, std::string top, int* error);

    std::string pathToRecord(const std::string& path) const;
    int writeInfo(const std::string& name, const std::string& text) const;
    int putAs(const std::string& name, const TrashableItem& item, const std::string& text) const;
    void fillReceipt(const std::string& name, const TrashableItem& item,
                     TrashReceipt* receipt) const;

    std::string _path;
    std::string _top;  // where the file system is mounted; empty for the home trash
    cf::Descriptor _folder;
    cf::Descriptor _files;
    cf::Descriptor _info;
};

}  // namespace appkit
