// SPDX-License-Identifier: MIT
#include "CoreServices/FolderListing.h"

#include "CoreFoundation/Descriptor.h"
#include "CoreFoundation/DescriptorPath.h"
#include "CoreServices/AccessRights.h"
#include "CoreServices/AliasFile.h"
#include "CoreServices/HiddenNames.h"
#include "CoreServices/MountLookup.h"
#include "CoreServices/Patience.h"
#include "CoreServices/StallingMount.h"
#include "CoreServices/VolumeLinks.h"

#include <algorithm>
#include <chrono>
#include <climits>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <glib.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace coreservices {

namespace {

// Whoever wants to know only whether there is an entry reads few; whoever reads on reads many.
constexpr std::size_t kFirstRead = 1 << 10;
constexpr std::size_t kLargestRead = 1 << 18;
constexpr unsigned int kWanted = STATX_TYPE | STATX_MODE | STATX_UID | STATX_SIZE;
// For a mount that a listing comes across.
constexpr std::chrono::milliseconds kPatience(2000);

// Pipes and the like have names that are no paths, and what was removed has none any more.
bool isPath(std::string_view name) {
    constexpr std::string_view kRemoved = " (deleted)";
    return name.starts_with('/') && !name.ends_with(kRemoved);
}

uint64_t mountOf(int descriptor) {
    struct statx item;
    return statx(descriptor, "", AT_EMPTY_PATH, STATX_MNT_ID, &item) == 0 ? item.stx_mnt_id : 0;
}

bool isSelfOrParent(const char* name) {
    return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

FolderEntry::Kind kindOf(const dirent64& entry) {
    switch (entry.d_type) {
    case DT_REG:
        return FolderEntry::Kind::File;
    case DT_DIR:
        return FolderEntry::Kind::Folder;
    case DT_LNK:
        return FolderEntry::Kind::Link;
    default:
        return FolderEntry::Kind::Other;
    }
}

ItemType typeOfFolder(std::string_view name) {
    if (isApplicationName(name))
        return ItemType::ApplicationBundle;
    return isPackageName(name) ? ItemType::Package : ItemType::Folder;
}

// Nothing for what wants a longer examination.
std::optional<ItemType> ordinaryType(const std::string& folder, std::string_view name,
                                     const struct statx& item) {
    if (S_ISDIR(item.stx_mode) && !isMountRoot(item))
        return typeOfFolder(name);
    if (!S_ISREG(item.stx_mode))
        return std::nullopt;
    if (mayBeAliasFile(name, item.stx_size) && isAliasFile(folder + "/" + std::string(name)))
        return std::nullopt;
    return ItemType::File;
}

}  // namespace

struct FolderListing::Folder {
    Folder(const std::string& path_, cf::Descriptor opened)
        : path(path_),
          descriptor(std::move(opened)),
          mount(mountOf(descriptor.get())),
          rights(descriptor.get()),
          hidden(descriptor.get()) {}

    std::string path;
    cf::Descriptor descriptor;
    uint64_t mount;
    AccessRights rights;
    HiddenNames hidden;
    VolumeLinks links;
    std::optional<std::vector<Mount>> mounts;  // none where all are sure to answer
    std::optional<std::string> stallingMount;  // on the way to the folder itself
    std::optional<std::string> resolved;
    std::vector<char> entries;
    std::size_t used = 0;  // bytes of `entries` that the system filled
    std::size_t position = 0;
};

FolderListing::FolderListing(const std::string& folder) {
    cf::Descriptor opened(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened)
        _folder = std::make_unique<Folder>(folder, std::move(opened));
}

FolderListing::~FolderListing() = default;

bool FolderListing::fill() {
    Folder& folder = *_folder;
    const std::size_t wanted =
        folder.entries.empty() ? kFirstRead : std::min(folder.entries.size() * 16, kLargestRead);
    folder.entries.resize(wanted);
    const ssize_t length = getdents64(folder.descriptor.get(), folder.entries.data(), wanted);
    folder.position = 0;
    folder.used = length > 0 ? static_cast<std::size_t>(length) : 0;
    return length > 0;
}

bool FolderListing::next(FolderEntry& entry) {
    if (_folder == nullptr)
        return false;
    for (;;) {
        if (_folder->position == _folder->used && !fill())
            return false;
        const auto* found =
            reinterpret_cast<const dirent64*>(_folder->entries.data() + _folder->position);
        _folder->position += found->d_reclen;
        if (isSelfOrParent(found->d_name))
            continue;
        entry.name = found->d_name;
        entry.kind = kindOf(*found);
        return true;
    }
}

bool FolderListing::isPlainFileByName(const FolderEntry& entry) {
    // Whatever its size, which the folder does not tell.
    constexpr uint64_t kPlausibleSize = 1 << 10;
    return entry.kind == FolderEntry::Kind::File && !mayBeAliasFile(entry.name, kPlausibleSize);
}

EntryFacts FolderListing::look(const FolderEntry& entry) {
    EntryFacts facts;
    const bool hasProperPath =
        _folder->path.size() + entry.name.size() + 1 < PATH_MAX &&
        g_utf8_validate(entry.name.data(), static_cast<gssize>(entry.name.size()), nullptr);
    if (!hasProperPath)
        return facts;
    facts.isInvisible = _folder->hidden.contains(entry.name);
    if (entry.kind != FolderEntry::Kind::File && !answers(entry))
        facts.isOrdinary = true;
    else if (entry.kind == FolderEntry::Kind::Link)
        lookAtLink(entry, facts);
    else
        lookAtItem(entry, facts);
    return facts;
}

void FolderListing::lookAtItem(const FolderEntry& entry, EntryFacts& facts) {
    const Folder& folder = *_folder;
    const char* const name = entry.name.data();
    struct statx item;
    if (statx(folder.descriptor.get(), name, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, kWanted,
              &item) != 0)
        return;
    const std::optional<ItemType> type = ordinaryType(folder.path, entry.name, item);
    // A folder that was moved away has no place for the folders in it any more.
    if (!type.has_value() || (S_ISDIR(item.stx_mode) && resolvedFolder().empty()))
        return;
    facts.isOrdinary = true;
    facts.type = *type;
    facts.isDirectory = S_ISDIR(item.stx_mode);
    facts.isReadable = folder.rights.isReadable(name, item);
    facts.isWritable = facts.isReadable && folder.rights.isWritable(name, item);
}

void FolderListing::lookAtLink(const FolderEntry& entry, EntryFacts& facts) {
    // There a link may stand for a volume.
    if (resolvedFolder() == kVolumesFolder)
        return;
    const Folder& folder = *_folder;
    const char* const name = entry.name.data();
    facts.isOrdinary = true;
    facts.type = ItemType::SymbolicLink;
    const cf::Descriptor target(openat(folder.descriptor.get(), name, O_PATH | O_CLOEXEC));
    struct statx item;
    if (target.get() < 0 ||
        statx(target.get(), "", AT_EMPTY_PATH, kWanted | STATX_MNT_ID, &item) != 0)
        return;
    const bool isElsewhere = item.stx_mnt_id != folder.mount;
    facts.isDirectory = S_ISDIR(item.stx_mode);
    facts.isReadable = isElsewhere ? faccessat(folder.descriptor.get(), name, R_OK, 0) == 0
                                   : folder.rights.isReadable(name, item);
    facts.isWritable = isElsewhere ? faccessat(folder.descriptor.get(), name, W_OK, 0) == 0
                                   : folder.rights.isWritable(name, item);
    const std::string path = cf::pathOfDescriptor(target.get());
    facts.isOrdinary = isPath(path);
    facts.target = folder.links.name(path);
}

// Whether what the entry leads through can be asked at all.
bool FolderListing::answers(const FolderEntry& entry) {
    Folder& folder = *_folder;
    if (!folder.mounts.has_value()) {
        folder.mounts = *currentMounts();
        if (std::none_of(folder.mounts->begin(), folder.mounts->end(), mayStall))
            folder.mounts->clear();
        folder.stallingMount = stallingMountOn(folder.path, *folder.mounts);
    }
    if (folder.mounts->empty())
        return true;
    const std::string path = folder.path + "/" + std::string(entry.name);
    const std::optional<std::string> mount = stallingMountOn(path, *folder.mounts);
    if (!mount.has_value() || mount == folder.stallingMount)
        return true;
    const auto ask = [path] { return access(path.c_str(), F_OK) == 0; };
    return askPatiently<bool>(*mount, kPatience, ask).has_value();
}

const std::string& FolderListing::resolvedFolder() {
    if (!_folder->resolved.has_value())
        _folder->resolved = resolvedPath(_folder->path);
    return *_folder->resolved;
}

}  // namespace coreservices
