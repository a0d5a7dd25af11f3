// SPDX-License-Identifier: MIT
// Items on disks that go, and limits of the system. Needs root: mounts in a space of its own.
#include "KernelQueue.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Mounts.h"
#include "tests/support/TemporaryFolder.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>

namespace tav::test {

namespace {

namespace fs = std::filesystem;

class MountedItems : public testing::Test {
protected:
    TemporaryFolder folder{fs::canonical(fs::temp_directory_path())};
    KernelQueue queue;
};

TEST_F(MountedItems, WatchedFileDoesNotKeepItsDiskFromUnmountingWhichIsTold) {
    MountedImage disk(folder / "disk", folder.path());
    writeFile(disk.point() + "/file", "text");
    OpenItem file(disk.point() + "/file");
    OpenItem root(disk.point());
    ASSERT_EQ(queue.add(file), 0);
    ASSERT_EQ(queue.add(root), 0);
    ASSERT_EQ(umount(disk.point().c_str()), 0) << "the disk is busy";
    EXPECT_EQ(queue.awaited(), static_cast<unsigned>(NOTE_REVOKE));
    EXPECT_EQ(queue.awaited(), static_cast<unsigned>(NOTE_REVOKE));
    EXPECT_EQ(queue.notes(), 0u);
    // For the end of the object.
    ASSERT_EQ(mount("none", disk.point().c_str(), "tmpfs", 0, nullptr), 0);
}

TEST_F(MountedItems, RemovedDescriptorDoesNotKeepItsDiskFromUnmounting) {
    MountedImage disk(folder / "disk", folder.path());
    writeFile(disk.point() + "/file", "text");
    OpenItem file(disk.point() + "/file");
    ASSERT_EQ(queue.add(file), 0);
    ASSERT_EQ(queue.remove(file), 0);
    ASSERT_EQ(umount(disk.point().c_str()), 0) << "the disk is busy";
    EXPECT_EQ(queue.add(file), 0);
    EXPECT_EQ(queue.notes(), 0u);
    ASSERT_EQ(mount("none", disk.point().c_str(), "tmpfs", 0, nullptr), 0);
}

/// In a child whose user may watch that many items. Fails: the reason.
std::string withWatchLimit(int limit, const std::function<std::string()>& function) {
    // The thread sanitizer gives the child of a single thread a second one, and only a single one
    // may enter a namespace.
    std::atomic<bool> isOver = false;
    std::thread company([&] { isOver.wait(false); });
    const std::string result = runInChild([&]() -> std::string {
        if (unshare(CLONE_NEWUSER) != 0)
            return "no users of one's own";
        std::ofstream("/proc/self/uid_map") << "0 0 1";
        std::ofstream setting("/proc/sys/user/max_inotify_watches");
        setting << limit << std::flush;
        return setting ? function() : "the limit cannot be set";
    });
    isOver = true;
    isOver.notify_all();
    company.join();
    return result;
}

TEST_F(MountedItems, ItemBeyondTheLimitOfWatchesIsRefusedAndClosedOnesMakeRoom) {
    for (int i = 0; i < 12; ++i)
        writeFile(folder / std::to_string(i), "text");
    EXPECT_EQ(withWatchLimit(10,
                             [&]() -> std::string {
                                 const KernelQueue own;
                                 std::vector<int> items;
                                 for (int i = 0; i < 12; ++i)
                                     items.push_back(
                                         open((folder / std::to_string(i)).c_str(), O_EVTONLY));
                                 for (std::size_t i = 0; i < 10; ++i)
                                     if (own.add(items[i]) != 0)
                                         return "refused below the limit";
                                 if (own.add(items[10]) != ENOSPC)
                                     return "not refused";
                                 close(items[3]);
                                 if (own.add(items[10]) != 0)
                                     return "closed items take room";
                                 fs::remove(folder / "10");
                                 return own.notes() & NOTE_DELETE ? "told" : "not told";
                             }),
              "told");
}

}  // namespace

}  // namespace tav::test
