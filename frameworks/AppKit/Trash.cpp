// SPDX-License-Identifier: MIT
#include "AppKit/Trash.h"

#include "AppKit/MoveItem.h"
#include "AppKit/TrashFolder.h"
#include "CoreFoundation/Descriptor.h"
#include "CoreFoundation/DescriptorPath.h"
#include "CoreServices/MountLookup.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace appkit {

namespace {

TrashStatus statusOf(int error) {
    switch (error) {
    case 0:
        return TrashStatus::Done;
    case ENOENT:
    case ENOTDIR:
        return TrashStatus::Missing;
    case EACCES:
    case EPERM:
        return TrashStatus::NotPermitted;
    case EROFS:
        return TrashStatus::ReadOnly;
    case EBUSY:
        return TrashStatus::MountPoint;
    default:
        return TrashStatus::Failed;
    }
}

TrashOutcome failure(TrashStatus status, int error = 0) {
    TrashOutcome outcome;
    outcome.status = status;
    outcome.systemError = error;
    return outcome;
}

struct ItemPlace {
    cf::Descriptor folder;
    TrashableItem item;
    struct statx folderInfo {};
    struct statx itemInfo {};
};

bool readInfo(int folder, const char* name, int flags, struct statx* info) {
    constexpr unsigned wanted = STATX_BASIC_STATS | STATX_MNT_ID;
    return statx(folder, name, flags | AT_NO_AUTOMOUNT, wanted, info) == 0;
}

bool sameDevice(const struct statx& a, const struct stat& b) {
    return makedev(a.stx_dev_major, a.stx_dev_minor) == b.st_dev;
}

// The folder and name a path ends in, slashes at the end left out. No name for "/", "." and "..",
// which are folders seen from within.
std::pair<std::string, std::string> splitPath(std::string path) {
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    size_t slash = path.rfind('/');
    std::string leaf = slash == std::string::npos ? path : path.substr(slash + 1);
    if (leaf == "." || leaf == "..")
        leaf.clear();
    if (slash == std::string::npos)
        return {".", leaf};
    return {slash == 0 ? "/" : path.substr(0, slash), leaf};
}

// Holds on to the item's folder, so that the item is found by its name there whatever happens to
// the folder's own.
int findItem(const std::string& path, ItemPlace* place) {
    auto [folder, leaf] = splitPath(path);
    if (leaf.empty() || path.find('\0') != std::string::npos)
        return path.empty() ? ENOENT : EINVAL;
    place->folder = cf::Descriptor(open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!place->folder)
        return errno;
    place->item = {place->folder.get(), leaf, cf::pathOfDescriptor(place->folder.get())};
    place->item.path += place->item.path == "/" ? leaf : "/" + leaf;
    bool known = readInfo(place->item.folder, "", AT_EMPTY_PATH, &place->folderInfo) &&
                 readInfo(place->item.folder, leaf.c_str(), AT_SYMLINK_NOFOLLOW, &place->itemInfo);
    return known ? 0 : errno;
}

bool isWithin(const std::string& path, const std::string& folder) {
    return path.size() > folder.size() && path.compare(0, folder.size(), folder) == 0 &&
           path[folder.size()] == '/';
}

bool hasFolder(const std::string& path, const std::string& folder) {
    return path.find(folder + "/") != std::string::npos ||
           (path.size() >= folder.size() &&
            path.compare(path.size() - folder.size(), folder.size(), folder) == 0);
}

// A trash folder of the user's, what is in one, and what the home trash is in.
bool touchesTrash(const std::string& path, const TrashPlaces& places) {
    const std::string& home = places.homeTrash;
    bool touchesHome =
        !home.empty() && (path == home || isWithin(path, home) || isWithin(home, path));
    std::string user = std::to_string(places.user);
    return touchesHome || hasFolder(path, "/.Trash-" + user) || hasFolder(path, "/.Trash/" + user);
}

// What the nearest folder of a path that exists is on: where the rest would be made.
std::optional<struct stat> deviceOf(std::string path) {
    struct stat info;
    while (stat(path.c_str(), &info) != 0) {
        size_t slash = path.rfind('/');
        if (slash == std::string::npos || path == "/")
            return std::nullopt;
        path.resize(std::max<size_t>(slash, 1));
    }
    return info;
}

std::optional<coreservices::Mount> mountOf(const struct statx& info) {
    if ((info.stx_mask & STATX_MNT_ID) == 0)
        return std::nullopt;
    const coreservices::MountList mounts = coreservices::currentMounts();
    for (const coreservices::Mount& mount : *mounts)
        if (mount.id == info.stx_mnt_id)
            return mount;
    return std::nullopt;
}

TrashOutcome putInto(const std::optional<TrashFolder>& trash, int openError,
                     const TrashableItem& item, const TrashPlaces& places) {
    if (!trash)
        return failure(TrashStatus::NoTrash, openError);
    TrashOutcome outcome;
    outcome.systemError = trash->put(item, places.clock(), &outcome.receipt);
    outcome.status = statusOf(outcome.systemError);
    return outcome;
}

TrashOutcome putIntoTop(const ItemPlace& place, const TrashPlaces& places) {
    std::optional<coreservices::Mount> mount = mountOf(place.folderInfo);
    if (!mount || !isWithin(place.item.path, mount->point == "/" ? "" : mount->point) ||
        !places.mayHoldTrash(*mount))
        return failure(TrashStatus::NoTrash, ENOTSUP);
    int error = 0;
    auto trash = TrashFolder::openTop(*mount, places, &error);
    return putInto(trash, error, place.item, places);
}

}  // namespace

// The home trash first when it is on the same device. That is not yet the same mount: where the
// move says so, the item's own mount decides.
TrashOutcome moveToTrash(const std::string& path, const TrashPlaces& places) {
    ItemPlace place;
    if (int error = findItem(path, &place))
        return failure(statusOf(error), error);
    if (touchesTrash(place.item.path, places))
        return failure(TrashStatus::InTrash);
    if (place.itemInfo.stx_mnt_id != place.folderInfo.stx_mnt_id)
        return failure(TrashStatus::MountPoint, EBUSY);
    std::optional<struct stat> home = deviceOf(places.homeTrash);
    if (home && sameDevice(place.folderInfo, *home)) {
        int error = 0;
        auto trash = TrashFolder::openHome(places, &error);
        TrashOutcome outcome = putInto(trash, error, place.item, places);
        if (outcome.systemError != EXDEV)
            return outcome;
    }
    return putIntoTop(place, places);
}

bool recycle(const std::vector<std::string>& paths) noexcept {
    try {
        bool all = true;
        const TrashPlaces places = TrashPlaces::ofProcess();
        for (const std::string& path : paths)
            all = moveToTrash(path, places).done() && all;
        return all;
    } catch (...) {
        return false;
    }
}

std::string TrashOutcome::explanation() const {
    static constexpr const char* texts[] = {"done",
                                            "there is no such item",
                                            "the folder may not be changed",
                                            "the file system is read-only",
                                            "a file system is mounted there",
                                            "it belongs to the trash",
                                            "its file system has no trash",
                                            "another item is in its place",
                                            "another item has its name in the trash",
                                            "it could not be moved"};
    std::string text = texts[static_cast<size_t>(status)];
    return systemError == 0 ? text : text + " (" + strerrordesc_np(systemError) + ")";
}

}  // namespace appkit
