// SPDX-License-Identifier: MIT
#include "Foundation/BundleLayout.h"

#include "tests/support/TemporaryFolder.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace {

using namespace foundation;
namespace fs = std::filesystem;

class BundleLayouts : public testing::Test {
protected:
    void make(const std::string& path) { fs::create_directories(folder / path); }
    void makeFile(const std::string& path) { tav::test::writeFile(folder / path, ""); }

    tav::test::TemporaryFolder folder;
};

TEST_F(BundleLayouts, ProgramInContentsBelongsToTheBundleAbove) {
    make("Some.app/Contents/MacOS");
    make("Some.app/Contents/Resources");
    make("Some.app/Contents/Frameworks");
    makeFile("Some.app/Contents/Info.plist");
    const BundleLayout layout = programLayout(folder / "Some.app/Contents/MacOS/Some");
    EXPECT_EQ(layout.bundle, folder / "Some.app");
    EXPECT_EQ(layout.executable, folder / "Some.app/Contents/MacOS/Some");
    EXPECT_EQ(layout.resources, folder / "Some.app/Contents/Resources");
    EXPECT_EQ(layout.frameworks, folder / "Some.app/Contents/Frameworks");
    EXPECT_EQ(layout.information, folder / "Some.app/Contents/Info.plist");
}

TEST_F(BundleLayouts, BundleThatWasMovedAwayKeepsItsPathsAndHasNoParts) {
    const BundleLayout layout = programLayout(folder / "Gone.app/Contents/MacOS/Gone");
    EXPECT_EQ(layout.bundle, folder / "Gone.app");
    EXPECT_EQ(layout.executable, folder / "Gone.app/Contents/MacOS/Gone");
    EXPECT_EQ(layout.resources + layout.frameworks + layout.information, "");
}

TEST_F(BundleLayouts, WhatABundleLacksIsEmpty) {
    make("Bare.app/Contents");
    const std::optional<BundleLayout> layout = contentsLayout(folder / "Bare.app");
    ASSERT_TRUE(layout);
    EXPECT_EQ(layout->bundle, folder / "Bare.app");
    EXPECT_EQ(layout->resources + layout->frameworks + layout->information, "");
}

TEST_F(BundleLayouts, FolderWithoutContentsIsLeftToOthers) {
    make("Other.app/Resources");
    makeFile("Other.app/Contents");
    EXPECT_FALSE(contentsLayout(folder / "Other.app"));
    EXPECT_FALSE(contentsLayout(folder / "none"));
}

TEST_F(BundleLayouts, ProgramOfTheSystemHasItsDataInShare) {
    for (const std::string programs : {"bin", "sbin", "games", "libexec"}) {
        make("usr/" + programs);
        make("usr/share/tool");
        make("usr/lib/tool");
        makeFile("usr/share/tool/Info.plist");
        const BundleLayout layout = programLayout(folder / ("usr/" + programs + "/tool"));
        EXPECT_EQ(layout.bundle, folder / ("usr/" + programs + "/tool"));
        EXPECT_EQ(layout.executable, layout.bundle);
        EXPECT_EQ(layout.resources, folder / "usr/share/tool");
        EXPECT_EQ(layout.frameworks, folder / "usr/lib/tool");
        EXPECT_EQ(layout.information, folder / "usr/share/tool/Info.plist");
    }
}

TEST_F(BundleLayouts, ProgramMayHaveItsDataBesideIt) {
    make("tool/Resources");
    make("tool/Frameworks");
    make("share/program");
    const BundleLayout layout = programLayout(folder / "tool/program");
    EXPECT_EQ(layout.bundle, folder / "tool/program");
    EXPECT_EQ(layout.resources, folder / "tool/Resources");
    EXPECT_EQ(layout.frameworks, folder / "tool/Frameworks");
}

TEST_F(BundleLayouts, ProgramWithoutFoldersHasItsDataRightBesideIt) {
    make("usr/bin");
    const BundleLayout layout = programLayout(folder / "usr/bin/tool");
    EXPECT_EQ(layout.resources, folder / "usr/bin");
    EXPECT_EQ(layout.frameworks, "");
    EXPECT_EQ(layout.information, "");
}

TEST_F(BundleLayouts, ProgramsAtTheRootHaveALayout) {
    EXPECT_EQ(programLayout("/no such program").resources, "/");
    EXPECT_EQ(programLayout("/bin/no such program").resources, "/bin");
}

TEST(RunningProgram, IsThisOne) {
    EXPECT_EQ(runningProgram(), fs::read_symlink("/proc/self/exe").string());
}

}  // namespace
