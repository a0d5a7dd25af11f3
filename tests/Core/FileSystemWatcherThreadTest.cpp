// SPDX-License-Identifier: MIT
// Watchers that several threads, and forked processes, make and destroy.
#include "ula/FileSystemWatcher.h"

#include "FakeWatcherWorker.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"
#include "ula/src/Core/WorkerInstance.h"

#include <future>
#include <gtest/gtest.h>
#include <memory>
#include <sys/wait.h>
#include <unistd.h>

namespace tav::ula {
namespace {

class FileSystemWatcherThreads : public testing::Test {
protected:
    FileSystemWatcherThreads() {
        platform.reset();
        for (const std::string& path : {a, b, c})
            test::writeFile(path, "");
    }
    ~FileSystemWatcherThreads() override { EXPECT_TRUE(platform.waitUntilNoWorker()); }

    static void notify(const std::string& path) {
        if (const auto worker = WorkerInstance::get())
            worker->notify(path + "!", "", PathChanged);
    }
    /// Makes watchers of one of three paths and destroys them, so that all that can meet does.
    void churn(int count) const {
        const std::string paths[] = {a, b, c};
        for (int i = 0; i < count; ++i) {
            FileSystemWatcher watcher(paths[i % 3], false);
            watcher.connect([](const std::string&, FileSystemWatcherInfo) {});
            if (i % 5 == 0)
                notify(paths[(i + 1) % 3]);
            if (i % 7 == 0)
                watcher.setEnabled(i % 2 == 0);
        }
    }

    FakePlatform& platform = FakePlatform::instance();
    test::TemporaryFolder folder;
    const std::string a = folder / "a";
    const std::string b = folder / "b";
    const std::string c = folder / "c";
};

TEST_F(FileSystemWatcherThreads, TenThousandWatchersComeAndGo) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([this] { churn(2500); });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(FileSystemWatcher::getDebugString(), " - no instance\n");
}

TEST_F(FileSystemWatcherThreads, TenThousandWatchersLiveAtOnce) {
    std::vector<std::unique_ptr<FileSystemWatcher>> watchers(10'000);
    std::vector<std::thread> threads;
    for (std::size_t first = 0; first < 4; ++first)
        threads.emplace_back([&, first] {
            for (std::size_t i = first; i < watchers.size(); i += 4)
                watchers[i] = std::make_unique<FileSystemWatcher>(
                    folder.path().string() + "/./" + (i % 2 ? "a" : "b"), false);
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(FileSystemWatcher::getDebugString(),
              " - Instance exists - registeredWatcherCount: 10000 platform\n");
    threads.clear();
    for (std::size_t first = 0; first < 4; ++first)
        threads.emplace_back([&, first] {
            for (std::size_t i = first; i < watchers.size(); i += 4)
                watchers[i].reset();
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(FileSystemWatcher::getDebugString(), " - no instance\n");
}

TEST_F(FileSystemWatcherThreads, DestructorWaitsForASlotOnAnotherThread) {
    auto watcher = std::make_unique<FileSystemWatcher>(a, false);
    std::promise<void> entered;
    std::atomic<bool> isOver = false;
    watcher->connect([&](const std::string&, FileSystemWatcherInfo) {
        entered.set_value();
        // Until the destructor has taken the watcher out of the table.
        while (FileSystemWatcher::getDebugString().find("Count: 1") != std::string::npos)
            thread::yield();
        isOver = true;
    });
    std::thread other([this] { notify(a); });
    entered.get_future().get();
    watcher.reset();
    EXPECT_TRUE(isOver);
    other.join();
}

TEST_F(FileSystemWatcherThreads, SlotThatDestroysAWatcherInUseDoesNotKeepTheTableLocked) {
    auto inUse = std::make_unique<FileSystemWatcher>(a, false);
    FileSystemWatcher watcher(b, false);
    std::promise<void> entered, removed;
    inUse->connect([&](const std::string&, FileSystemWatcherInfo) {
        entered.set_value();
        removed.get_future().get();
        // Needs the table, which the destroying slot has locked for its round.
        const FileSystemWatcher other(c, false);
    });
    watcher.connect([&](const std::string&, FileSystemWatcherInfo) {
        removed.set_value();
        inUse.reset();
    });
    std::thread other([this] { notify(a); });
    entered.get_future().get();
    platform.runInRound([this] { notify(b); });
    other.join();
    EXPECT_EQ(inUse, nullptr);
}

TEST_F(FileSystemWatcherThreads, ForkedChildDestroysAnInheritedWatcherAndMakesItsOwn) {
    auto watcher = std::make_unique<FileSystemWatcher>(a, false);
    EXPECT_EQ(test::runInChild([&]() -> std::string {
                  if (FileSystemWatcher::getDebugString() != " - no instance\n")
                      return "the parent's worker";
                  watcher->setEnabled(false);
                  watcher.reset();
                  bool isTold = false;
                  FileSystemWatcher own(a, false);
                  own.connect([&](const std::string&, FileSystemWatcherInfo) { isTold = true; });
                  platform.runInRound([this] { notify(a); });
                  return isTold ? "told" : "silent";
              }),
              "told");
    EXPECT_NE(FileSystemWatcher::getDebugString().find("Count: 1"), std::string::npos);
}

TEST_F(FileSystemWatcherThreads, ChildForkedByASlotLeavesItAndEnds) {
    auto watcher = std::make_unique<FileSystemWatcher>(a, false);
    pid_t child = -1;
    bool isChild = false;
    watcher->connect([&](const std::string&, FileSystemWatcherInfo) {
        child = fork();
        isChild = child == 0;
        if (isChild)
            watcher.reset();
    });
    notify(a);
    if (isChild)
        _exit(FileSystemWatcher::getDebugString() == " - no instance\n" ? 7 : 1);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(WEXITSTATUS(status), 7);
}

}  // namespace
}  // namespace tav::ula
