// SPDX-License-Identifier: MIT
// The folders of the user as the platform's calls give them.
#import <Foundation/Foundation.h>

#include "tests/support/TemporaryFolder.h"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;

class Folders : public testing::Test {
protected:
    void SetUp() override {
        pool = [[NSAutoreleasePool alloc] init];
        setenv("HOME", home.path().c_str(), 1);
        for (const char* name : {"TMPDIR", "XDG_CONFIG_HOME", "XDG_DATA_HOME"})
            unsetenv(name);
    }
    void TearDown() override {
        // The folder of the next test is not to be made in the one of this.
        unsetenv("TMPDIR");
        [pool release];
    }

    static NSArray* urls(NSSearchPathDirectory directory,
                         NSSearchPathDomainMask domains = NSUserDomainMask) {
        return [[NSFileManager defaultManager] URLsForDirectory:directory inDomains:domains];
    }
    static std::string path(NSSearchPathDirectory directory) {
        NSArray* found = urls(directory);
        EXPECT_EQ([found count], 1u);
        EXPECT_TRUE([[found objectAtIndex:0] isFileURL]);
        return [[[found objectAtIndex:0] path] UTF8String];
    }

    NSAutoreleasePool* pool = nil;
    tav::test::TemporaryFolder home;
};

TEST_F(Folders, HaveTheirEnglishNamesWhereTheDesktopSaysNothing) {
    EXPECT_EQ(path(NSDocumentDirectory), home / "Documents");
    EXPECT_EQ(path(NSMoviesDirectory), home / "Movies");
    EXPECT_EQ(path(NSMusicDirectory), home / "Music");
    EXPECT_EQ(path(NSPicturesDirectory), home / "Pictures");
    EXPECT_EQ(path(NSApplicationSupportDirectory), home / ".local/share");
}

TEST_F(Folders, FollowTheDesktop) {
    fs::create_directory(home / ".config");
    tav::test::writeFile(home / ".config/user-dirs.dirs",
                         "XDG_DOCUMENTS_DIR=\"$HOME/Dokumente\"\n"
                         "XDG_VIDEOS_DIR=\"/srv/Gr\u00fcne #1 %20\"\n");
    EXPECT_EQ(path(NSDocumentDirectory), home / "Dokumente");
    EXPECT_EQ(path(NSMoviesDirectory), "/srv/Gr\u00fcne #1 %20");
    setenv("XDG_DATA_HOME", "/data", 1);
    EXPECT_EQ(path(NSApplicationSupportDirectory), "/data");
}

TEST_F(Folders, AreTheUsersOnly) {
    EXPECT_EQ([urls(NSDocumentDirectory, NSLocalDomainMask) count], 0u);
    EXPECT_EQ([urls(NSDocumentDirectory, NSAllDomainsMask) count], 1u);
    EXPECT_EQ([urls(NSDocumentDirectory, 0) count], 0u);
    EXPECT_EQ([urls(NSApplicationDirectory) count], 0u);
}

TEST_F(Folders, PathThatIsNoTextIsNone) {
    setenv("XDG_DATA_HOME", "/\xff", 1);
    EXPECT_EQ([urls(NSApplicationSupportDirectory) count], 0u);
}

TEST_F(Folders, TemporaryFolderIsThatOfTheEnvironment) {
    for (const std::string end : {"", "/", "//"}) {
        setenv("TMPDIR", (home.path().string() + end).c_str(), 1);
        EXPECT_EQ(std::string([NSTemporaryDirectory() UTF8String]), home.path().string());
    }
}

// GNUstep's, in the folder that TMP names at the start of the process.
TEST_F(Folders, TemporaryFolderIsOneOfTheUsersAloneWhereThereIsNone) {
    for (const std::string& value :
         {std::string(), std::string("relative"), home / "none", std::string("/proc/version")}) {
        setenv("TMPDIR", value.c_str(), 1);
        const fs::path path = [NSTemporaryDirectory() UTF8String];
        EXPECT_EQ(path.parent_path(), std::getenv("TMP")) << value;
        EXPECT_EQ(fs::status(path).permissions(), fs::perms::owner_all);
    }
}

TEST_F(Folders, TemporaryFolderIsSecuredAgainWhenItHasGoneOrIsOpen) {
    const fs::path path = [NSTemporaryDirectory() UTF8String];
    fs::remove_all(path);
    EXPECT_EQ([NSTemporaryDirectory() UTF8String], path.string());
    EXPECT_TRUE(fs::is_directory(path));
    fs::permissions(path, fs::perms::all);
    const fs::path secured = [NSTemporaryDirectory() UTF8String];
    EXPECT_EQ(fs::status(secured).permissions(), fs::perms::owner_all);
    fs::remove_all(path);
    fs::remove_all(secured);
}

}  // namespace
