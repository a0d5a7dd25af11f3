// SPDX-License-Identifier: MIT
#include "AppKit/TrashFolder.h"

#include "AppKit/MoveItem.h"
#include "AppKit/TrashInfo.h"
#include "CoreFoundation/DescriptorPath.h"
#include "CoreFoundation/WholeContent.h"

#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <sys/stat.h>

namespace appkit {

namespace {

constexpr unsigned kMostAttempts = 1000;

cf::Descriptor openFolder(int parent, const std::string& name) {
    return cf::Descriptor(
        openat(parent, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

// Opens a folder, made if it is missing. Links are not followed.
cf::Descriptor openOrMake(int parent, const std::string& name) {
    if (mkdirat(parent, name.c_str(), 0700) != 0 && errno != EEXIST)
        return {};
    return openFolder(parent, name);
}

// Makes a folder and those above it.
bool makeFolders(const std::string& path) {
    for (size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
        if (mkdir(path.substr(0, end).c_str(), 0700) != 0 && errno != EEXIST)
            return false;
        if (end == std::string::npos)
            return true;
    }
}

bool belongsTo(int folder, uid_t user) {
    struct stat info;
    if (fstat(folder, &info) != 0)
        return false;
    errno = EPERM;
    return info.st_uid == user;
}

bool isSticky(int folder) {
    struct stat info;
    return fstat(folder, &info) == 0 && (info.st_mode & S_ISVTX) != 0;
}

// The user's folder within the one an administrator has set up for all.
cf::Descriptor openShared(int top, uid_t user) {
    cf::Descriptor shared = openFolder(top, ".Trash");
    if (!shared || !isSticky(shared.get()))
        return {};
    cf::Descriptor own = openOrMake(shared.get(), std::to_string(user));
    return own && belongsTo(own.get(), user) ? std::move(own) : cf::Descriptor();
}

cf::Descriptor openOwn(int top, uid_t user) {
    cf::Descriptor own = openOrMake(top, ".Trash-" + std::to_string(user));
    return own && belongsTo(own.get(), user) ? std::move(own) : cf::Descriptor();
}

size_t longestName(int folder) {
    long length = fpathconf(folder, _PC_NAME_MAX);
    return length > 0 ? static_cast<size_t>(length) : NAME_MAX;
}

}  // namespace

TrashFolder::TrashFolder(cf::Descriptor folder, std::string path, std::string top)
    : _path(std::move(path)),
      _top(std::move(top)),
      _folder(std::move(folder)),
      _files(openOrMake(_folder.get(), "files")),
      _info(openOrMake(_folder.get(), "info")) {
}

std::optional<TrashFolder> TrashFolder::open(cf::Descriptor folder, std::string top, int* error) {
    *error = errno;
    if (!folder)
        return std::nullopt;
    std::string path = cf::pathOfDescriptor(folder.get());
    TrashFolder trash(std::move(folder), std::move(path), std::move(top));
    *error = errno;
    if (!trash._files || !trash._info)
        return std::nullopt;
    return trash;
}

std::optional<TrashFolder> TrashFolder::openHome(const TrashPlaces& places, int* error) {
    *error = ENOENT;
    if (places.homeTrash.empty() || places.homeTrash[0] != '/')
        return std::nullopt;
    cf::Descriptor folder;
    if (makeFolders(places.homeTrash))
        folder =
            cf::Descriptor(::open(places.homeTrash.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return open(std::move(folder), {}, error);
}

std::optional<TrashFolder> TrashFolder::openTop(const coreservices::Mount& mount,
                                                const TrashPlaces& places, int* error) {
    cf::Descriptor top(::open(mount.point.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    *error = errno;
    if (!top)
        return std::nullopt;
    if (auto trash = open(openShared(top.get(), places.user), mount.point, error))
        return trash;
    return open(openOwn(top.get(), places.user), mount.point, error);
}

int TrashFolder::put(const TrashableItem& item, std::time_t when, TrashReceipt* receipt) const {
    std::string text = trashInfoText(pathToRecord(item.path), when);
    size_t longest = longestName(_info.get());
    int error = EEXIST;
    for (unsigned attempt = 0; error == EEXIST && attempt < kMostAttempts; ++attempt) {
        std::string name = trashName(item.leaf, attempt, longest);
        error = putAs(name, item, text);
        if (error == 0)
            fillReceipt(name, item, receipt);
    }
    return error;
}

// On a file system that can be carried to another place, paths count from its top.
std::string TrashFolder::pathToRecord(const std::string& path) const {
    if (_top.empty())
        return path;
    return _top == "/" ? path.substr(1) : path.substr(_top.size() + 1);
}

int TrashFolder::writeInfo(const std::string& name, const std::string& text) const {
    cf::Descriptor file(openat(_info.get(), name.c_str(),
                               O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!file)
        return errno;
    // Some file systems tell of a full disk only when the file is closed.
    if (cf::writeAll(file.get(), text) && ::close(file.release()) == 0)
        return 0;
    int error = errno;
    unlinkat(_info.get(), name.c_str(), 0);
    return error;
}

// The info file alone does not make the name ours: another program may have left an item without
// one, so the move does not replace either.
int TrashFolder::putAs(const std::string& name, const TrashableItem& item,
                       const std::string& text) const {
    std::string infoName = name + std::string(kTrashInfoSuffix);
    if (int error = writeInfo(infoName, text))
        return error;
    int error = moveWithoutReplacing({item.folder, item.leaf}, {_files.get(), name});
    if (error != 0)
        unlinkat(_info.get(), infoName.c_str(), 0);
    return error;
}

void TrashFolder::fillReceipt(const std::string& name, const TrashableItem& item,
                              TrashReceipt* receipt) const {
    receipt->originalPath = item.path;
    receipt->trashedPath = _path + "/files/" + name;
    receipt->infoPath = _path + "/info/" + name + std::string(kTrashInfoSuffix);
    readIdentity(_files.get(), name, &receipt->identity);
}

}  // namespace appkit
