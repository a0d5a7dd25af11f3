// SPDX-License-Identifier: MIT
// Our programs in the place of the platform's, and what they do. Mounts: needs root.
#include "AppKit/PlatformPrograms.h"

#include "tests/support/Mounts.h"
#include "tests/support/TemporaryFolder.h"

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace {

using namespace appkit;
using namespace tav::test;
namespace fs = std::filesystem;

constexpr const char* kAttribute = "user.com.apple.quarantine";

std::string quoted(const std::string& name) {
    return "'" + platformProgram(name) + "'";
}

int run(const std::string& command) {
    const int status = std::system((command + " 2>/dev/null").c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(PlatformPrograms, OnlyTheirNamesAndTheirPlaceOfThePlatformAreKnown) {
    EXPECT_EQ(fs::path(platformProgram("open")).filename(), "open");
    EXPECT_EQ(platformProgram("/usr/bin/xattr"), platformProgram("xattr"));
    for (const char* name : {"", "sh", "/bin/open", "/usr/bin/privileged", "privileged", "opener"})
        EXPECT_EQ(platformProgram(name), "") << name;
}

TEST(PlatformPrograms, CommandsOfAScriptAreReplaced) {
    EXPECT_EQ(withPlatformPrograms("(while [ `ps -p 4 | wc -l` -gt 1 ]; do sleep 0.1; done; "
                                   "/usr/bin/xattr -d -r name '/a b'; open '/a b') &"),
              "(while [ `ps -p 4 | wc -l` -gt 1 ]; do sleep 0.1; done; " + quoted("xattr") +
                  " -d -r name '/a b'; " + quoted("open") + " '/a b') &");
    EXPECT_EQ(withPlatformPrograms("(sleep 5 && hdiutil detach '/x') &"),
              "(sleep 5 && " + quoted("hdiutil") + " detach '/x') &");
    EXPECT_EQ(withPlatformPrograms("open a\nif true; then open b; fi | open c"),
              quoted("open") + " a\nif true; then " + quoted("open") + " b; fi | " +
                  quoted("open") + " c");
}

TEST(PlatformPrograms, CommandsAfterACommentAreReplacedWhateverItSays) {
    EXPECT_EQ(withPlatformPrograms("# don't; open x\nopen y # it's\nopen z"),
              "# don't; open x\n" + quoted("open") + " y # it's\n" + quoted("open") + " z");
    EXPECT_EQ(withPlatformPrograms("echo a#'b\n'; open y"),
              "echo a#'b\n'; " + quoted("open") + " y");
    EXPECT_EQ(withPlatformPrograms("echo #open"), "echo #open");
}

TEST(PlatformPrograms, CommandsOfALoopsConditionAreReplaced) {
    EXPECT_EQ(withPlatformPrograms("until open a; do open b; done"),
              "until " + quoted("open") + " a; do " + quoted("open") + " b; done");
}

TEST(PlatformPrograms, ArgumentsQuotationsAndFilesStay) {
    for (const char* script :
         {"echo open", "echo 'x; open y'", "echo \"x; open \\\" ; open\"", "echo a\\; open b",
          "cat <open >xattr", "/usr/local/bin/open x", "'open' x", "echo 'a'\\''; open b'",
          "opened; reopen", "echo \\", "echo 'x", "echo \"x"})
        EXPECT_EQ(withPlatformPrograms(script), script);
}

class Attributes : public testing::Test {
protected:
    Attributes() {
        fs::create_directories(folder / "a");
        writeFile(folder / "a/file", "");
        fs::create_symlink("file", folder / "a/link");
        for (const char* name : {"a", "a/file"})
            EXPECT_EQ(setxattr((folder / name).c_str(), kAttribute, "x", 1, 0), 0);
    }
    bool has(const std::string& name) const {
        return getxattr((folder / name).c_str(), kAttribute, nullptr, 0) == 1;
    }
    int xattr(const std::string& words) const {
        return run(quoted("xattr") + " " + words + " '" + (folder / "a") + "'");
    }

    TemporaryFolder folder;
};

TEST_F(Attributes, AreTakenFromAllThatAFolderHolds) {
    EXPECT_EQ(xattr("-d -r com.apple.quarantine"), 0);
    EXPECT_FALSE(has("a"));
    EXPECT_FALSE(has("a/file"));
    EXPECT_EQ(xattr("-dr com.apple.quarantine"), 0);
}

TEST_F(Attributes, AreTakenFromTheItemAloneWithoutTheOption) {
    EXPECT_EQ(xattr("-d com.apple.quarantine"), 0);
    EXPECT_FALSE(has("a"));
    EXPECT_TRUE(has("a/file"));
    EXPECT_EQ(xattr("-d com.apple.quarantine"), 1);
}

TEST_F(Attributes, OthersStay) {
    EXPECT_EQ(xattr("-d -r com.apple"), 0);
    EXPECT_TRUE(has("a"));
    EXPECT_EQ(xattr("-l com.apple.quarantine"), 2);
    EXPECT_TRUE(has("a/file"));
}

class Images : public testing::Test {
protected:
    static int detach(const std::string& point) {
        return run(quoted("hdiutil") + " detach '" + point + "'");
    }
    /// Another test may have the device for an image of its own by now.
    static bool isLoopFree(const std::string& device, const std::string& image) {
        std::ifstream file("/sys/block/" + device.substr(5) + "/loop/backing_file");
        std::string held;
        return !std::getline(file, held) || held.find(image) == std::string::npos;
    }

    TemporaryFolder folder{fs::canonical(fs::temp_directory_path())};
};

TEST_F(Images, AreUnmountedAndTheirLoopDeviceIsFree) {
    const std::string point = folder / "disk";
    MountedImage image(point, folder.path());
    const std::string device = image.device();
    writeFile(point + "/file", "x");
    EXPECT_FALSE(isLoopFree(device, image.image()));
    EXPECT_EQ(detach(point), 0);
    EXPECT_FALSE(fs::exists(point + "/file"));
    EXPECT_TRUE(isLoopFree(device, image.image()));
    EXPECT_EQ(detach(point), 1);
    image.forget();
}

TEST_F(Images, ALinkToTheFolderIsAsGood) {
    MountedImage image(folder / "disk", folder.path());
    fs::create_directory_symlink(folder / "disk", "/Volumes/Disk");
    EXPECT_EQ(detach("/Volumes/Disk"), 0);
    fs::remove("/Volumes/Disk");
    image.forget();
}

TEST_F(Images, WhatIsInUseStays) {
    const MountedImage image(folder / "disk", folder.path());
    writeFile(folder / "disk/file", "x");
    const int used = open((folder / "disk/file").c_str(), O_RDONLY);
    EXPECT_EQ(detach(folder / "disk"), 1);
    EXPECT_EQ(readFile(folder / "disk/file"), "x");
    close(used);
}

TEST_F(Images, AFolderOnADiskIsNotTheDisk) {
    const MountedImage image(folder / "disk", folder.path());
    fs::create_directory(folder / "disk/below");
    EXPECT_EQ(detach(folder / "disk/below"), 1);
    EXPECT_EQ(detach("/"), 1);
    EXPECT_TRUE(fs::exists(folder / "disk/below"));
}

}  // namespace
