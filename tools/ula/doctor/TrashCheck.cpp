// SPDX-License-Identifier: MIT
#include "tools/ula/doctor/TrashCheck.h"

#include "tools/ula/Translation.h"
#include "tools/ula/doctor/Host.h"
#include "tools/ula/doctor/ShellWord.h"

#include <CoreServices/MountLookup.h>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tav::tool::doctor {

namespace {

bool isSeen(const std::string& path) {
    struct stat facts {};
    return lstat(path.c_str(), &facts) == 0 ||
           (errno != ENOENT && errno != ENOTDIR && errno != EACCES);
}

/// The path, or the last one above it that can be seen. A link that leads nowhere can.
std::string existingPart(std::string path) {
    while (path.size() > 1 && !isSeen(path)) {
        path.erase(path.rfind('/'));
        if (path.empty())
            path = "/";
    }
    return path;
}

/// Where files cannot be without a name, the rights are asked instead.
int askForRights(const std::string& folder) {
    return faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) == 0 ? 0 : errno;
}

/// Writes into a file of the folder that never has a name. Gives errno; 0 when it works.
int tryToWrite(const std::string& folder, int flags) {
    const int file = open(folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC | flags, 0600);
    if (file < 0)
        return errno == EOPNOTSUPP || errno == EISDIR ? askForRights(folder) : errno;
    constexpr std::array<char, 4096> kBlock{};
    const int error = write(file, kBlock.data(), kBlock.size()) < 0 ? errno : 0;
    close(file);
    return error;
}

std::string remountCommand(const std::string& folder) {
    const auto mounts = coreservices::currentMounts();
    const coreservices::Mount* const mount = coreservices::mountOf(folder, *mounts);
    return asRoot("mount -o remount,rw " + shellWord(mount != nullptr ? mount->point : "/"));
}

std::string otherPlace() {
    return translated("set HOME, or XDG_DATA_HOME, to a folder of %1", userName());
}

/// Folders outside the home folder are not given to this user.
std::string rightsRemedy(const std::string& folder, const Host& host) {
    const std::string home = host.variable("HOME");
    struct stat facts {};
    if (stat(folder.c_str(), &facts) == 0 && facts.st_uid == geteuid())
        return "chmod u+rwx " + shellWord(folder);
    if (!home.empty() && (folder + "/").starts_with(home + "/"))
        return asRoot("chown " + shellWord(userName()) + " " + shellWord(folder));
    return otherPlace();
}

/// Nothing outside the home folder is moved: /dev/null is the home of many a service.
std::string placeRemedy(const std::string& path, const Host& host) {
    const std::string home = host.variable("HOME");
    if (home.empty() || !path.starts_with(home + "/"))
        return otherPlace();
    return "mv " + shellWord(path) + " " + shellWord(path + ".old");
}

Finding explain(const std::string& folder, int error, const Host& host) {
    switch (error) {
    case EROFS:
        return {CheckState::Problem, translated("the disk of %1 is read-only", folder),
                remountCommand(folder)};
    case EACCES:
    case EPERM:
        return {CheckState::Problem, translated("%1 may not write in %2", userName(), folder),
                rightsRemedy(folder, host)};
    case ENOSPC:
    case EDQUOT:
        return {CheckState::Problem, translated("the disk of %1 is full", folder),
                "df -h " + shellWord(folder) + "  # " +
                    translated("what is full; then delete files there")};
    case ENOTDIR:
    case ELOOP:
    case ENOENT:
        return {CheckState::Problem, translated("%1 is no folder", folder),
                placeRemedy(folder, host)};
    default:
        return {CheckState::Problem, folder + ": " + std::strerror(error), asRoot("dmesg | tail")};
    }
}

Finding examine(const Host& host) {
    const std::string trash = host.homeTrash();
    if (trash.empty())
        return {CheckState::Problem, translated("%1 has no home folder", userName()),
                translated("set HOME to a folder of %1", userName())};
    for (const char* const name : {"/files", "/info"}) {
        const std::string folder = existingPart(trash + name);
        // The trash takes no links for the two.
        const int flags = folder == trash + name ? O_NOFOLLOW : 0;
        if (const int error = tryToWrite(folder, flags); error != 0)
            return explain(folder, error, host);
    }
    return {CheckState::Ok, translated("files can be moved to %1", trash)};
}

}  // namespace

Check trashCheck() {
    return {"trash",
            examine,
            {CheckState::Problem, translated("the disk of the home folder does not answer"),
             translated("mend the mounts that do not answer")}};
}

}  // namespace tav::tool::doctor
