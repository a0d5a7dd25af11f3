// SPDX-License-Identifier: MIT
#include "ula/src/Mac/FolderChildren.h"

#include "ula/src/Core/ItemExamination.h"
#include "ula/src/Mac/ListedItemFacts.h"
#include "ula/src/Mac/VolumesFolder.h"

namespace tav::ula {

using coreservices::EntryFacts;
using coreservices::FolderEntry;
using coreservices::FolderListing;

namespace {

bool canHaveChildren(const FileProperties& item) {
    return !item.targetPath().empty() &&
           (item.isFlagSet(Directory) || item.isFlagSet(Alias) || item.isFlagSet(Link));
}

/// Empty, which is no folder, for what has no children.
std::string folderOf(const FileProperties& item) {
    return canHaveChildren(item) ? item.targetPath() : std::string();
}

}  // namespace

FolderChildren::FolderChildren(const FileProperties& item, bool visibleFoldersOnly)
    : _folder(folderOf(item)),
      _visibleFoldersOnly(visibleFoldersOnly),
      _startupVolume(startupVolume()),
      _listing(_folder) {
}

FileProperties FolderChildren::examine(const FolderEntry& entry) {
    std::string path;
    path.reserve(_folder.size() + 1 + entry.name.size());
    path.append(_folder).push_back('/');
    path.append(entry.name);
    const EntryFacts facts = _listing.look(entry);
    if (!facts.isOrdinary)
        return FileProperties::create(path);
    ListedItemFacts listed(_listing, entry, facts, _startupVolume);
    return examineItem(std::move(path), listed);
}

bool FolderChildren::isKept(const FileProperties& child) const {
    return !_visibleFoldersOnly || (!child.isFlagSet(Hidden) &&
                                    (child.isFlagSet(Directory) || child.isFlagSet(Alias) ||
                                     child.isFlagSet(UnresolvedAlias) || child.isFlagSet(Link)));
}

bool FolderChildren::next(FileProperties& child) {
    FolderEntry entry;
    while (_listing.next(entry)) {
        const bool isRejectedByName =
            _visibleFoldersOnly &&
            (entry.name.front() == '.' || FolderListing::isPlainFileByName(entry));
        if (isRejectedByName)
            continue;
        child = examine(entry);
        if (isKept(child))
            return true;
    }
    return false;
}

bool FolderChildren::skip() {
    FolderEntry entry;
    return _listing.next(entry);
}

}  // namespace tav::ula
