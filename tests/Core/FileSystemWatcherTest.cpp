// SPDX-License-Identifier: MIT
// Watchers and their worker, on a platform that the test plays.
#include "ula/FileSystemWatcher.h"

#include "FakeWatcherWorker.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TemporaryFolder.h"
#include "ula/src/Core/WorkerInstance.h"

#include <gmock/gmock.h>
#include <memory>
#include <stdexcept>

namespace tav::ula {
namespace {

using test::assertionLine;
using test::LogCapture;
using testing::ElementsAre;
using testing::IsEmpty;

class FileSystemWatcherTest : public testing::Test {
protected:
    FileSystemWatcherTest() {
        platform.reset();
        test::writeFile(a, "");
        test::writeFile(b, "");
    }
    ~FileSystemWatcherTest() override { EXPECT_TRUE(platform.waitUntilNoWorker()); }

    std::unique_ptr<FileSystemWatcher> watch(const std::string& path) {
        auto watcher = std::make_unique<FileSystemWatcher>(path, false);
        tell(*watcher, "told");
        return watcher;
    }
    /// Writes down what the watcher is told.
    void tell(FileSystemWatcher& watcher, const std::string& name) {
        watcher.connect([this, name](const std::string& path, FileSystemWatcherInfo info) {
            told.push_back(name + " " + path + (info == PathRemoved ? " removed" : " changed"));
        });
    }
    static void notify(const std::string& path, FileSystemWatcherInfo info,
                       const std::string& actual = "") {
        if (const auto worker = WorkerInstance::get())
            worker->notify(path + "!", actual, info);
    }
    static std::string watchersText(int count) {
        return " - Instance exists - registeredWatcherCount: " + std::to_string(count) +
               " platform\n";
    }

    FakePlatform& platform = FakePlatform::instance();
    test::TemporaryFolder folder;
    const std::string a = folder / "a";
    const std::string b = folder / "b";
    std::vector<std::string> told;
};

TEST_F(FileSystemWatcherTest, MissingPathIsAnAssertionAndASilentWatcher) {
    const LogCapture log;
    FileSystemWatcher watcher(folder / "missing", false);
    EXPECT_THAT(log.lines(), ElementsAre(assertionLine("src/Core/FileSystemWatcher", 19,
                                                       "tav::filesystem::exists(path.c_str())")));
    EXPECT_EQ(FileSystemWatcher::getDebugString(), " - no instance\n");
    watcher.setEnabled(false);
    EXPECT_THAT(platform.takeCalls(), IsEmpty());
}

TEST_F(FileSystemWatcherTest, WorkerComesWithTheFirstWatcherAndGoesWithTheLast) {
    EXPECT_EQ(FileSystemWatcher::getDebugString(), " - no instance\n");
    auto first = watch(a);
    EXPECT_EQ(FileSystemWatcher::getDebugString(), watchersText(1));
    auto second = watch(b);
    EXPECT_EQ(FileSystemWatcher::getDebugString(), watchersText(2));
    first.reset();
    EXPECT_EQ(FileSystemWatcher::getDebugString(), watchersText(1));
    second.reset();
    EXPECT_EQ(FileSystemWatcher::getDebugString(), " - no instance\n");
    EXPECT_EQ(platform.workerCount(), 0);
}

TEST_F(FileSystemWatcherTest, WatchersOfOnePathShareOneWatchWhateverTheyAskFor) {
    auto first = watch(a);
    {
        FileSystemWatcher tree(a, true);
        first.reset();
        EXPECT_THAT(platform.takeCalls(), ElementsAre("start " + a + "! item"));
        tell(tree, "tree");
        notify(a, PathChanged);
        EXPECT_THAT(told, ElementsAre("tree " + a + "! changed"));
    }
    EXPECT_THAT(platform.takeCalls(), ElementsAre("stop " + a + "!"));
}

TEST_F(FileSystemWatcherTest, TreesAreStartedAsTrees) {
    const FileSystemWatcher tree(a, true);
    EXPECT_THAT(platform.takeCalls(), ElementsAre("start " + a + "! tree"));
}

TEST_F(FileSystemWatcherTest, RefusedWatchLeavesASilentWatcher) {
    platform.refuseStarts();
    const LogCapture log;
    {
        const auto watcher = watch(a);
        EXPECT_EQ(FileSystemWatcher::getDebugString(), watchersText(0));
        notify(a, PathChanged);
    }
    EXPECT_THAT(told, IsEmpty());
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_THAT(platform.takeCalls(), ElementsAre("start " + a + "! item"));
    EXPECT_EQ(FileSystemWatcher::getDebugString(), " - no instance\n");
}

TEST_F(FileSystemWatcherTest, ToldIsTheActualPathOrTheWatchedOne) {
    const auto watcher = watch(a);
    notify(a, PathChanged);
    notify(a, PathChanged, a + "/deep");
    EXPECT_THAT(told, ElementsAre("told " + a + "! changed", "told " + a + "/deep changed"));
}

TEST_F(FileSystemWatcherTest, WatchersAreToldInTheOrderOfTheirAddresses) {
    alignas(FileSystemWatcher) std::byte memory[3][sizeof(FileSystemWatcher)];
    std::vector<FileSystemWatcher*> watchers;
    for (const int place : {2, 0, 1}) {
        watchers.push_back(new (memory[place]) FileSystemWatcher(a, false));
        tell(*watchers.back(), std::to_string(place));
    }
    notify(a, PathChanged);
    EXPECT_THAT(
        told, ElementsAre("0 " + a + "! changed", "1 " + a + "! changed", "2 " + a + "! changed"));
    for (FileSystemWatcher* watcher : watchers)
        watcher->~FileSystemWatcher();
}

TEST_F(FileSystemWatcherTest, RemovalIsToldOnceAndTheWatchersFallSilent) {
    const auto first = watch(a);
    const auto second = watch(a);
    notify(a, PathRemoved);
    EXPECT_EQ(FileSystemWatcher::getDebugString(), watchersText(0));
    notify(a, PathChanged);
    notify(a, PathRemoved);
    EXPECT_THAT(told, ElementsAre("told " + a + "! removed", "told " + a + "! removed"));
}

TEST_F(FileSystemWatcherTest, EnablingGoesByThePath) {
    const auto watcher = watch(a);
    platform.takeCalls();
    watcher->setEnabled(false);
    watcher->setEnabled(true);
    EXPECT_THAT(platform.takeCalls(), ElementsAre("disable " + a + "!", "enable " + a + "!"));
}

TEST_F(FileSystemWatcherTest, SlotThatThrowsIsLoggedAndTheNextOneIsCalled) {
    alignas(FileSystemWatcher) std::byte memory[2][sizeof(FileSystemWatcher)];
    auto* const thrower = new (memory[0]) FileSystemWatcher(a, false);
    auto* const watcher = new (memory[1]) FileSystemWatcher(a, false);
    thrower->connect(
        [](const std::string&, FileSystemWatcherInfo) { throw std::runtime_error("!"); });
    tell(*watcher, "told");
    const LogCapture log;
    notify(a, PathChanged);
    EXPECT_THAT(log.lines(), ElementsAre("4 src/Core/FSWatcherWorker:1 a slot of the watcher of " +
                                         a + "! has thrown: !"));
    EXPECT_THAT(told, ElementsAre("told " + a + "! changed"));
    thrower->~FileSystemWatcher();
    watcher->~FileSystemWatcher();
}

TEST_F(FileSystemWatcherTest, RoundsComeOnTheWorkersThread) {
    const auto watcher = watch(a);
    std::thread::id thread;
    platform.runInRound([&] {
        thread = std::this_thread::get_id();
        notify(a, PathChanged);
    });
    EXPECT_NE(thread, std::this_thread::get_id());
    EXPECT_THAT(told, ElementsAre("told " + a + "! changed"));
}

TEST_F(FileSystemWatcherTest, WithoutAWatcherThereAreNoRounds) {
    const auto watcher = watch(a);
    ASSERT_TRUE(platform.waitForRounds(1, std::chrono::seconds(30)));
    platform.runInRound([this] { notify(a, PathRemoved); });
    // The round in which it was told is still to be counted.
    EXPECT_FALSE(platform.waitForRounds(3, std::chrono::milliseconds(600)));
    const auto other = watch(b);
    EXPECT_TRUE(platform.waitForRounds(3, std::chrono::seconds(30)));
}

// Slots that make and destroy watchers, in the middle of everything.

TEST_F(FileSystemWatcherTest, LastWatcherMayBeDestroyedInItsOwnSlotOnTheWorkersThread) {
    auto watcher = watch(a);
    watcher->connect([&](const std::string&, FileSystemWatcherInfo) { watcher.reset(); });
    platform.runInRound([this] { notify(a, PathChanged); });
    EXPECT_EQ(FileSystemWatcher::getDebugString(), " - no instance\n");
    EXPECT_THAT(told, ElementsAre("told " + a + "! changed"));
    EXPECT_TRUE(platform.waitUntilNoWorker());
}

TEST_F(FileSystemWatcherTest, LastWatcherMayBeDestroyedInItsOwnSlotOnAnotherThread) {
    auto watcher = watch(a);
    watcher->connect([&](const std::string&, FileSystemWatcherInfo) { watcher.reset(); });
    notify(a, PathRemoved);
    EXPECT_EQ(FileSystemWatcher::getDebugString(), " - no instance\n");
}

TEST_F(FileSystemWatcherTest, WatcherThatAnotherSlotDestroysIsNotTold) {
    alignas(FileSystemWatcher) std::byte memory[2][sizeof(FileSystemWatcher)];
    auto* const first = new (memory[0]) FileSystemWatcher(a, false);
    auto* const second = new (memory[1]) FileSystemWatcher(a, false);
    first->connect(
        [=](const std::string&, FileSystemWatcherInfo) { second->~FileSystemWatcher(); });
    tell(*second, "second");
    notify(a, PathChanged);
    EXPECT_THAT(told, IsEmpty());
    first->~FileSystemWatcher();
}

TEST_F(FileSystemWatcherTest, SlotMayWatchARemovedPathAnewAlthoughOthersWatchItStill) {
    auto first = watch(a);
    const auto second = watch(a);
    first->connect([&](const std::string&, FileSystemWatcherInfo) {
        // Most likely at the very address.
        first.reset();
        first = watch(a);
    });
    platform.takeCalls();
    notify(a, PathRemoved);
    EXPECT_THAT(platform.takeCalls(), ElementsAre("start " + a + "! item"));
    EXPECT_EQ(FileSystemWatcher::getDebugString(), watchersText(1));
    told.clear();
    notify(a, PathChanged);
    EXPECT_THAT(told, ElementsAre("told " + a + "! changed"));
}

TEST_F(FileSystemWatcherTest, SlotOnTheWorkersThreadMayMakeAndDestroyWatchers) {
    const auto watcher = watch(a);
    std::unique_ptr<FileSystemWatcher> other;
    watcher->connect([&](const std::string&, FileSystemWatcherInfo) {
        const FileSystemWatcher brief(b, false);
        other = watch(b);
    });
    platform.runInRound([this] { notify(a, PathChanged); });
    EXPECT_EQ(FileSystemWatcher::getDebugString(), watchersText(2));
    other.reset();
    EXPECT_EQ(FileSystemWatcher::getDebugString(), watchersText(1));
}

}  // namespace
}  // namespace tav::ula
