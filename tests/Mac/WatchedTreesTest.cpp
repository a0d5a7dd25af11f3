// SPDX-License-Identifier: MIT
// Watchers of trees on real folders and the run loop.
#include "WatcherLog.h"
#include "tests/support/TemporaryFolder.h"
#include "ula/FileSystemWatcher.h"

#include <CoreFoundation/CoreFoundation.h>
#include <algorithm>
#include <atomic>
#include <filesystem>
#include <gmock/gmock.h>
#include <memory>
#include <thread>

namespace tav::ula {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ElementsAre;

class WatchedTrees : public testing::Test {
protected:
    WatchedTrees() { fs::create_directories(deep); }

    std::unique_ptr<FileSystemWatcher> watch(const std::string& path) {
        auto watcher = std::make_unique<FileSystemWatcher>(path, true);
        told.listenTo(*watcher);
        return watcher;
    }
    /// What is told in this turn of the loop, and all before it, until a line is among it.
    std::vector<std::string> runUntil(const std::string& line) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        std::vector<std::string> lines;
        while (std::ranges::find(lines, line) == lines.end() &&
               std::chrono::steady_clock::now() < deadline) {
            CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.05, true);
            for (std::string& next : told.take(0))
                lines.push_back(std::move(next));
        }
        return lines;
    }

    test::TemporaryFolder folder{fs::canonical(fs::temp_directory_path())};
    const std::string root = folder / "root";
    const std::string deep = root + "/a/b/c";
    test::WatcherLog told;
};

TEST_F(WatchedTrees, ChangeDeepInTheTreeIsToldWithItsFolder) {
    const auto watcher = watch(root);
    test::writeFile(deep + "/file", "text");
    EXPECT_THAT(runUntil(deep + " changed"), Contains(deep + " changed"));
}

TEST_F(WatchedTrees, RootThatGoesIsToldOnceAlsoWhenItComesAgain) {
    const std::string other = folder / "other";
    fs::create_directory(other);
    const auto watcher = watch(root);
    const auto next = watch(other);
    fs::remove_all(root);
    EXPECT_THAT(runUntil(root + " removed"), Contains(root + " removed").Times(1));
    EXPECT_EQ(FileSystemWatcher::getDebugString().find(root + "\n"), std::string::npos);
    fs::create_directories(deep);
    test::writeFile(other + "/file", "text");
    EXPECT_THAT(runUntil(other + " changed"), ElementsAre(other + " changed"));
}

TEST_F(WatchedTrees, DisabledTreeIsSilentAndWhatHappenedMeanwhileIsDropped) {
    const auto watcher = watch(root);
    watcher->setEnabled(false);
    test::writeFile(root + "/meanwhile", "text");
    watcher->setEnabled(true);
    test::writeFile(deep + "/file", "text");
    EXPECT_THAT(runUntil(deep + " changed"), ElementsAre(deep + " changed"));
}

TEST_F(WatchedTrees, LastWatcherDestroyedInItsOwnSlotEndsTheWorker) {
    auto watcher = std::make_unique<FileSystemWatcher>(root, true);
    watcher->connect([&](const std::string&, FileSystemWatcherInfo) {
        watcher.reset();
        told.add(FileSystemWatcher::getDebugString());
    });
    test::writeFile(root + "/file", "text");
    EXPECT_THAT(runUntil(" - no instance\n"), ElementsAre(" - no instance\n"));
}

TEST_F(WatchedTrees, SlotMayWatchAnotherTree) {
    const std::string other = folder / "other";
    fs::create_directory(other);
    std::unique_ptr<FileSystemWatcher> second;
    const auto watcher = watch(root);
    watcher->connect([&](const std::string&, FileSystemWatcherInfo) {
        if (!second)
            second = watch(other);
    });
    test::writeFile(root + "/file", "text");
    runUntil(root + " changed");
    test::writeFile(other + "/file", "text");
    EXPECT_THAT(runUntil(other + " changed"), Contains(other + " changed"));
    test::writeFile(deep + "/file", "text");
    EXPECT_THAT(runUntil(deep + " changed"), Contains(deep + " changed"));
}

TEST_F(WatchedTrees, OtherThreadsMayEndTheWorkerWhileItsStreamCallsBack) {
    std::atomic<bool> isOver = false;
    std::thread writer([&] {
        for (int i = 0; !isOver; ++i)
            test::writeFile(deep + "/" + std::to_string(i % 10), "text");
    });
    std::thread stopper([&] {
        std::unique_ptr<FileSystemWatcher> watcher;
        for (int i = 0; i < 300; ++i) {
            watcher = std::make_unique<FileSystemWatcher>(i % 2 ? root : deep, i % 3 != 0);
            watcher->connect([](const std::string&, FileSystemWatcherInfo) {});
        }
        isOver = true;
    });
    while (!isOver) {
        const auto watcher = watch(root);
        CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.15, true);
    }
    writer.join();
    stopper.join();
    EXPECT_EQ(FileSystemWatcher::getDebugString(), " - no instance\n");
}

}  // namespace
}  // namespace tav::ula
