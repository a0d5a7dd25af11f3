// SPDX-License-Identifier: MIT
// Streams where the system sets limits: full queues, no more watches, mounts that come and go,
// folders that may not be read, forked children. Changes limits of the kernel: needs root.
#include "FSEventsFixture.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/LoweredLimit.h"
#include "tests/support/Mounts.h"

#include <cstdlib>
#include <fstream>
#include <sched.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace tav::test;

namespace {

namespace fs = std::filesystem;

constexpr char kQueueLimit[] = "/proc/sys/fs/inotify/max_queued_events";

// In a process whose user may have so many of something of inotify's.
std::string runLimited(const char* limit, const char* value,
                       const std::function<std::string()>& function) {
    return runInChild([&]() -> std::string {
        if (unshare(CLONE_NEWUSER) != 0)
            return "no user namespace";
        std::ofstream(std::string("/proc/sys/user/") + limit) << value;
        return function();
    });
}

using FSEventsFaultsTest = FSEventsFixture;

}  // namespace

TEST_F(FSEventsFaultsTest, FullQueueIsAnsweredWithAScanOfEveryRootAndALineInTheLog) {
    const LoweredLimit limit(kQueueLimit, "2");
    testing::internal::CaptureStderr();
    StreamRecorder recorder({_root});
    for (int number = 0; !recorder.hasTold(_root + "/", kMustScan) && number < 100000; ++number) {
        fs::create_directory(at(std::to_string(number)));
        if (number % 100 == 0)
            recorder.flush();
    }
    EXPECT_TRUE(recorder.hasTold(_root + "/", kMustScan));
    EXPECT_TRUE(testing::internal::GetCapturedStderr().starts_with(
        "FSEvents: changes were lost, all folders are read again: more than "
        "fs.inotify.max_queued_events (2) came at once; raise it when this happens often\n"));
    // A folder that was made while events were lost is followed.
    recorder.clear();
    writeFile(at("0/file"), "x");
    EXPECT_TRUE(recorder.waitUntil([&] {
        return recorder.hasTold(at("0/"), kChanged) || recorder.hasTold(_root + "/", kMustScan);
    }));
}

TEST_F(FSEventsFaultsTest, RootRemovedWhileEventsAreLostIsTold) {
    const LoweredLimit limit(kQueueLimit, "2");
    testing::internal::CaptureStderr();
    StreamRecorder recorder({_root});
    for (int number = 0; number < 1000; ++number)
        fs::create_directory(at(std::to_string(number)));
    fs::remove_all(_root);
    EXPECT_TRUE(recorder.waitFor(_root, kFSEventStreamEventFlagRootChanged));
    testing::internal::GetCapturedStderr();
}

TEST_F(FSEventsFaultsTest, UsedUpWatchesAreToldAsAScanOfTheRootWithTheLimitInTheLog) {
    for (int number = 0; number < 20; ++number)
        fs::create_directory(at(std::to_string(number)));
    const std::string told = runLimited("max_inotify_watches", "10", [&] {
        testing::internal::CaptureStderr();
        StreamRecorder recorder({_root});
        recorder.flush();
        return recorder.text() + "\n" + testing::internal::GetCapturedStderr();
    });
    const std::string start = "1 " + _root + "/\nFSEvents: " + _root + "/";
    ASSERT_TRUE(told.starts_with(start)) << told;
    const long limit = std::stol(readFile("/proc/sys/fs/inotify/max_user_watches"));
    const std::string end = " and folders like it are not watched: all " + std::to_string(limit) +
                            " of fs.inotify.max_user_watches are in use; raise it: sysctl "
                            "fs.inotify.max_user_watches=" +
                            std::to_string(2 * limit) + "\n";
    EXPECT_TRUE(told.ends_with(end)) << told;
}

TEST_F(FSEventsFaultsTest, FolderForWhichThereIsNoWatchIsToldWhenItIsMade) {
    const std::string told = runLimited("max_inotify_watches", "8", [&] {
        testing::internal::CaptureStderr();
        StreamRecorder recorder({_root});
        for (int number = 0; number < 20; ++number)
            fs::create_directory(at(std::to_string(number)));
        recorder.flush();
        testing::internal::GetCapturedStderr();
        return recorder.text();
    });
    EXPECT_EQ(told, "0 " + _root + "/, 1 " + _root + "/");
}

TEST_F(FSEventsFaultsTest, StreamDoesNotStartWithoutAQueue) {
    EXPECT_EQ(runLimited("max_inotify_instances", "0",
                         [&] {
                             testing::internal::CaptureStderr();
                             StreamRecorder recorder({_root});
                             return std::string(recorder.hasStarted() ? "started\n" : "") +
                                    testing::internal::GetCapturedStderr();
                         }),
              "FSEvents: nothing can be watched: Too many open files; raise "
              "fs.inotify.max_user_instances, or let go of files\n");
}

TEST_F(FSEventsFaultsTest, QueueThatTheKernelDoesNotGiveAgainIsToldAndAskedFor) {
    const LoweredLimit limit(kQueueLimit, "2");
    const std::string instances = "/proc/sys/user/max_inotify_instances";
    const std::string told = runLimited("max_inotify_instances", "1", [&]() -> std::string {
        testing::internal::CaptureStderr();
        StreamRecorder recorder({_root});
        writeFile(instances, "0");
        for (int number = 0; !recorder.hasTold(_root + "/", kMustScan) && number < 100000;
             ++number) {
            fs::create_directory(at(std::to_string(number)));
            if (number % 100 == 0)
                recorder.flush();
        }
        recorder.flush();
        recorder.clear();
        writeFile(instances, "1");
        if (!recorder.waitFor(_root + "/", kMustScan))
            return "not recovered";
        recorder.clear();
        writeFile(at("file"), "x");
        if (!recorder.waitFor(_root + "/", kChanged))
            return "not watched again";
        return testing::internal::GetCapturedStderr();
    });
    EXPECT_EQ(told,
              "FSEvents: changes were lost, all folders are read again: more than "
              "fs.inotify.max_queued_events (2) came at once; raise it when this happens often\n"
              "FSEvents: nothing is watched until the kernel gives a queue again: Too many open "
              "files; raise fs.inotify.max_user_instances, or let go of files\n");
}

TEST_F(FSEventsFaultsTest, FolderThatMayNotBeReadIsFollowedOnceItMay) {
    fs::create_directory(at("locked"));
    writeFile(at("locked/file"), "x");
    ASSERT_EQ(chown(at("locked").c_str(), 65534, 65534), 0);
    chmod(_folder.path().c_str(), 0755);
    chmod(at("locked").c_str(), 0);
    const std::string told = runInChild([&]() -> std::string {
        if (setresuid(65534, 65534, 65534) != 0)
            return "still root";
        testing::internal::CaptureStderr();
        StreamRecorder recorder({_root}, kItems);
        chmod(at("locked").c_str(), 0755);
        recorder.flush();
        return testing::internal::GetCapturedStderr() + recorder.text();
    });
    EXPECT_EQ(told, "FSEvents: " + at("locked") +
                        " and folders like it are not watched: Permission denied\n400 " +
                        at("locked") + ", 100 " + at("locked/file"));
}

TEST_F(FSEventsFaultsTest, RootThatMayNotBeReadIsToldAndFollowedOnceItMay) {
    ASSERT_EQ(chown(_root.c_str(), 65534, 65534), 0);
    chmod(_folder.path().c_str(), 0755);
    chmod(_root.c_str(), 0);
    const std::string told = runInChild([&]() -> std::string {
        if (setresuid(65534, 65534, 65534) != 0)
            return "still root";
        testing::internal::CaptureStderr();
        StreamRecorder recorder({_root}, kItems);
        chmod(_root.c_str(), 0755);
        recorder.flush();
        writeFile(at("file"), "");
        recorder.flush();
        testing::internal::GetCapturedStderr();
        return recorder.text();
    });
    EXPECT_EQ(told, "20 " + _root + ", 100 " + at("file"));
}

TEST_F(FSEventsFaultsTest, MountsBelowTheRootAreToldAndFollowed) {
    fs::create_directories(at("sub/mnt"));
    StreamRecorder recorder({_root});
    MountedMemory mounted(at("sub/mnt"));
    ASSERT_TRUE(recorder.waitFor(at("sub/mnt/"), kFSEventStreamEventFlagMount));
    recorder.clear();
    writeFile(at("sub/mnt/file"), "x");
    ASSERT_TRUE(recorder.waitFor(at("sub/mnt/"), kChanged));
    recorder.clear();
    mounted.unmount();
    ASSERT_TRUE(recorder.waitFor(at("sub/mnt/"), kFSEventStreamEventFlagUnmount));
    recorder.clear();
    writeFile(at("sub/mnt/beneath"), "x");
    EXPECT_TRUE(recorder.waitFor(at("sub/mnt/"), kChanged));
}

TEST_F(FSEventsFaultsTest, RootThatIsUnmountedIsTold) {
    MountedMemory mounted(at("mnt"));
    StreamRecorder recorder({at("mnt")});
    mounted.unmount();
    ASSERT_TRUE(recorder.waitFor(at("mnt"), kFSEventStreamEventFlagRootChanged));
    recorder.clear();
    const MountedMemory again(at("mnt"));
    ASSERT_TRUE(recorder.waitFor(at("mnt"), kFSEventStreamEventFlagRootChanged));
    writeFile(at("mnt/file"), "x");
    EXPECT_TRUE(recorder.waitFor(at("mnt/"), kChanged));
}

TEST_F(FSEventsFaultsTest, MountElsewhereIsNotToldOfAFileAsRoot) {
    writeFile(at("file"), "x");
    fs::create_directory(at("mnt"));
    StreamRecorder file({at("file")});
    StreamRecorder folder({_root});
    const MountedMemory mounted(at("mnt"));
    ASSERT_TRUE(folder.waitFor(at("mnt/"), kFSEventStreamEventFlagMount));
    file.flush();
    EXPECT_EQ(file.text(), "");
}

TEST_F(FSEventsFaultsTest, MountOverTheFolderOfAFileAsRootIsTold) {
    writeFile(at("file"), "x");
    StreamRecorder recorder({at("file")});
    MountedMemory mounted(_root);
    ASSERT_TRUE(recorder.waitFor(at("file"), kRootChanged));
    recorder.clear();
    mounted.unmount();
    EXPECT_TRUE(recorder.waitFor(at("file"), kRootChanged));
}

TEST_F(FSEventsFaultsTest, DeadShareBelowTheRootHoldsNobodyUp) {
    fs::create_directory(at("aside"));
    const DeadShare share(at("share"));
    StreamRecorder recorder({_root});
    writeFile(at("aside/file"), "x");
    EXPECT_TRUE(recorder.waitFor(at("aside/"), kChanged));
}

// Of a small disk: the watches of this one would be all that the user has.
TEST_F(FSEventsFaultsTest, RootFolderOfTheDiskCanBeWatched) {
    const BoundFolder kernel("/proc", at("proc"));
    fs::create_directory(at("sub"));
    const std::string told = runInChild([&]() -> std::string {
        if (chroot(_root.c_str()) != 0 || chdir("/") != 0)
            return "no other root";
        StreamRecorder recorder({"/"});
        writeFile("/sub/file", "x");
        writeFile("/file", "x");
        recorder.flush();
        return recorder.text();
    });
    EXPECT_EQ(told, "0 /sub/, 0 /");
}

TEST_F(FSEventsFaultsTest, FoldersNestedTooDeepAreToldAsAScan) {
    std::string deep = _root;
    for (int level = 0; level < 250; ++level)
        deep += "/d";
    fs::create_directories(deep);
    testing::internal::CaptureStderr();
    StreamRecorder recorder({_root});
    recorder.flush();
    const std::string log = testing::internal::GetCapturedStderr();
    EXPECT_TRUE(recorder.text().starts_with("1 " + at("d/d/"))) << recorder.text();
    EXPECT_TRUE(log.ends_with(" and folders like it are not watched: they lie too deep\n")) << log;
}

TEST_F(FSEventsFaultsTest, ForkedChildLeavesTheStreamsOfItsParentAlone) {
    fs::create_directory(at("sub"));
    StreamRecorder recorder({_root}, kItems);
    const std::string told = runInChild([&]() -> std::string {
        recorder.stop();
        StreamRecorder own({_root}, kItems);
        writeFile(at("sub/child"), "");
        own.flush();
        return own.text();
    });
    EXPECT_EQ(told, "100 " + at("sub/child"));
    writeFile(at("sub/parent"), "");
    EXPECT_TRUE(recorder.waitFor(at("sub/parent"), kFileCreated));
    EXPECT_TRUE(recorder.hasTold(at("sub/child"), kFileCreated));
}

TEST_F(FSEventsFaultsTest, ProcessForksWhileStreamsStart) {
    std::atomic<bool> isOver = false;
    std::thread starter([&] {
        for (int number = 0; !isOver; ++number) {
            const std::string root = at(std::to_string(number % 20));
            fs::create_directory(root);
            StreamRecorder recorder({root});
            fs::remove(root);
        }
    });
    for (int round = 0; round < 300; ++round)
        ASSERT_EQ(runInChild([] { return std::string("alive"); }), "alive");
    isOver = true;
    starter.join();
}

TEST_F(FSEventsFaultsTest, ThreadsStartAndStopStreamsWhileFoldersChange) {
    std::atomic<bool> isOver = false;
    std::thread writer([&] {
        for (int number = 0; !isOver; ++number) {
            const std::string name = at(std::to_string(number % 50));
            fs::create_directories(name + "/a/b");
            fs::remove_all(name);
        }
    });
    std::vector<std::thread> threads;
    for (int index = 0; index < 4; ++index)
        threads.emplace_back([&] {
            for (int round = 0; round < 100; ++round) {
                StreamRecorder recorder({_root}, kItems);
                recorder.flush();
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    isOver = true;
    writer.join();
    StreamRecorder last({_root}, kItems);
    writeFile(at("file"), "");
    EXPECT_TRUE(last.waitFor(at("file"), kFileCreated));
}
