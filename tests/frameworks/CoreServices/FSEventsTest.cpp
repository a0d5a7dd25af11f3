// SPDX-License-Identifier: MIT
// Streams of folders and of items on real folders. Texts are "flags path".
#include "FSEventsFixture.h"
#include "tests/support/Patience.h"

#include <chrono>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

using namespace tav::test;

namespace {

namespace fs = std::filesystem;

constexpr FSEventStreamEventFlags kFolderCreated =
    kFSEventStreamEventFlagItemCreated | kFSEventStreamEventFlagItemIsDir;
constexpr FSEventStreamEventFlags kFileModified =
    kFSEventStreamEventFlagItemModified | kFSEventStreamEventFlagItemIsFile;

using FSEventsTest = FSEventsFixture;

/// Whether all that the kernel has told this process is read.
bool isKernelsQueueRead() {
    for (const auto& entry : fs::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        int unread = 0;
        if (fs::read_symlink(entry, gone) == "anon_inode:inotify" &&
            ioctl(std::stoi(entry.path().filename()), FIONREAD, &unread) == 0 && unread > 0)
            return false;
    }
    return true;
}

}  // namespace

TEST_F(FSEventsTest, ChangeDeepInsideIsToldWithItsFolder) {
    fs::create_directories(at("a/b/c"));
    StreamRecorder recorder({_root});
    writeFile(at("a/b/c/file"), "x");
    ASSERT_TRUE(recorder.waitFor(at("a/b/c/"), kChanged));
    EXPECT_EQ(recorder.text(), "0 " + at("a/b/c/"));
}

TEST_F(FSEventsTest, ManyChangesInOneFolderAreToldOnce) {
    StreamRecorder recorder({_root});
    for (int number = 0; number < 100; ++number)
        writeFile(at(std::to_string(number)), "x");
    recorder.flush();
    EXPECT_EQ(recorder.text(), "0 " + _root + "/");
}

TEST_F(FSEventsTest, ChangesBeforeTheStartAreNotTold) {
    writeFile(at("before"), "x");
    StreamRecorder recorder({_root}, kItems);
    writeFile(at("after"), "");
    recorder.flush();
    EXPECT_EQ(recorder.text(), "100 " + at("after"));
}

TEST_F(FSEventsTest, ItemsAreToldInTheOrderOfTheChanges) {
    StreamRecorder recorder({_root}, kItems);
    writeFile(at("file"), "x");
    chmod(at("file").c_str(), 0600);
    fs::create_directory(at("folder"));
    // From here on it is watched itself.
    recorder.flush();
    fs::rename(at("file"), at("folder/other"));
    fs::remove(at("folder/other"));
    fs::remove(at("folder"));
    recorder.flush();
    EXPECT_EQ(recorder.text(), "100 " + at("file") + ", 1000 " + at("file") + ", 400 " +
                                   at("file") + ", 100 " + at("folder") + ", 800 " + at("file") +
                                   ", 800 " + at("folder/other") + ", 200 " + at("folder/other") +
                                   ", 200 " + at("folder"));
}

TEST_F(FSEventsTest, EndsOfAMoveHaveNumbersThatFollowEachOther) {
    writeFile(at("old"), "x");
    StreamRecorder recorder({_root}, kItems);
    fs::rename(at("old"), at("new"));
    recorder.flush();
    ASSERT_EQ(recorder.told().size(), 2u);
    EXPECT_EQ(recorder.told()[0].id + 1, recorder.told()[1].id);
    EXPECT_EQ(FSEventStreamGetLatestEventId(recorder.stream()), recorder.told()[1].id);
}

TEST_F(FSEventsTest, WhatMovesOutIsRemovedAndWhatMovesInIsCreated) {
    fs::create_directories(at("leaving/below"));
    fs::create_directories(_folder / "arriving/below");
    writeFile(_folder / "arriving/below/file", "x");
    StreamRecorder recorder({_root}, kItems);
    fs::rename(at("leaving"), _folder / "left");
    recorder.flush();
    EXPECT_EQ(recorder.text(), "200 " + at("leaving"));
    recorder.clear();
    fs::rename(_folder / "arriving", at("arrived"));
    recorder.flush();
    EXPECT_EQ(recorder.text(), "100 " + at("arrived") + ", 100 " + at("arrived/below") + ", 100 " +
                                   at("arrived/below/file"));
    recorder.clear();
    // What has left is not followed, what has arrived is.
    writeFile(_folder / "left/below/file", "x");
    writeFile(at("arrived/below/more"), "");
    recorder.flush();
    EXPECT_EQ(recorder.text(), "100 " + at("arrived/below/more"));
}

TEST_F(FSEventsTest, MovedFolderIsFollowedUnderItsNewName) {
    fs::create_directories(at("a/b/c"));
    fs::create_directory(at("z"));
    StreamRecorder recorder({_root});
    fs::rename(at("a"), at("z/a2"));
    recorder.flush();
    EXPECT_EQ(recorder.text(), "0 " + _root + "/, 0 " + at("z/"));
    recorder.clear();
    writeFile(at("z/a2/b/c/file"), "x");
    ASSERT_TRUE(recorder.waitFor(at("z/a2/b/c/"), kChanged));
}

TEST_F(FSEventsTest, FoldersMadeInOneGoHideNothing) {
    StreamRecorder recorder({_root}, kItems);
    for (int number = 0; number < 500; ++number) {
        const std::string top = at(std::to_string(number));
        fs::create_directories(top + "/a/b/c");
        writeFile(top + "/a/b/c/file", "");
    }
    recorder.flush();
    for (int number = 0; number < 500; ++number) {
        const std::string top = at(std::to_string(number));
        ASSERT_TRUE(recorder.hasTold(top, kFolderCreated)) << top;
        for (const char* below : {"/a", "/a/b", "/a/b/c"})
            ASSERT_TRUE(recorder.hasTold(top + below, kFolderCreated)) << top << below;
        ASSERT_TRUE(recorder.hasTold(top + "/a/b/c/file", kFileCreated)) << top;
    }
}

TEST_F(FSEventsTest, RemovedRootIsToldOnceAndAgainWhenItIsBack) {
    StreamRecorder recorder({_root});
    fs::remove(_root);
    ASSERT_TRUE(recorder.waitFor(_root, kRootChanged));
    EXPECT_EQ(recorder.text(), "20 " + _root);
    recorder.clear();
    fs::create_directory(_root);
    ASSERT_TRUE(recorder.waitFor(_root, kRootChanged));
    recorder.clear();
    writeFile(at("file"), "x");
    EXPECT_TRUE(recorder.waitFor(_root + "/", kChanged));
}

TEST_F(FSEventsTest, RootRemovedWhileSomebodyIsInItIsTold) {
    const int held = open(_root.c_str(), O_RDONLY | O_CLOEXEC);
    StreamRecorder recorder({_root});
    fs::remove(_root);
    EXPECT_TRUE(recorder.waitFor(_root, kRootChanged));
    close(held);
}

TEST_F(FSEventsTest, RootReplacedByAFileIsTold) {
    StreamRecorder recorder({_root}, kItems);
    fs::remove(_root);
    writeFile(_root, "x");
    ASSERT_TRUE(recorder.waitFor(_root, kRootChanged));
    writeFile(_root, "xy");
    EXPECT_TRUE(recorder.waitFor(_root, kFileModified));
}

TEST_F(FSEventsTest, RenamedFolderAboveTheRootIsTold) {
    fs::create_directories(_folder / "top/middle/root");
    StreamRecorder recorder({_folder / "top/middle/root"});
    fs::rename(_folder / "top", _folder / "elsewhere");
    ASSERT_TRUE(recorder.waitFor(_folder / "top/middle/root", kRootChanged));
    recorder.clear();
    fs::rename(_folder / "elsewhere", _folder / "top");
    EXPECT_TRUE(recorder.waitFor(_folder / "top/middle/root", kRootChanged));
}

TEST_F(FSEventsTest, MissingRootIsToldWhenItComesToBe) {
    const std::string root = _folder / "not/yet/there";
    StreamRecorder recorder({root});
    fs::create_directories(root);
    ASSERT_TRUE(recorder.waitFor(root, kRootChanged));
    writeFile(root + "/file", "x");
    EXPECT_TRUE(recorder.waitFor(root + "/", kChanged));
}

TEST_F(FSEventsTest, StreamThatDoesNotWatchItsRootsIsToldToScanWhenOneIsReplaced) {
    StreamRecorder recorder({_root}, kFSEventStreamCreateFlagNone);
    fs::rename(_root, _folder / "old");
    recorder.flush();
    EXPECT_EQ(recorder.text(), "");
    fs::create_directory(_root);
    EXPECT_TRUE(recorder.waitFor(_root + "/", kFSEventStreamEventFlagMustScanSubDirs));
}

TEST_F(FSEventsTest, FileAsRootIsFollowedThroughAnEditorsSave) {
    writeFile(at("text"), "one");
    StreamRecorder recorder({at("text")});
    writeFile(at("text"), "two");
    ASSERT_TRUE(recorder.waitFor(at("text"), kChanged));
    recorder.clear();
    writeFile(at(".text.new"), "three");
    fs::rename(at(".text.new"), at("text"));
    ASSERT_TRUE(recorder.waitFor(at("text"), kRootChanged));
    recorder.flush();
    recorder.clear();
    writeFile(at("text"), "four");
    EXPECT_TRUE(recorder.waitFor(at("text"), kChanged));
}

TEST_F(FSEventsTest, LinkOnTheWayToTheRootIsFollowedAndItsNameKept) {
    fs::create_directory_symlink(_root, _folder / "link");
    fs::create_directory(at("below"));
    StreamRecorder recorder({_folder / "link/below"});
    writeFile(at("below/file"), "x");
    ASSERT_TRUE(recorder.waitFor(_folder / "link/below/", kChanged));
    recorder.clear();
    fs::remove(_folder / "link");
    EXPECT_TRUE(recorder.waitFor(_folder / "link/below", kRootChanged));
}

TEST_F(FSEventsTest, LinkBelowTheRootIsNotFollowed) {
    fs::create_directory(_folder / "outside");
    fs::create_directory_symlink(_folder / "outside", at("link"));
    StreamRecorder recorder({_root}, kItems);
    writeFile(_folder / "outside/file", "x");
    fs::create_directory_symlink(_folder / "outside", at("later"));
    writeFile(_folder / "outside/more", "x");
    recorder.flush();
    EXPECT_EQ(recorder.text(), "100 " + at("later"));
}

TEST_F(FSEventsTest, OverlappingRootsAreBothFollowed) {
    fs::create_directories(at("inner/deep"));
    StreamRecorder outer({_root}, kItems);
    StreamRecorder both({at("inner"), _root}, kItems);
    writeFile(at("inner/deep/file"), "");
    outer.flush();
    both.flush();
    EXPECT_EQ(outer.text(), "100 " + at("inner/deep/file"));
    EXPECT_EQ(both.text(), "100 " + at("inner/deep/file"));
    both.stop();
    outer.clear();
    writeFile(at("inner/deep/more"), "");
    outer.flush();
    EXPECT_EQ(outer.text(), "100 " + at("inner/deep/more"));
}

TEST_F(FSEventsTest, NamesThatAreNoTextAreToldAsTheyAre) {
    StreamRecorder recorder({_root}, kItems);
    const std::string name = at("\xff\xfe\n");
    writeFile(name, "");
    recorder.flush();
    EXPECT_EQ(recorder.text(), "100 " + name);
}

TEST_F(FSEventsTest, LatencyGathersChanges) {
    StreamRecorder recorder({_root}, kItems, 0.1);
    const auto begin = std::chrono::steady_clock::now();
    writeFile(at("one"), "");
    ASSERT_TRUE(recorder.waitUntil([&] { return !recorder.told().empty(); }));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(99));
}

TEST_F(FSEventsTest, WithoutDeferringTheFirstChangeIsToldAtOnceAndTheNextAfterTheLatency) {
    StreamRecorder recorder({_root}, kItems | kFSEventStreamCreateFlagNoDefer, 3600);
    writeFile(at("one"), "");
    ASSERT_TRUE(recorder.waitFor(at("one"), kFileCreated));
    writeFile(at("two"), "");
    CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, true);
    EXPECT_EQ(recorder.text(), "100 " + at("one"));
    recorder.flush();
    EXPECT_EQ(recorder.text(), "100 " + at("one") + ", 100 " + at("two"));
}

TEST_F(FSEventsTest, FlushAsyncHasTheRunLoopTellSoon) {
    StreamRecorder recorder({_root}, kItems, 3600);
    writeFile(at("file"), "");
    const FSEventStreamEventId latest = FSEventStreamFlushAsync(recorder.stream());
    EXPECT_EQ(recorder.text(), "");
    ASSERT_TRUE(recorder.waitFor(at("file"), kFileCreated));
    EXPECT_EQ(recorder.told()[0].id, latest);
}

TEST_F(FSEventsTest, StoppedStreamTellsNothing) {
    StreamRecorder recorder({_root}, kItems, 0);
    writeFile(at("file"), "");
    FSEventStreamStop(recorder.stream());
    recorder.flush();
    CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, true);
    EXPECT_EQ(recorder.text(), "");
}

TEST_F(FSEventsTest, StreamInThePlaceOfAnotherTellsWhatThatOneHadNotTold) {
    fs::create_directory(_folder / "second");
    StreamRecorder first({_root}, kItems, 3600);
    writeFile(at("file"), "");
    first.stop();
    writeFile(at("between"), "");
    StreamRecorder both({_root, _folder / "second"}, kItems);
    both.flush();
    EXPECT_EQ(both.text(), "100 " + at("file") + ", 100 " + at("between"));
}

TEST_F(FSEventsTest, StreamMayBeReplacedInItsOwnCall) {
    StreamRecorder recorder({_root}, kItems);
    std::unique_ptr<StreamRecorder> next;
    recorder.onCall = [&] {
        recorder.stop();
        next = std::make_unique<StreamRecorder>(std::vector<std::string>{_root}, kItems);
    };
    writeFile(at("one"), "");
    ASSERT_TRUE(recorder.waitUntil([&] { return next != nullptr; }));
    writeFile(at("two"), "");
    EXPECT_TRUE(next->waitFor(at("two"), kFileCreated));
    EXPECT_EQ(recorder.text(), "100 " + at("one"));
}

TEST_F(FSEventsTest, ClientMayStopAnotherStreamWhenOneIsReleased) {
    StreamRecorder other({_root});
    FSEventStreamContext context{};
    context.info = &other;
    context.release = [](const void* info) {
        const_cast<StreamRecorder*>(static_cast<const StreamRecorder*>(info))->stop();
    };
    CFStringRef path =
        CFStringCreateWithCString(kCFAllocatorDefault, _root.c_str(), kCFStringEncodingUTF8);
    CFArrayRef paths = CFArrayCreate(kCFAllocatorDefault, reinterpret_cast<const void**>(&path), 1,
                                     &kCFTypeArrayCallBacks);
    FSEventStreamRef stream = FSEventStreamCreate(
        kCFAllocatorDefault,
        [](ConstFSEventStreamRef, void*, size_t, void*, const FSEventStreamEventFlags*,
           const FSEventStreamEventId*) {},
        &context, paths, kFSEventStreamEventIdSinceNow, 0, 0);
    CFRelease(paths);
    CFRelease(path);
    FSEventStreamStart(stream);
    FSEventStreamStop(stream);
    FSEventStreamInvalidate(stream);
    FSEventStreamRelease(stream);
    // Takes the place of the other one, which ends with that.
    { const StreamRecorder next({_root}); }
    EXPECT_EQ(other.stream(), nullptr);
}

TEST_F(FSEventsTest, EarlierEventsAreAnsweredWithAScan) {
    StreamRecorder recorder({_root}, kFSEventStreamCreateFlagNone, 0.01, 1);
    recorder.flush();
    EXPECT_EQ(recorder.text(), "1 " + _root + "/, 10 ");
}

TEST_F(FSEventsTest, BlockedRunLoopLosesNothing) {
    StreamRecorder recorder({_root}, kItems);
    // More than the kernel keeps by default.
    constexpr int kFiles = 20000;
    for (int number = 0; number < kFiles; ++number) {
        close(open(at(std::to_string(number)).c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600));
        // The kernel keeps only so many until they are read, which takes a busy machine its time.
        if (number % 4000 == 0)
            ASSERT_TRUE(comesTrue(isKernelsQueueRead));
    }
    recorder.flush();
    EXPECT_EQ(recorder.told().size(), static_cast<std::size_t>(kFiles));
}

TEST_F(FSEventsTest, StreamWithoutPathsOrOfAnotherVersionIsNone) {
    CFArrayRef none = CFArrayCreate(kCFAllocatorDefault, nullptr, 0, &kCFTypeArrayCallBacks);
    const auto callback = [](ConstFSEventStreamRef, void*, size_t, void*,
                             const FSEventStreamEventFlags*, const FSEventStreamEventId*) {};
    EXPECT_EQ(FSEventStreamCreate(kCFAllocatorDefault, callback, nullptr, none,
                                  kFSEventStreamEventIdSinceNow, 0, 0),
              nullptr);
    FSEventStreamContext other{};
    other.version = 1;
    EXPECT_EQ(FSEventStreamCreate(kCFAllocatorDefault, callback, &other, none,
                                  kFSEventStreamEventIdSinceNow, 0, 0),
              nullptr);
    CFRelease(none);
}
