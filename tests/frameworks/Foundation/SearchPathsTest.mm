// SPDX-License-Identifier: MIT
// Where applications and downloads belong.
#import <Foundation/Foundation.h>

#include "tests/support/TemporaryFolder.h"

#include <cstdlib>
#include <gmock/gmock.h>

namespace {

using namespace tav::test;
using testing::ElementsAre;

class SearchPaths : public testing::Test {
protected:
    SearchPaths() : _pool([[NSAutoreleasePool alloc] init]) {
        setenv("HOME", folder.path().c_str(), 1);
        setenv("XDG_CONFIG_HOME", (folder / "config").c_str(), 1);
        std::filesystem::create_directory(folder / "config");
    }
    ~SearchPaths() override { [_pool release]; }

    static std::vector<std::string> paths(NSSearchPathDirectory directory,
                                          NSSearchPathDomainMask domains, bool isExpanded = true) {
        std::vector<std::string> texts;
        for (NSString* path in NSSearchPathForDirectoriesInDomains(directory, domains, isExpanded))
            texts.push_back([path UTF8String]);
        return texts;
    }

    TemporaryFolder folder;

private:
    NSAutoreleasePool* _pool;
};

TEST_F(SearchPaths, TheUsersApplicationsAreInTheHomeFolderFirst) {
    EXPECT_EQ(paths(NSApplicationDirectory, NSUserDomainMask).front(), folder / "Applications");
}

TEST_F(SearchPaths, TheMachinesApplicationsAreLast) {
    EXPECT_EQ(paths(NSApplicationDirectory, NSLocalDomainMask).back(), "/Applications");
}

TEST_F(SearchPaths, WhereTheSystemInstallsIsAmongThem) {
    const auto all = paths(NSApplicationDirectory, NSAllDomainsMask);
    EXPECT_EQ(all.front(), folder / "Applications");
    for (const char* path : {"/Applications", "/opt", "/usr/bin", "/usr/local"})
        EXPECT_THAT(all, testing::Contains(path));
}

TEST_F(SearchPaths, DownloadsAreTheDesktops) {
    EXPECT_THAT(paths(NSDownloadsDirectory, NSAllDomainsMask), ElementsAre(folder / "Downloads"));
    writeFile(folder / "config/user-dirs.dirs", "XDG_DOWNLOAD_DIR=\"$HOME/Geladen\"\n");
    EXPECT_THAT(paths(NSDownloadsDirectory, NSAllDomainsMask), ElementsAre(folder / "Geladen"));
    EXPECT_THAT(paths(NSDownloadsDirectory, NSLocalDomainMask), ElementsAre());
}

TEST_F(SearchPaths, AHomeFolderIsNoFolderOfDownloads) {
    writeFile(folder / "config/user-dirs.dirs", "XDG_DOWNLOAD_DIR=\"$HOME/\"\n");
    EXPECT_THAT(paths(NSDownloadsDirectory, NSAllDomainsMask), ElementsAre(folder / "Downloads"));
}

TEST_F(SearchPaths, OtherDirectoriesAreGNUsteps) {
    EXPECT_FALSE(paths(NSLibraryDirectory, NSAllDomainsMask).empty());
}

}  // namespace
