// SPDX-License-Identifier: MIT
// Moving files and folders to the trash and back, by the rules the Linux desktops share: the
// user's own trash folder, and one at the top of every other file system.
#pragma once

#include "AppKit/ItemIdentity.h"
#include "CoreServices/MountInfo.h"

#include <ctime>
#include <functional>
#include <string>
#include <sys/types.h>
#include <vector>

#define TRASH_EXPORT __attribute__((visibility("default")))

namespace appkit {

enum class TrashStatus {
    Done,
    Missing,       // no such item, or a receipt whose item has left the trash
    NotPermitted,  // a folder that this user may not change
    ReadOnly,      // a file system that nobody may change
    MountPoint,    // another file system is mounted there
    InTrash,       // the item is a trash folder or in one, or holds the user's
    NoTrash,       // its file system has no trash folder and none can be made there
    PlaceTaken,    // something else is where the item came from
    ItemChanged,   // something else has the item's name in the trash
    Failed,        // anything else: see systemError
};

// Where an item went. The paths may hold any bytes but zero.
struct TrashReceipt {
    std::string originalPath;  // absolute, no symbolic links in its folder part
    std::string trashedPath;
    std::string infoPath;
    // Which item it was, so that another of that name is not taken for it.
    ItemIdentity identity;
};

struct TrashOutcome {
    TrashStatus status = TrashStatus::Failed;
    int systemError = 0;  // errno of the call that failed, 0 when none did
    TrashReceipt receipt;

    bool done() const { return status == TrashStatus::Done; }
    // The status, and the system's own words for the error, in English.
    TRASH_EXPORT std::string explanation() const;
};

// What the trash depends on outside the items themselves.
struct TrashPlaces {
    std::string homeTrash;  // the user's trash folder; need not exist; empty for none
    uid_t user = 0;
    // Whether a trash folder may be put on a file system that is not the home trash's.
    std::function<bool(const coreservices::Mount&)> mayHoldTrash;
    std::function<std::time_t()> clock;

    // XDG_DATA_HOME or HOME, the effective user, the real clock; and no trash on file systems that
    // the desktops regard as the system's own, for none of them would ever show it.
    TRASH_EXPORT static TrashPlaces ofProcess();
};

// Moves one item to the trash; a symbolic link goes there itself, not what it leads to. Nothing is
// copied and nothing replaced: an item is either where it was or whole in the trash. The receipt is
// filled when done.
// Thread: any, also other processes at the same time on the same trash.
TRASH_EXPORT TrashOutcome moveToTrash(const std::string& path, const TrashPlaces& places);

// Puts an item back where the receipt says it was, making the folders that have gone since. What
// has taken its place stays: PlaceTaken. When that place is now on another file system the item is
// copied, under another name until it is whole. The receipt is returned.
// Thread: any.
TRASH_EXPORT TrashOutcome restoreFromTrash(const TrashReceipt& receipt);

// The items of the trash that came from `originalPath`, as their info files say, whoever trashed
// them; the last one trashed comes first. Looks into the user's own trash and into those of the
// file systems above the path.
// Thread: any.
TRASH_EXPORT std::vector<TrashReceipt> findInTrash(const std::string& originalPath,
                                                   const TrashPlaces& places);

// Moves all to the process's trash, attempting every one. False when one did not get there.
TRASH_EXPORT bool recycle(const std::vector<std::string>& paths) noexcept;

}  // namespace appkit
