// SPDX-License-Identifier: MIT
#include "Foundation/UserFolders.h"

#include "tests/support/TemporaryFolder.h"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>

namespace {

using namespace foundation;
using tav::test::TemporaryFolder;
using tav::test::writeFile;
namespace fs = std::filesystem;

std::string pictures(const std::string& text) {
    return folderInUserDirs(text, "PICTURES", "/home/u").value_or("nothing");
}

TEST(UserDirs, FoldersLieInTheHomeFolderOrAnywhere) {
    EXPECT_EQ(pictures("XDG_PICTURES_DIR=\"$HOME/Bilder\"\n"), "/home/u/Bilder");
    EXPECT_EQ(pictures("XDG_PICTURES_DIR=\"/srv/Bilder\""), "/srv/Bilder");
    EXPECT_EQ(pictures("# of the desktop\n\nXDG_MUSIC_DIR=\"/m\"\n"
                       " \tXDG_PICTURES_DIR = \"$HOME/a b\"  # theirs\nXDG_VIDEOS_DIR=\"/v\"\n"),
              "/home/u/a b");
}

TEST(UserDirs, SlashesAtTheEndAreLeftOut) {
    EXPECT_EQ(pictures("XDG_PICTURES_DIR=\"/srv/Bilder//\""), "/srv/Bilder");
    EXPECT_EQ(pictures("XDG_PICTURES_DIR=\"/\""), "/");
}

TEST(UserDirs, FolderThatIsTurnedOffIsTheHomeFolder) {
    EXPECT_EQ(pictures("XDG_PICTURES_DIR=\"$HOME/\""), "/home/u");
    EXPECT_EQ(pictures("XDG_PICTURES_DIR=\"$HOME\""), "/home/u");
}

TEST(UserDirs, CharactersBehindBackslashesAreTakenAsTheyAre) {
    EXPECT_EQ(pictures(R"(XDG_PICTURES_DIR="$HOME/\"a\" \\ \$b \`")"), "/home/u/\"a\" \\ $b `");
}

TEST(UserDirs, LastLineCounts) {
    EXPECT_EQ(pictures("XDG_PICTURES_DIR=\"/a\"\nXDG_PICTURES_DIR=\"/b\"\n"), "/b");
    EXPECT_EQ(pictures("XDG_PICTURES_DIR=\"/a\"\nXDG_PICTURES_DIR=\"wrong\"\n"), "/a");
}

TEST(UserDirs, WhatIsNoFolderIsNothing) {
    for (const char* text :
         {"", "\n\n", "XDG_PICTURES_DIR", "XDG_PICTURES_DIR=", "XDG_PICTURES_DIR=\"\"",
          "XDG_PICTURES_DIR=/unquoted", "XDG_PICTURES_DIR=\"relative\"",
          "XDG_PICTURES_DIR=\"$HOMES/x\"", "XDG_PICTURES_DIR=\"${HOME}/x\"",
          "#XDG_PICTURES_DIR=\"/x\"", "XDG_PICTURES_DIRECTORY=\"/x\"", "XDG_PICTURES=\"/x\"",
          "PICTURES_DIR=\"/x\"", "XDG_DIR=\"/x\"", "XDG_PICTURES_DIR=\"\\"})
        EXPECT_EQ(pictures(text), "nothing") << text;
}

TEST(UserDirs, QuoteThatIsNeverClosedEndsWithTheLine) {
    EXPECT_EQ(pictures("XDG_PICTURES_DIR=\"/x\nXDG_MUSIC_DIR=\"/y\"\n"), "/x");
}

TEST(UserFolder, FileIsReadAnewWhenItHasChanged) {
    const TemporaryFolder home;
    unsetenv("XDG_CONFIG_HOME");
    const std::string path = home.path().string();
    EXPECT_EQ(userFolder("MUSIC", path), std::nullopt);
    fs::create_directory(home / ".config");
    writeFile(home / ".config/user-dirs.dirs", "XDG_MUSIC_DIR=\"/one\"\n");
    EXPECT_EQ(userFolder("MUSIC", path), "/one");
    writeFile(home / "new", "XDG_MUSIC_DIR=\"/two\"\n");
    fs::rename(home / "new", home / ".config/user-dirs.dirs");
    EXPECT_EQ(userFolder("MUSIC", path), "/two");
    fs::remove(home / ".config/user-dirs.dirs");
    EXPECT_EQ(userFolder("MUSIC", path), std::nullopt);
}

TEST(UserFolder, ConfigurationMayLieElsewhere) {
    const TemporaryFolder other;
    writeFile(other / "user-dirs.dirs", "XDG_MUSIC_DIR=\"$HOME/m\"\n");
    setenv("XDG_CONFIG_HOME", other.path().c_str(), 1);
    EXPECT_EQ(userFolder("MUSIC", "/home/u"), "/home/u/m");
    setenv("XDG_CONFIG_HOME", "relative", 1);
    EXPECT_EQ(userFolder("MUSIC", "/home/u"), std::nullopt);
    unsetenv("XDG_CONFIG_HOME");
}

TEST(DataFolder, IsThatOfTheEnvironmentIfItIsAnAbsolutePath) {
    for (const char* value : {"", "relative/path"}) {
        setenv("XDG_DATA_HOME", value, 1);
        EXPECT_EQ(dataFolder("/home/u"), "/home/u/.local/share");
    }
    setenv("XDG_DATA_HOME", "/data", 1);
    EXPECT_EQ(dataFolder("/home/u"), "/data");
    unsetenv("XDG_DATA_HOME");
    EXPECT_EQ(dataFolder("/home/u"), "/home/u/.local/share");
}

}  // namespace
