// SPDX-License-Identifier: MIT
// ula watch, while it runs. Mounts file systems: needs root.
#include "tests/support/Mounts.h"
#include "tests/tool/ToolProcess.h"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <thread>

namespace tav::test {

namespace {

namespace fs = std::filesystem;

class WatchToolTest : public ToolTest {
protected:
    std::string _real = fs::canonical(folder.path()).string();

    std::string at(const std::string& name) const { return _real + "/" + name; }

    /// Tells nothing of its start: something is changed until it is told.
    static void awaitStart(RunningTool& tool, const std::string& path, const std::string& line) {
        std::atomic<bool> isTold = false;
        std::thread writer([&] {
            while (!isTold) {
                std::ofstream(path, std::ios::app) << "x";
                std::this_thread::sleep_for(std::chrono::milliseconds(20));
            }
        });
        const bool hasStarted = tool.waitForLine(line);
        isTold = true;
        writer.join();
        ASSERT_TRUE(hasStarted) << tool.seen();
    }
};

}  // namespace

TEST_F(WatchToolTest, TreeIsToldOneLineAnEventUntilItIsInterrupted) {
    write("start", "");
    RunningTool tool(_real, {"watch", "-r", "."});
    awaitStart(tool, at("start"), "changed   " + at("start"));
    fs::create_directory(at("sub"));
    EXPECT_TRUE(tool.waitForLine("created   " + at("sub/"))) << tool.seen();
    write("sub/a", "");
    EXPECT_TRUE(tool.waitForLine("created   " + at("sub/a"))) << tool.seen();
    fs::rename(at("sub/a"), at("b"));
    EXPECT_TRUE(tool.waitForLine("moved     " + at("sub/a") + " -> " + at("b"))) << tool.seen();
    fs::remove_all(at("sub"));
    EXPECT_TRUE(tool.waitForLine("removed   " + at("sub/"))) << tool.seen();
    tool.signal(SIGINT);
    EXPECT_EQ(tool.wait(), 0);
}

TEST_F(WatchToolTest, JsonIsAnObjectALine) {
    write("start", "");
    RunningTool tool(_real, {"watch", "-r", "--json", "."});
    awaitStart(tool, at("start"),
               R"({"version":1,"event":"changed","path":")" + at("start") + R"(","folder":false})");
    write("\xff", "");
    EXPECT_TRUE(tool.waitForLine(R"({"version":1,"event":"created","path":")" + at("\\\\xff") +
                                 R"(","folder":false})"))
        << tool.seen();
    fs::rename(at("start"), at("end"));
    EXPECT_TRUE(tool.waitForLine(R"({"version":1,"event":"moved","path":")" + at("start") +
                                 R"(","newPath":")" + at("end") + R"(","folder":false})"))
        << tool.seen();
}

TEST_F(WatchToolTest, IgnoredNamesAreNotTold) {
    write("start", "");
    RunningTool tool(_real, {"watch", "-r", "--ignore", "*.tmp", "--ignore", ".git", "."});
    awaitStart(tool, at("start"), "changed   " + at("start"));
    write("a.tmp", "");
    fs::create_directories(at(".git/objects"));
    write("b", "");
    EXPECT_TRUE(tool.waitForLine("created   " + at("b")));
    EXPECT_EQ(tool.seen().find(".tmp"), std::string::npos);
    EXPECT_EQ(tool.seen().find(".git"), std::string::npos);
}

TEST_F(WatchToolTest, PathsAndWhatIsIgnoredMayBeginWithBrackets) {
    fs::create_directory(at("[tree]"));
    write("[tree]/start", "");
    RunningTool tool(_real, {"watch", "-r", "--ignore", "[Tt]emp*", "[tree]"});
    awaitStart(tool, at("[tree]/start"), "changed   " + at("[tree]/start"));
    write("[tree]/temporary", "");
    write("[tree]/b", "");
    EXPECT_TRUE(tool.waitForLine("created   " + at("[tree]/b")));
    EXPECT_EQ(tool.seen().find("temp"), std::string::npos);
}

TEST_F(WatchToolTest, ItemIsFollowedThroughAReplacingSaveAndTheEndIsTold) {
    write("text", "");
    RunningTool tool(_real, {"watch", "text"});
    awaitStart(tool, at("text"), "changed   " + at("text"));
    write("text.new", "");
    fs::rename(at("text.new"), at("text"));
    EXPECT_TRUE(tool.waitForLine("changed   " + at("text"))) << tool.seen();
    fs::remove(at("text"));
    EXPECT_TRUE(tool.waitForLine("removed   " + at("text"))) << tool.seen();
    EXPECT_TRUE(tool.waitForLine("ula: nothing is left to watch"));
    EXPECT_EQ(tool.wait(), 1);
}

TEST_F(WatchToolTest, VolumesAreToldWhenTheyComeAndGo) {
    ASSERT_EQ(isolateMounts(), "");
    write("start", "");
    RunningTool tool(_real, {"watch", "-r", "--drives", "."});
    awaitStart(tool, at("start"), "changed   " + at("start"));
    MountedImage image("/Volumes/Card", _real, "Card");
    EXPECT_TRUE(tool.waitForLine(R"(mounted   /Volumes/Card  "Card")")) << tool.seen();
    image.unmount();
    EXPECT_TRUE(tool.waitForLine(R"(unmounted /Volumes/Card  "Card")")) << tool.seen();
}

TEST_F(WatchToolTest, ReaderWhoGoesAwayEndsIt) {
    write("start", "");
    RunningTool tool(_real, {"watch", "-r", "."});
    awaitStart(tool, at("start"), "changed   " + at("start"));
    tool.closeOutput();
    write("a", "");
    EXPECT_EQ(tool.wait(), 4);
}

TEST_F(WatchToolTest, WhatCannotBeWatchedIsRefusedWithACure) {
    expectResult(run({"watch", "none"}), 3, "",
                 "ula: cannot watch \"none\": it is not there\n"
                 "     'ula watch -r' on the folder above tells when it comes\n");
    expectResult(run({"watch", "-r", "none"}), 3, "",
                 "ula: cannot watch \"" + at("none") +
                     "\": there is no such file or folder; make it first, or watch the one above "
                     "it\n");
    expectResult(run({"watch"}), 2, "",
                 "ula: there is nothing to watch\n"
                 "     give paths, or --drives; see 'ula watch --help'\n");
}

}  // namespace tav::test
