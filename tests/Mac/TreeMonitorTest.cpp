// SPDX-License-Identifier: MIT
#include "tests/support/ChildProcess.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TreeRecorder.h"

#include <CoreFoundation/CoreFoundation.h>
#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>

using tav::test::TemporaryFolder;
using tav::test::TreeRecorder;
using tav::test::writeFile;
using tav::ula::TreeEventType;
using tav::ula::TreeMonitor;
using tav::ula::TreeMonitorOptions;
using namespace std::chrono_literals;

namespace {

namespace fs = std::filesystem;

class TreeMonitorTest : public testing::Test {
protected:
    TemporaryFolder _folder;
    std::string _root = _folder / "root";

    TreeMonitorTest() { fs::create_directory(_root); }
    std::string at(const std::string& name) const { return _root + "/" + name; }
};

}  // namespace

TEST_F(TreeMonitorTest, TellsWhatHappensInItsOrder) {
    TreeRecorder recorder(_root);
    writeFile(at("file"), "x");
    fs::create_directory(at("folder"));
    // From here on it is watched itself.
    recorder.flush();
    fs::rename(at("file"), at("folder/file"));
    fs::remove_all(at("folder"));
    recorder.flush();
    EXPECT_EQ(recorder.text(), "created " + at("file") + "\nchanged " + at("file") + "\ncreated " +
                                   at("folder") + "\nmoved " + at("file") + " to " +
                                   at("folder/file") + "\nremoved " + at("folder/file") +
                                   "\nremoved " + at("folder") + "\n");
}

TEST_F(TreeMonitorTest, TellsOnTheRunLoopAfterTheLatency) {
    TreeRecorder recorder(_root);
    const auto begin = std::chrono::steady_clock::now();
    writeFile(at("file"), "");
    EXPECT_TRUE(recorder.waitFor({TreeEventType::Created, at("file")}));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, 99ms);
}

TEST_F(TreeMonitorTest, ItemsThatChangePlacesAreBothStillThere) {
    writeFile(at("a"), "a");
    writeFile(at("b"), "b");
    TreeRecorder recorder(_root);
    ASSERT_EQ(renameat2(AT_FDCWD, at("a").c_str(), AT_FDCWD, at("b").c_str(), RENAME_EXCHANGE), 0);
    recorder.flush();
    EXPECT_EQ(recorder.text(), "moved " + at("a") + " to " + at("b") + "\ncreated " + at("a") +
                                   "\nmoved " + at("b") + " to " + at("a") + "\ncreated " +
                                   at("b") + "\n");
}

TEST_F(TreeMonitorTest, FolderThatMovesInIsToldWithItsContentAndFollowed) {
    fs::create_directories(_folder / "outside/deep");
    TreeRecorder recorder(_root);
    fs::rename(_folder / "outside", at("inside"));
    recorder.flush();
    EXPECT_EQ(recorder.text(), "created " + at("inside") + "\ncreated " + at("inside/deep") + "\n");
    recorder.take();
    writeFile(at("inside/deep/file"), "");
    recorder.flush();
    EXPECT_EQ(recorder.text(), "created " + at("inside/deep/file") + "\n");
}

TEST_F(TreeMonitorTest, RemovedRootIsToldAndItsReturnToo) {
    TreeRecorder recorder(_root);
    fs::remove(_root);
    ASSERT_TRUE(recorder.waitFor({TreeEventType::Removed, _root}));
    recorder.take();
    fs::create_directory(_root);
    ASSERT_TRUE(recorder.waitFor({TreeEventType::RescanNeeded, _root}));
    writeFile(at("file"), "");
    EXPECT_TRUE(recorder.waitFor({TreeEventType::Created, at("file")}));
}

TEST_F(TreeMonitorTest, SingleFileIsFollowedThroughEditorsSaves) {
    writeFile(at("text"), "0");
    TreeRecorder recorder(at("text"));
    for (const char* content : {"1", "2", "3"}) {
        writeFile(at("text.new"), content);
        fs::rename(at("text.new"), at("text"));
        ASSERT_TRUE(recorder.waitFor({TreeEventType::Changed, at("text")})) << content;
        recorder.flush();
        recorder.take();
    }
    writeFile(at("other"), "x");
    recorder.flush();
    EXPECT_EQ(recorder.text(), "");
}

TEST_F(TreeMonitorTest, FileIsToldWhenItHasStoppedGrowing) {
    TreeMonitorOptions options;
    options.latency = 1ms;
    options.settle = 200ms;
    using Clock = std::chrono::steady_clock;
    // Where the machine halts between two parts, the file has settled: such a run says nothing.
    for (int attempt = 0; attempt < 20; ++attempt) {
        const std::string file = at("growing" + std::to_string(attempt));
        TreeRecorder recorder(_root, options);
        Clock::time_point lastPart;
        Clock::duration longestPause{};
        for (int part = 0; part < 3; ++part) {
            lastPart = Clock::now();
            writeFile(file, std::string(static_cast<std::size_t>(part + 1), 'x'));
            CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.05, false);
            longestPause = std::max(longestPause, Clock::now() - lastPart);
        }
        if (longestPause >= options.settle)
            continue;
        EXPECT_EQ(recorder.text(), "");
        ASSERT_TRUE(recorder.waitUntil([&] { return !recorder.told().empty(); }));
        EXPECT_GE(Clock::now() - lastPart, options.settle);
        EXPECT_EQ(recorder.text(), "created " + file + "\n");
        return;
    }
    FAIL() << "this machine halts all the time";
}

TEST_F(TreeMonitorTest, IgnoredItemsAreNotTold) {
    TreeMonitorOptions options;
    options.ignore = {"*.tmp", ".git"};
    TreeRecorder recorder(_root, options);
    fs::create_directories(at(".git/objects"));
    writeFile(at("save.tmp"), "");
    fs::rename(at("save.tmp"), at("saved"));
    recorder.flush();
    EXPECT_EQ(recorder.text(), "created " + at("saved") + "\n");
}

TEST_F(TreeMonitorTest, SlotMayDestroyTheMonitor) {
    TreeRecorder recorder(_root);
    recorder.onEvent = [&] { recorder.end(); };
    writeFile(at("one"), "");
    writeFile(at("two"), "");
    ASSERT_TRUE(recorder.waitUntil([&] { return !recorder.told().empty(); }));
    CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.2, false);
    EXPECT_EQ(recorder.text(), "created " + at("one") + "\n");
}

TEST_F(TreeMonitorTest, SlotThatThrowsIsLoggedAndLosesNoEvent) {
    const tav::test::LogCapture log;
    TreeRecorder recorder(_root);
    recorder.onEvent = [] { throw std::runtime_error("full"); };
    writeFile(at("one"), "");
    writeFile(at("two"), "");
    recorder.flush();
    EXPECT_EQ(recorder.text(), "created " + at("one") + "\ncreated " + at("two") + "\n");
    const std::string line = "4 src/Mac/TreeMonitor:1 a slot has thrown when it was told of ";
    EXPECT_THAT(log.lines(),
                testing::ElementsAre(line + at("one") + ": full", line + at("two") + ": full"));
}

TEST_F(TreeMonitorTest, FileSettlesAlthoughTheSlotThrewForAnotherEvent) {
    const tav::test::LogCapture quiet;
    TreeMonitorOptions options;
    options.latency = 1ms;
    options.settle = 20ms;
    TreeRecorder recorder(_root, options);
    recorder.onEvent = [] { throw 7; };
    writeFile(at("held"), "");
    fs::create_directory(at("folder"));
    EXPECT_TRUE(recorder.waitFor({TreeEventType::Created, at("held")}));
}

TEST_F(TreeMonitorTest, PathFromTheCurrentFolderIsMadeAbsolute) {
    EXPECT_EQ(tav::test::runInChild([&] {
                  fs::current_path(_folder.path());
                  TreeRecorder recorder("root/");
                  writeFile(at("file"), "");
                  recorder.flush();
                  return recorder.text();
              }),
              "created " + fs::canonical(_root).string() + "/file\n");
}

TEST_F(TreeMonitorTest, MissingPathIsRefusedWithACure) {
    std::string error;
    EXPECT_EQ(TreeMonitor::create(at("none"), {}, &error), nullptr);
    EXPECT_EQ(error, "cannot watch \"" + at("none") +
                         "\": there is no such file or folder; make it first, or watch the one "
                         "above it");
    EXPECT_EQ(TreeMonitor::create(at("none")), nullptr);
}

TEST_F(TreeMonitorTest, PathThatMayNotBeReadIsRefusedWithACure) {
    chmod(_folder.path().c_str(), 0755);
    chmod(_root.c_str(), 0);
    EXPECT_EQ(tav::test::runInChild([&] {
                  if (setresuid(65534, 65534, 65534) != 0)
                      return std::string("still root");
                  std::string error;
                  TreeMonitor::create(_root, {}, &error);
                  return error;
              }),
              "cannot watch \"" + _root +
                  "\": Permission denied; see \"ls -ld\" for who may read it");
}

TEST_F(TreeMonitorTest, PathThatIsNoTextIsRefusedWithACure) {
    fs::create_directory(at("\xff"));
    std::string error;
    EXPECT_EQ(TreeMonitor::create(at("\xff"), {}, &error), nullptr);
    EXPECT_EQ(error, "cannot watch \"" + at("\xff") +
                         "\": its name is no UTF-8 text; rename it, or watch the folder above it");
}
