// SPDX-License-Identifier: MIT
// Watchers of items on real files. Mounts an image: needs root.
#include "ula/FileSystemWatcher.h"

#include "WatcherLog.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Mounts.h"
#include "tests/support/TemporaryFolder.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <memory>
#include <sys/mount.h>
#include <sys/stat.h>
#include <thread>

namespace tav::ula {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;

constexpr const char* kNoTrees =
    "FSWatcherWorkerMacFSEvent: getOSDebugString FSWatcherWorkerMacFSEvent registered: \n\n\n";

class WatchedItems : public testing::Test {
protected:
    WatchedItems() {
        test::writeFile(file, "text");
        test::writeFile(other, "text");
        fs::create_directory(inside);
    }
    std::unique_ptr<FileSystemWatcher> watch(const std::string& path) {
        auto watcher = std::make_unique<FileSystemWatcher>(path, false);
        told.listenTo(*watcher);
        return watcher;
    }
    /// A watcher of the file that its own slot replaces.
    std::unique_ptr<std::unique_ptr<FileSystemWatcher>> watchAnewWhenRemoved() {
        auto place = std::make_unique<std::unique_ptr<FileSystemWatcher>>(
            std::make_unique<FileSystemWatcher>(file, false));
        auto* const watcher = place.get();
        (*watcher)->connect([this, watcher](const std::string& path, FileSystemWatcherInfo) {
            watcher->reset();
            *watcher = watch(path);
            told.add(path + " watched anew");
        });
        handOver();
        return place;
    }
    /// What was done so far comes before the next round. The order goes through the kernel, where
    /// no sanitizer sees it.
    static void handOver() { FileSystemWatcher::getDebugString(); }
    void saveAsAnEditor() const {
        test::writeFile(folder / "file.new", "new");
        fs::rename(folder / "file.new", file);
    }
    static std::ptrdiff_t openDescriptors() {
        const fs::directory_iterator descriptors("/proc/self/fd");
        return std::distance(begin(descriptors), end(descriptors));
    }

    test::TemporaryFolder folder{fs::canonical(fs::temp_directory_path())};
    const std::string file = folder / "file";
    const std::string other = folder / "other";
    const std::string inside = folder / "inside";
    test::WatcherLog told;
};

TEST_F(WatchedItems, WriteIsTold) {
    const auto watcher = watch(file);
    test::appendToFile(file, "other text");
    EXPECT_THAT(told.take(), ElementsAre(file + " changed"));
}

TEST_F(WatchedItems, DeletionIsToldOnceAndNothingAfterwards) {
    const auto watcher = watch(file);
    const auto next = watch(other);
    fs::remove(file);
    EXPECT_THAT(told.take(), ElementsAre(file + " removed"));
    test::writeFile(file, "again");
    test::appendToFile(other, "changed later");
    EXPECT_THAT(told.take(), ElementsAre(other + " changed"));
    EXPECT_EQ(FileSystemWatcher::getDebugString().find(file + " "), std::string::npos);
}

TEST_F(WatchedItems, RenameIsARemoval) {
    const auto watcher = watch(file);
    fs::rename(file, folder / "elsewhere");
    EXPECT_THAT(told.take(), ElementsAre(file + " removed"));
}

TEST_F(WatchedItems, AttributesOfAFileAreToldThoseOfAFolderAreNot) {
    const auto directory = watch(inside);
    const auto watcher = watch(file);
    EXPECT_EQ(chmod(inside.c_str(), 0700), 0);
    EXPECT_EQ(chmod(file.c_str(), 0600), 0);
    EXPECT_THAT(told.take(), ElementsAre(file + " changed"));
    test::writeFile(inside + "/child", "");
    EXPECT_THAT(told.take(), ElementsAre(inside + " changed"));
}

TEST_F(WatchedItems, WhatHappensWhileDisabledIsNotTold) {
    const auto watcher = watch(file);
    const auto next = watch(other);
    watcher->setEnabled(false);
    test::appendToFile(file, "disabled");
    test::appendToFile(other, "changed");
    EXPECT_THAT(told.take(), ElementsAre(other + " changed"));
    watcher->setEnabled(true);
    test::appendToFile(other, "changed again");
    EXPECT_THAT(told.take(), ElementsAre(other + " changed"));
    test::appendToFile(file, "enabled");
    EXPECT_THAT(told.take(), ElementsAre(file + " changed"));
}

TEST_F(WatchedItems, EditorsSaveIsARemovalAfterWhichASlotMayWatchTheNewFile) {
    auto watcher = watchAnewWhenRemoved();
    saveAsAnEditor();
    EXPECT_THAT(told.take(), ElementsAre(file + " watched anew"));
    test::appendToFile(file, "newer");
    EXPECT_THAT(told.take(), ElementsAre(file + " changed"));
}

TEST_F(WatchedItems, OneOfTwoWatchersMayWatchTheNewFileInItsSlot) {
    auto watcher = watchAnewWhenRemoved();
    const auto second = std::make_unique<FileSystemWatcher>(file, false);
    saveAsAnEditor();
    EXPECT_THAT(told.take(), ElementsAre(file + " watched anew"));
    test::appendToFile(file, "newer");
    EXPECT_THAT(told.take(), ElementsAre(file + " changed"));
}

TEST_F(WatchedItems, DebugTextNamesDescriptorsAndEvents) {
    const auto watcher = watch(file);
    const auto directory = watch(inside);
    EXPECT_THAT(FileSystemWatcher::getDebugString(),
                MatchesRegex(" - Instance exists - registeredWatcherCount: 2 "
                             "FSWatcherWorkerMacKQueue: getOSDebugString FSWatcherWorkerMac "
                             "registered: \\|" +
                             file + " fd: [0-9]+ observe: 111\\|\\|" + inside +
                             " fd: [0-9]+ observe: 103\\|\n\n" + kNoTrees));
}

TEST_F(WatchedItems, LastWatcherDestroyedInItsOwnSlotEndsTheWorker) {
    auto watcher = std::make_unique<FileSystemWatcher>(file, false);
    watcher->connect([&](const std::string&, FileSystemWatcherInfo) {
        watcher.reset();
        told.add(FileSystemWatcher::getDebugString());
    });
    handOver();
    test::appendToFile(file, "changed");
    EXPECT_THAT(told.take(), ElementsAre(" - no instance\n"));
}

TEST_F(WatchedItems, WatchedDiskCanBeUnmountedWhichIsARemoval) {
    test::MountedImage disk(folder / "disk", folder.path());
    test::writeFile(disk.point() + "/file", "text");
    const auto watcher = watch(disk.point() + "/file");
    ASSERT_EQ(umount(disk.point().c_str()), 0);
    EXPECT_THAT(told.take(), ElementsAre(disk.point() + "/file removed"));
    // For the end of the object.
    ASSERT_EQ(mount("none", disk.point().c_str(), "tmpfs", 0, nullptr), 0);
}

TEST_F(WatchedItems, FileOfAnotherUsersIsWatchedWithoutTheRightToReadIt) {
    EXPECT_EQ(chmod(file.c_str(), 0), 0);
    EXPECT_EQ(chmod(folder.path().c_str(), 0755), 0);
    EXPECT_EQ(test::runInChild([this]() -> std::string {
                  if (setuid(65534) != 0)
                      return "still root";
                  const test::LogCapture log;
                  const FileSystemWatcher watcher(inside, false);
                  const FileSystemWatcher unreadable(file, false);
                  return log.lines().empty() ? "watched" : log.lines().front();
              }),
              "watched");
}

TEST_F(WatchedItems, WatchersOfSeveralThreadsLeaveNothingBehind) {
    const auto first = watch(other);
    const std::ptrdiff_t before = openDescriptors();
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number)
        threads.emplace_back([this, number] {
            const std::string own = folder / std::to_string(number);
            test::writeFile(own, "");
            for (int i = 0; i < 2500; ++i)
                const FileSystemWatcher watcher(i % 2 ? own : file, false);
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(openDescriptors(), before);
    test::appendToFile(other, "changed");
    EXPECT_THAT(told.take(), ElementsAre(other + " changed"));
}

TEST_F(WatchedItems, ForkedChildHasItsOwnWatchersAndTheParentsAreUndisturbed) {
    auto watcher = watch(file);
    EXPECT_EQ(test::runInChild([&]() -> std::string {
                  watcher.reset();
                  test::WatcherLog own;
                  FileSystemWatcher next(other, false);
                  own.listenTo(next);
                  test::appendToFile(other, "changed");
                  const auto lines = own.take();
                  return lines.size() == 1 ? lines.front() : "not told";
              }),
              other + " changed");
    test::appendToFile(file, "changed");
    EXPECT_THAT(told.take(), ElementsAre(file + " changed"));
}

}  // namespace
}  // namespace tav::ula
