// SPDX-License-Identifier: MIT
#pragma once

#include "CoreServices/ItemType.h"

#include <memory>
#include <string>
#include <string_view>

namespace coreservices {

// An entry of a folder. The name is followed by a zero byte and lives until the next entry.
struct FolderEntry {
    enum class Kind { File, Folder, Link, Other };

    std::string_view name;
    Kind kind;  // what the folder itself tells; Other where it does not
};

// What one look at an entry tells.
struct EntryFacts {
    // Whether the rest holds: for files, folders and links. Aliases, mount points, what is gone and
    // what has no proper name want a longer examination.
    bool isOrdinary = false;
    bool isReadable = false;  // with links followed, as all but the type
    bool isDirectory = false;
    bool isWritable = false;
    bool isInvisible = false;
    ItemType type = ItemType::Other;
    std::string target;  // of a link: where it leads, as resolvedPath() gives it
};

// Lists a folder whole, with what there is to know of each entry at the price of one system call,
// or of a few for a link: the same as the file manager and launch services answer one by one.
// Entries come in the file system's order. What leads to a mount that does not answer counts as
// unreadable after a while; other entries do not wait for it.
// Thread: one.
class __attribute__((visibility("default"))) FolderListing {
public:
    // A folder that cannot be opened has no entries.
    explicit FolderListing(const std::string& folder);
    ~FolderListing();
    FolderListing(const FolderListing&) = delete;
    FolderListing& operator=(const FolderListing&) = delete;

    // False behind the last entry. "." and ".." are not listed.
    bool next(FolderEntry& entry);

    // Whether the entry, from what `next` told of it alone, can be nothing but a plain file.
    static bool isPlainFileByName(const FolderEntry& entry);

    // Looks at the entry that `next` gave last.
    EntryFacts look(const FolderEntry& entry);

    // Of the folder, as resolvedPath() gives it. Found when first asked for.
    const std::string& resolvedFolder();

private:
    struct Folder;
    bool fill();
    void lookAtItem(const FolderEntry& entry, EntryFacts& facts);
    void lookAtLink(const FolderEntry& entry, EntryFacts& facts);
    bool answers(const FolderEntry& entry);

    std::unique_ptr<Folder> _folder;
};

}  // namespace coreservices
