// SPDX-License-Identifier: MIT
#include "CoreServices/MountLookup.h"
#include "CoreServices/MountSerials.h"
#include "CoreServices/Patience.h"
#include "CoreServices/StallingMount.h"
#include "ImageCapture/CardFolder.h"

#include <chrono>
#include <set>
#include <sys/stat.h>

namespace imagecapture {

using coreservices::Mount;

namespace {

constexpr std::chrono::seconds kCardPatience{2};

bool isFolder(const std::string& path) {
    struct stat info {};
    return lstat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

// As cards of FAT show it, with either spelling.
std::string pictureFolder(const Mount& mount) {
    for (const char* name : {"/DCIM", "/dcim"})
        if (isFolder(mount.point + name))
            return mount.point + name;
    return {};
}

// A card lies on a disk. A share may have such a folder, too, and never answer.
bool mayBeCard(const Mount& mount) {
    bool isWhole = mount.root == "/" && mount.point != "/";
    bool isDisk = mount.source.starts_with("/dev/");
    return isWhole && isDisk && !coreservices::mayStall(mount);
}

// One that is worn out may take long.
std::string askForPictures(const Mount& mount) {
    return coreservices::askPatiently<std::string>("card " + mount.point, kCardPatience,
                                                   [mount] { return pictureFolder(mount); })
        .value_or("");
}

std::string nameOf(const Mount& mount) {
    return mount.point.substr(mount.point.rfind('/') + 1);
}

uint64_t serialOf(const Mount& mount, const std::map<uint64_t, uint64_t>& serials) {
    auto found = serials.find(mount.id);
    return found == serials.end() ? 0 : found->second;
}

}  // namespace

std::vector<FoundDevice> MountedCards::look() {
    std::vector<FoundDevice> found;
    std::set<std::string> devices;
    const std::map<uint64_t, uint64_t> serials = coreservices::mountSerials();
    const coreservices::MountList mounts = coreservices::currentMounts();
    for (const Mount& mount : *mounts) {
        if (!mayBeCard(mount) || devices.contains(mount.device))
            continue;
        std::string pictures = askForPictures(mount);
        if (pictures.empty())
            continue;
        devices.insert(mount.device);
        std::string identity = "card " + mount.point + " " + mount.device + " " +
                               std::to_string(mount.id) + " " +
                               std::to_string(serialOf(mount, serials));
        found.push_back({identity, nameOf(mount), Kind::CardReader,
                         [pictures] { return std::make_unique<CardFolder>(pictures); }});
    }
    return found;
}

}  // namespace imagecapture
