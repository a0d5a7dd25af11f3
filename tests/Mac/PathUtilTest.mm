// SPDX-License-Identifier: MIT
// The start-up disk's name is found once in a process and depends on /Volumes: each test of it runs
// in a child with a /Volumes of its own, for which root's rights are needed.
#import "ula/NSPathUtil.h"

#import "ula/ObjCHelper.h"
#include "ula/ScopedARPool.h"

#include "tests/support/ChildProcess.h"

#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <sched.h>
#include <set>
#include <sys/mount.h>
#include <thread>
#include <unistd.h>

namespace tav::ula {
namespace {

namespace fs = std::filesystem;

/// Gives the process a /Volumes of its own, empty and gone with it.
bool isolateVolumes() {
    std::error_code ignored;
    fs::create_directory("/Volumes", ignored);
    return unshare(CLONE_NEWNS) == 0 &&
           mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("volumes", "/Volumes", "tmpfs", 0, nullptr) == 0;
}

/// What `ask` gives in a child whose /Volumes was filled by `fill`.
std::string inChild(const std::function<void()>& fill, const std::function<std::string()>& ask) {
    return test::runInChild([&] {
        if (!isolateVolumes())
            return std::string("no /Volumes of its own");
        fill();
        return ask();
    });
}

std::string nameWith(const std::function<void()>& fill) {
    return inChild(fill, NSPathUtilNameSpace::nameForRootDisk);
}

class PathUtil : public testing::Test {
    const ScopedARPool _pool;
};

TEST_F(PathUtil, RootDiskHasTheNameOfTheLinkToRoot) {
    EXPECT_EQ(nameWith([] {
                  fs::create_directory("/Volumes/Card");
                  fs::create_symlink("/", "/Volumes/Gr\u00fcn disk");
                  fs::create_symlink("/home", "/Volumes/Zoo");
              }),
              "Gr\u00fcn disk");
}

TEST_F(PathUtil, RootDiskWithoutALinkHasTheDisplayNameOfRoot) {
    NSString* const display = [[NSFileManager defaultManager] displayNameAtPath:@"/"];
    EXPECT_EQ(nameWith([] {
                  fs::create_directory("/Volumes/Card");
                  fs::create_symlink("/home", "/Volumes/Home");
                  fs::create_symlink("/nowhere", "/Volumes/Stale");
                  fs::create_symlink("//", "/Volumes/Almost");
              }),
              [display toStdString]);
}

TEST_F(PathUtil, RootDiskWithSeveralLinksHasTheNameOfTheFirstListed) {
    const auto fill = [] {
        fs::create_symlink("/", "/Volumes/One");
        fs::create_symlink("/", "/Volumes/Two");
    };
    const std::string first = inChild(fill, [] {
        const ScopedARPool pool;
        NSArray* const entries =
            [[NSFileManager defaultManager] directoryContentsAtPath:@"/Volumes"];
        return [[entries objectAtIndex:0] toStdString];
    });
    EXPECT_EQ(nameWith(fill), first);
}

TEST_F(PathUtil, RootDiskKeepsItsNameForTheLifeOfTheProcess) {
    const auto link = [] { fs::create_symlink("/", "/Volumes/Before"); };
    EXPECT_EQ(inChild(link,
                      [] {
                          const std::string first = NSPathUtilNameSpace::nameForRootDisk();
                          fs::rename("/Volumes/Before", "/Volumes/After");
                          return first + " " + NSPathUtilNameSpace::nameForRootDisk();
                      }),
              "Before Before");
}

TEST_F(PathUtil, RootDiskHasOneNameWhenManyThreadsAskFirst) {
    EXPECT_EQ(inChild([] { fs::create_symlink("/", "/Volumes/Linux"); },
                      [] {
                          std::vector<std::string> names(8);
                          {
                              std::vector<std::jthread> threads;
                              for (std::string& name : names)
                                  threads.emplace_back(
                                      [&] { name = NSPathUtilNameSpace::nameForRootDisk(); });
                          }
                          const std::set<std::string> different(names.begin(), names.end());
                          return different.size() == 1 ? *different.begin() : "different names";
                      }),
              "Linux");
}

TEST_F(PathUtil, NormalizedPathIsThePathUnchanged) {
    for (const char* path : {"/", "", "/Users/Gr\u00fc\u00dfe/a:b", "relative/../path", "/a//b/"})
        EXPECT_EQ(NSPathUtilNameSpace::normalizeMacPathToRoot(path), path);
}

TEST_F(PathUtil, NormalizedPathIsACopy) {
    NSMutableString* const path = [NSMutableString stringWithString:@"/a"];
    NSString* const copy = [NSPathUtil normalizeToRootDisk:path];
    [path appendString:@"/b"];
    EXPECT_EQ([copy toStdString], "/a");
}

TEST_F(PathUtil, OnlyASymbolicLinkItselfIsALink) {
    const fs::path folder = fs::temp_directory_path() / ("path-util-" + std::to_string(getpid()));
    fs::create_directories(folder / "folder");
    fs::create_symlink(folder / "folder", folder / "link");
    fs::create_symlink("nowhere", folder / "stale");
    const auto isLink = [&](const char* name) {
        return [NSPathUtil isLink:[NSString fromStdString:(folder / name).string()]];
    };
    EXPECT_TRUE(isLink("link"));
    EXPECT_TRUE(isLink("stale"));
    EXPECT_FALSE(isLink("folder"));
    EXPECT_FALSE(isLink("missing"));
    EXPECT_FALSE(isLink("folder/missing/deeper"));
    fs::remove_all(folder);
}

}  // namespace
}  // namespace tav::ula
