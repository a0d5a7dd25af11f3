// SPDX-License-Identifier: MIT
// What the watchers ask of kernel queue and event stream, to the number, and what they make of the
// answers.
#import "ula/FileSystemWatcherObjCWrapper.h"

#include "WatcherLog.h"
#include "WatcherSpy.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TemporaryFolder.h"
#import "ula/ObjCHelper.h"
#include "ula/ScopedARPool.h"

#import <AppKit/AppKit.h>
#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <memory>

namespace tav::ula {
namespace {

namespace fs = std::filesystem;
using test::assertionLine;
using test::LogCapture;
using test::WatcherSpy;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kQueueSource = "src/Mac/FSWatcherWorkerMacKQueue";
constexpr const char* kStreamSource = "src/Mac/FSWatcherWorkerMacFSEvent";

class WatcherCalls : public testing::Test {
protected:
    WatcherCalls() {
        test::writeFile(file, "text");
        spy.isQueueRefused = spy.isOpenRefused = spy.isStreamRefused = false;
        spy.refusedFlags = 0;
        spy.events.clear();
        spy.take();
    }
    ~WatcherCalls() override { EXPECT_EQ(FileSystemWatcher::getDebugString(), " - no instance\n"); }

    std::unique_ptr<FileSystemWatcher> watch(const std::string& path, bool recursive = false) {
        auto watcher = std::make_unique<FileSystemWatcher>(path, recursive);
        told.listenTo(*watcher);
        return watcher;
    }
    /// The descriptor that the debug text gives for the file.
    static int descriptorInText() {
        const std::string text = FileSystemWatcher::getDebugString();
        return std::stoi(text.substr(text.find(" fd: ") + 5));
    }
    void returnEvent(uintptr_t descriptor, std::uint32_t notes) {
        struct kevent event {};
        EV_SET(&event, descriptor, EVFILT_VNODE, EV_ADD | EV_CLEAR, notes, 0, nullptr);
        const std::lock_guard lock(spy.mutex);
        spy.events.push_back(event);
    }
    std::string created(const std::string& paths) const {
        return "create since 0xffffffffffffffff latency 0.1 flags 4 " + paths;
    }

    const ScopedARPool pool;
    WatcherSpy& spy = WatcherSpy::instance();
    test::TemporaryFolder folder{fs::canonical(fs::temp_directory_path())};
    const std::string root = folder.path().string();
    const std::string file = folder / "file";
    test::WatcherLog told;
};

TEST_F(WatcherCalls, FileIsWatchedForEverythingAndFolderForAllButItsAttributes) {
    watch(file);
    EXPECT_THAT(spy.take(), ElementsAre("open " + file + " 0x8000", "change -4 0x21 0x6f",
                                        "change -4 0x2 0x6f"));
    watch(root);
    EXPECT_THAT(spy.take(), ElementsAre("open " + root + " 0x8000", "change -4 0x21 0x67",
                                        "change -4 0x2 0x67"));
}

TEST_F(WatcherCalls, EnablingAddsAndDisablingDeletesTheSameFilter) {
    const auto watcher = watch(file);
    const int descriptor = descriptorInText();
    spy.take();
    watcher->setEnabled(false);
    EXPECT_EQ(descriptorInText(), descriptor);
    watcher->setEnabled(true);
    EXPECT_THAT(spy.take(), ElementsAre("change -4 0x2 0x6f", "change -4 0x21 0x6f"));
}

TEST_F(WatcherCalls, RoundTakesOneEventAndDoesNotWait) {
    const auto watcher = watch(file);
    returnEvent(static_cast<uintptr_t>(descriptorInText()), NOTE_WRITE);
    returnEvent(static_cast<uintptr_t>(descriptorInText()), NOTE_EXTEND);
    EXPECT_THAT(told.take(2), ElementsAre(file + " changed", file + " changed"));
    const std::lock_guard lock(spy.mutex);
    EXPECT_EQ(spy.round, "null 0 1 0.0");
}

TEST_F(WatcherCalls, DeletionRenamingAndRevocationAreRemovals) {
    for (const std::uint32_t notes : {0x1u, 0x20u, 0x42u}) {
        const auto watcher = watch(file);
        const int descriptor = descriptorInText();
        returnEvent(static_cast<uintptr_t>(descriptor), notes);
        EXPECT_THAT(told.take(), ElementsAre(file + " removed"));
        // The thread stops the watch under the lock that the text needs.
        EXPECT_THAT(FileSystemWatcher::getDebugString(),
                    testing::HasSubstr("Count: 0 FSWatcherWorkerMacKQueue: getOSDebugString "
                                       "FSWatcherWorkerMac registered: \n\n"));
        EXPECT_EQ(fcntl(descriptor, F_GETFD), -1);
    }
}

TEST_F(WatcherCalls, EventOfAnUnknownDescriptorIsAnAssertion) {
    const LogCapture log;
    const auto watcher = watch(file);
    returnEvent(9999, NOTE_WRITE);
    returnEvent(static_cast<uintptr_t>(descriptorInText()), NOTE_WRITE);
    EXPECT_THAT(told.take(), ElementsAre(file + " changed"));
    EXPECT_THAT(log.lines(), ElementsAre(assertionLine(kQueueSource, 138, "!path.empty()")));
}

TEST_F(WatcherCalls, QueueThatCannotBeMadeIsAnAssertionAndASilentWatcher) {
    spy.isQueueRefused = true;
    const LogCapture log;
    const auto watcher = watch(file);
    EXPECT_THAT(log.lines(), ElementsAre(assertionLine(kQueueSource, 32, "_kqueue != -1")));
    EXPECT_THAT(FileSystemWatcher::getDebugString(), testing::HasSubstr("Count: 0 "));
}

TEST_F(WatcherCalls, FileThatCannotBeOpenedIsAnAssertionAndASilentWatcher) {
    spy.isOpenRefused = true;
    const LogCapture log;
    const auto watcher = watch(file);
    EXPECT_THAT(log.lines(), ElementsAre(assertionLine(kQueueSource, 52, "fd != -1")));
    EXPECT_THAT(FileSystemWatcher::getDebugString(), testing::HasSubstr("Count: 0 "));
}

TEST_F(WatcherCalls, FilterThatCannotBeAddedIsASilentWatcherAndNothingStaysOpen) {
    spy.refusedFlags = 0x21;
    const LogCapture log;
    const auto watcher = watch(file);
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_THAT(FileSystemWatcher::getDebugString(), testing::HasSubstr("Count: 0 "));
    for (const auto& descriptor : fs::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        EXPECT_NE(fs::read_symlink(descriptor.path(), gone), file);
    }
}

TEST_F(WatcherCalls, FilterThatCannotBeChangedIsAnAssertion) {
    const auto watcher = watch(file);
    spy.refusedFlags = 0x2;
    const LogCapture log;
    watcher->setEnabled(false);
    EXPECT_THAT(log.lines(), ElementsAre(assertionLine(kQueueSource, 95, "ret != -1")));
    spy.refusedFlags = 0;
}

// Trees.

TEST_F(WatcherCalls, TreesShareOneStreamThatIsMadeAnewInTheOrderOfTheRoots) {
    const std::string first = folder / "a\xc3\xa4";
    const std::string second = folder / "b";
    fs::create_directory(first);
    fs::create_directory(second);
    auto b = watch(second, true);
    EXPECT_THAT(spy.take(), ElementsAre(created(second), "schedule here default", "start"));
    auto a = watch(first, true);
    EXPECT_THAT(spy.take(),
                ElementsAre("stop", "invalidate", "release", created(first + " " + second),
                            "schedule here default", "start"));
    b.reset();
    EXPECT_THAT(spy.take(), ElementsAre("stop", "invalidate", "release", created(first),
                                        "schedule here default", "start"));
    a.reset();
    EXPECT_THAT(spy.take(), ElementsAre("stop", "invalidate", "release"));
}

TEST_F(WatcherCalls, ChangeDeepInATreeIsToldWithItsPath) {
    const auto watcher = watch(root, true);
    spy.tell({{root + "/deep/er/", kFSEventStreamEventFlagNone}, {"", 0}, {root, 1}});
    EXPECT_THAT(told.take(0), ElementsAre(root + "/deep/er changed", root + " changed"));
}

TEST_F(WatcherCalls, EveryRootThatBeginsThePathIsTold) {
    const std::string a = folder / "a";
    fs::create_directory(a);
    const auto tree = watch(a, true);
    spy.tell({{a + "b/file", 0}, {root + "/b", 0}});
    EXPECT_THAT(told.take(0), ElementsAre(a + "b/file changed"));
    const auto outer = watch(root, true);
    spy.tell({{a, 0}});
    EXPECT_THAT(told.take(0), ElementsAre(a + " changed", a + " changed"));
}

TEST_F(WatcherCalls, EventsWithOtherFlagsAreIgnored) {
    const auto watcher = watch(root, true);
    for (const FSEventStreamEventFlags flags : {2u, 3u, 4u, 8u, 0x10u, 0x21u, 0x40u, 0x80u, 0x100u})
        spy.tell({{root, flags}});
    EXPECT_THAT(told.take(0), IsEmpty());
}

TEST_F(WatcherCalls, RootThatChangedAndIsThereIsAChange) {
    const auto watcher = watch(root, true);
    spy.tell({{root, kFSEventStreamEventFlagRootChanged}});
    EXPECT_THAT(told.take(0), ElementsAre(root + " changed"));
}

TEST_F(WatcherCalls, RootThatIsGoneIsToldOnceAndLeavesWithoutANewStream) {
    const std::string a = folder / "a";
    fs::create_directory(a);
    const auto watcher = watch(a, true);
    fs::remove(a);
    spy.take();
    spy.tell({{a + "/", kFSEventStreamEventFlagRootChanged}});
    spy.tell({{a, kFSEventStreamEventFlagRootChanged}});
    EXPECT_THAT(told.take(0), ElementsAre(a + " removed"));
    EXPECT_THAT(spy.take(), IsEmpty());
    EXPECT_EQ(FileSystemWatcher::getDebugString(),
              " - Instance exists - registeredWatcherCount: 0 FSWatcherWorkerMacKQueue: "
              "getOSDebugString FSWatcherWorkerMac registered: \n\nFSWatcherWorkerMacFSEvent: "
              "getOSDebugString FSWatcherWorkerMacFSEvent registered: \n\n\n");
    EXPECT_THAT(spy.take(), ElementsAre("show"));
}

TEST_F(WatcherCalls, RootThatIsWatchedAnewInTheSlotStays) {
    const std::string a = folder / "a";
    fs::create_directory(a);
    auto watcher = watch(a, true);
    watcher->connect([&](const std::string& path, FileSystemWatcherInfo) {
        fs::create_directory(path);
        watcher.reset();
        watcher = watch(path, true);
    });
    fs::remove(a);
    spy.tell({{a, kFSEventStreamEventFlagRootChanged}});
    spy.tell({{a, 0}});
    EXPECT_THAT(told.take(0), ElementsAre(a + " removed", a + " changed"));
}

TEST_F(WatcherCalls, DebugTextListsTheRootsAndShowsTheStream) {
    const auto watcher = watch(root, true);
    spy.take();
    EXPECT_EQ(FileSystemWatcher::getDebugString(),
              " - Instance exists - registeredWatcherCount: 1 FSWatcherWorkerMacKQueue: "
              "getOSDebugString FSWatcherWorkerMac registered: \n\nFSWatcherWorkerMacFSEvent: "
              "getOSDebugString FSWatcherWorkerMacFSEvent registered: \n" +
                  root + "\n\n\n");
    EXPECT_THAT(spy.take(), ElementsAre("show"));
}

TEST_F(WatcherCalls, EnablingATreeDropsWhatHappenedBefore) {
    const auto watcher = watch(root, true);
    watcher->setEnabled(false);
    spy.tell({{root, 0}});
    spy.take();
    spy.flushed = {{root + "/late", 0}};
    watcher->setEnabled(true);
    EXPECT_THAT(spy.take(), ElementsAre("flush"));
    EXPECT_THAT(told.take(0), IsEmpty());
    spy.tell({{root, 0}});
    EXPECT_THAT(told.take(0), ElementsAre(root + " changed"));
}

TEST_F(WatcherCalls, WatchingATreeAnewEnablesIt) {
    watch(root, true)->setEnabled(false);
    const auto watcher = watch(root, true);
    spy.tell({{root, 0}});
    EXPECT_THAT(told.take(0), ElementsAre(root + " changed"));
}

TEST_F(WatcherCalls, StreamThatCannotBeMadeIsAnAssertionAtTheNextOne) {
    spy.isStreamRefused = true;
    const auto first = watch(root, true);
    const LogCapture log;
    const std::string a = folder / "a";
    fs::create_directory(a);
    const auto second = watch(a, true);
    EXPECT_THAT(log.lines(),
                ElementsAre(assertionLine(kStreamSource, 176,
                                          "_streamRef == NULL && _currentPaths == NULL")));
}

TEST_F(WatcherCalls, StreamThatCallsAfterTheLastWatcherHasGoneFindsNobody) {
    watch(root, true);
    spy.tell({{root, 0}});
    EXPECT_THAT(told.take(0), IsEmpty());
}

TEST_F(WatcherCalls, SlotOfATreeMayDestroyTheLastWatcherAndMakeAnother) {
    auto watcher = std::make_unique<FileSystemWatcher>(root, true);
    std::unique_ptr<FileSystemWatcher> next;
    watcher->connect([&](const std::string&, FileSystemWatcherInfo) {
        watcher.reset();
        next = watch(root, true);
    });
    spy.tell({{root + "/one", 0}, {root + "/two", 0}});
    EXPECT_THAT(told.take(0), IsEmpty());
    spy.tell({{root + "/three", 0}});
    EXPECT_THAT(told.take(0), ElementsAre(root + "/three changed"));
}

TEST_F(WatcherCalls, PathThatIsNoTextPassesAsItIs) {
    const auto watcher = watch(root, true);
    spy.tell({{root + "/\xff", 0}});
    EXPECT_THAT(told.take(0), ElementsAre(root + "/\xff changed"));
}

}  // namespace
}  // namespace tav::ula
