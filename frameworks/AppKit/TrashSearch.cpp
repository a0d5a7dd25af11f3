// SPDX-License-Identifier: MIT
#include "AppKit/Trash.h"
#include "AppKit/TrashInfo.h"
#include "CoreServices/MountLookup.h"

#include <algorithm>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <sys/stat.h>
#include <tuple>

namespace appkit {

namespace {

namespace fs = std::filesystem;

// A trash to look into, and what the paths of its info files count from.
struct TrashToSearch {
    std::string path;
    std::string top;
};

struct Found {
    std::string date;
    fs::file_time_type infoTime;  // tells items of one second apart
    TrashReceipt receipt;
};

// As receipts have it: the folders without links, the item itself as it is named.
std::string withFoldersResolved(const std::string& path) {
    std::error_code error;
    fs::path whole = fs::absolute(path, error);
    if (!whole.has_filename())
        whole = whole.parent_path();
    fs::path folder = fs::weakly_canonical(whole.parent_path(), error);
    return error ? path : (folder / whole.filename()).string();
}

// A folder of the user's own that is no link: another may have been put there for us to follow.
bool isOwnFolder(const std::string& path, uid_t user) {
    struct stat info;
    return lstat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode) && info.st_uid == user;
}

std::vector<TrashToSearch> trashesFor(const std::string& path, const TrashPlaces& places) {
    std::vector<TrashToSearch> trashes;
    if (!places.homeTrash.empty())
        trashes.push_back({places.homeTrash, ""});
    std::string user = std::to_string(places.user);
    const coreservices::MountList mounts = coreservices::currentMounts();
    for (const coreservices::Mount& mount : *mounts) {
        std::string top = mount.point == "/" ? "/" : mount.point + "/";
        if (path.compare(0, top.size(), top) != 0 || !places.mayHoldTrash(mount))
            continue;
        for (const std::string& name : {".Trash/" + user, ".Trash-" + user})
            if (isOwnFolder(top + name, places.user))
                trashes.push_back({top + name, top});
    }
    return trashes;
}

std::optional<TrashInfo> readInfo(const fs::path& path) {
    constexpr std::uintmax_t most = 64 * 1024;
    std::error_code error;
    if (!fs::is_regular_file(fs::symlink_status(path, error)) || fs::file_size(path, error) > most)
        return std::nullopt;
    std::ifstream file(path, std::ios::binary);
    return parseTrashInfo(std::string(std::istreambuf_iterator<char>(file), {}));
}

// The item that the info file tells of, when it came from `original` and is still there.
std::optional<Found> itemOf(const fs::path& infoPath, const TrashToSearch& trash,
                            const std::string& original) {
    std::optional<TrashInfo> info = readInfo(infoPath);
    if (!info || info->path.empty())
        return std::nullopt;
    std::string path = info->path[0] == '/' ? info->path : trash.top + info->path;
    if (path != original)
        return std::nullopt;
    std::string trashed = trash.path + "/files/" + infoPath.stem().string();
    std::error_code error;
    Found found{info->date,
                fs::last_write_time(infoPath, error),
                {original, trashed, infoPath.string(), {}}};
    if (!readIdentity(AT_FDCWD, trashed, &found.receipt.identity))
        return std::nullopt;
    return found;
}

}  // namespace

std::vector<TrashReceipt> findInTrash(const std::string& originalPath, const TrashPlaces& places) {
    std::string original = withFoldersResolved(originalPath);
    std::vector<Found> all;
    for (const TrashToSearch& trash : trashesFor(original, places)) {
        std::error_code error;
        for (fs::directory_iterator entry(trash.path + "/info", error), end; !error && entry != end;
             entry.increment(error))
            if (entry->path().extension() == kTrashInfoSuffix)
                if (auto found = itemOf(entry->path(), trash, original))
                    all.push_back(std::move(*found));
    }
    std::sort(all.begin(), all.end(), [](const Found& a, const Found& b) {
        return std::tie(a.date, a.infoTime) > std::tie(b.date, b.infoTime);
    });
    std::vector<TrashReceipt> receipts;
    for (Found& found : all)
        receipts.push_back(std::move(found.receipt));
    return receipts;
}

}  // namespace appkit
