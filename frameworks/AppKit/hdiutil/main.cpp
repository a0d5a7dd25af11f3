// SPDX-License-Identifier: MIT
// Takes a disk image out: unmounts it and frees its loop device.
//
//   hdiutil detach FOLDER
//
// The folder is the one on which it is mounted, or a link to that. What is in use stays. Users
// without rights of their own have udisks do it, as their desktop had udisks mount it.
#include "CoreFoundation/Descriptor.h"
#include "CoreServices/BusConnection.h"
#include "CoreServices/MountInfo.h"
#include "CoreServices/UDisksObject.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <gio/gio.h>
#include <linux/loop.h>
#include <optional>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr char kLoop[] = "/dev/loop";

// The last one on the point is the one that is seen.
std::optional<coreservices::Mount> mountAt(const std::string& folder) {
    char point[PATH_MAX];
    if (realpath(folder.c_str(), point) == nullptr)
        return std::nullopt;
    std::optional<coreservices::Mount> found;
    for (const coreservices::Mount& mount :
         coreservices::parseMountInfo(coreservices::readMountInfo()))
        if (mount.point == point && mount.point != "/")
            found = mount;
    return found;
}

// By the kernel's name of the device: "/dev/mapper/NAME" leads to "/dev/dm-0".
bool callUDisks(const std::string& device, const char* interface, const char* method) {
    const coreservices::BusConnection bus = coreservices::connectToSystemBus();
    char path[PATH_MAX];
    if (!bus || realpath(device.c_str(), path) == nullptr)
        return false;
    const std::string object = coreservices::uDisksObject(std::strrchr(path, '/') + 1);
    GVariant* const answer = g_dbus_connection_call_sync(
        bus.get(), "org.freedesktop.UDisks2", object.c_str(), interface, method,
        g_variant_new("(a{sv})", nullptr), nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
    if (answer != nullptr)
        g_variant_unref(answer);
    return answer != nullptr;
}

bool runFusermount(const char* program, const std::string& point) {
    const pid_t child = fork();
    if (child == 0) {
        execlp(program, program, "-u", "--", point.c_str(), nullptr);
        _exit(127);
    }
    int status = -1;
    while (child > 0 && waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return child > 0 && status == 0;
}

// Fails: errno; 0 when done.
int unmount(const coreservices::Mount& mount) {
    if (umount2(mount.point.c_str(), UMOUNT_NOFOLLOW) == 0)
        return 0;
    const int error = errno;
    if (error != EPERM)
        return error;
    // "fuseblk" is a disk, which was mounted by udisks.
    if (mount.type == "fuse" || mount.type.starts_with("fuse."))
        return runFusermount("fusermount3", mount.point) || runFusermount("fusermount", mount.point)
                   ? 0
                   : error;
    const bool isDone = callUDisks(mount.source, "org.freedesktop.UDisks2.Filesystem", "Unmount");
    return isDone ? 0 : error;
}

// One that was made for this mount alone has gone with it.
void freeLoop(const std::string& device) {
    if (!device.starts_with(kLoop))
        return;
    const cf::Descriptor loop(open(device.c_str(), O_RDONLY | O_CLOEXEC));
    if (loop)
        ioctl(loop.get(), LOOP_CLR_FD, 0);
    else
        callUDisks(device, "org.freedesktop.UDisks2.Loop", "Delete");
}

}  // namespace

int main(int count, char** words) {
    if (count != 3 || std::strcmp(words[1], "detach") != 0) {
        std::fprintf(stderr, "hdiutil: use: hdiutil detach FOLDER\n");
        return 2;
    }
    const auto mount = mountAt(words[2]);
    if (!mount) {
        std::fprintf(stderr, "hdiutil: nothing is mounted on %s\n", words[2]);
        return 1;
    }
    if (const int error = unmount(*mount)) {
        std::fprintf(stderr, "hdiutil: %s cannot be unmounted: %s\n", words[2],
                     std::strerror(error));
        return 1;
    }
    freeLoop(mount->source);
    return 0;
}
