// SPDX-License-Identifier: MIT
#include "AppKit/Trash.h"

#include "AppKit/ItemCopy.h"
#include "AppKit/MoveItem.h"
#include "CoreFoundation/Descriptor.h"

#include <cerrno>
#include <fcntl.h>
#include <random>
#include <sys/stat.h>

namespace appkit {

namespace {

// An open folder and a name in it.
struct OpenPlace {
    cf::Descriptor folder;
    Place place;
};

int openPlace(const std::string& path, OpenPlace* opened) {
    size_t slash = path.rfind('/');
    if (slash == std::string::npos || slash + 1 == path.size() || path[0] != '/')
        return EINVAL;
    std::string folder = slash == 0 ? "/" : path.substr(0, slash);
    opened->folder = cf::Descriptor(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    opened->place = {opened->folder.get(), path.substr(slash + 1)};
    return opened->folder ? 0 : errno;
}

// Makes the folders above a path that are missing.
int makeFoldersAbove(const std::string& path) {
    for (size_t end = path.find('/', 1); end != std::string::npos; end = path.find('/', end + 1)) {
        struct stat info;
        std::string folder = path.substr(0, end);
        if (stat(folder.c_str(), &info) != 0 && mkdir(folder.c_str(), 0777) != 0 && errno != EEXIST)
            return errno;
    }
    return 0;
}

TrashStatus restoreStatusOf(int error) {
    switch (error) {
    case 0:
        return TrashStatus::Done;
    case EEXIST:
        return TrashStatus::PlaceTaken;
    case EACCES:
    case EPERM:
        return TrashStatus::NotPermitted;
    case EROFS:
        return TrashStatus::ReadOnly;
    default:
        return TrashStatus::Failed;
    }
}

// Across file systems: whole under a name of its own first, then in place. The item stays in the
// trash until its copy is in place.
int copyBack(const Place& from, const Place& to) {
    struct stat info;
    if (fstatat(to.folder, to.name.c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0)
        return EEXIST;
    Place temporary{to.folder, ".restoring-" + std::to_string(std::random_device()())};
    if (int error = copyItem(from, temporary))
        return error == EEXIST ? EAGAIN : error;
    if (int error = moveWithoutReplacing(temporary, to)) {
        removeItem(temporary);
        return error;
    }
    // It is back; what cannot be taken from the trash now is there twice.
    removeItem(from);
    return 0;
}

// Looks whether the item in the trash is the one the receipt tells of.
TrashStatus checkItem(const Place& trashed, const TrashReceipt& receipt) {
    ItemIdentity identity;
    if (!readIdentity(trashed.folder, trashed.name, &identity))
        return TrashStatus::Missing;
    return identity == receipt.identity ? TrashStatus::Done : TrashStatus::ItemChanged;
}

}  // namespace

TrashOutcome restoreFromTrash(const TrashReceipt& receipt) {
    TrashOutcome outcome{TrashStatus::Missing, 0, receipt};
    OpenPlace trashed, original;
    outcome.systemError = openPlace(receipt.trashedPath, &trashed);
    if (outcome.systemError != 0)
        return outcome;
    outcome.status = checkItem(trashed.place, receipt);
    if (!outcome.done())
        return outcome;
    int error = makeFoldersAbove(receipt.originalPath);
    if (error == 0)
        error = openPlace(receipt.originalPath, &original);
    if (error == 0)
        error = moveWithoutReplacing(trashed.place, original.place);
    if (error == EXDEV)
        error = copyBack(trashed.place, original.place);
    if (error == 0)
        unlink(receipt.infoPath.c_str());
    outcome.status = restoreStatusOf(error);
    outcome.systemError = error;
    return outcome;
}

}  // namespace appkit
