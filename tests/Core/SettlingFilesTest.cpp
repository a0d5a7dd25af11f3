// SPDX-License-Identifier: MIT
#include "ula/src/Core/SettlingFiles.h"

#include <gtest/gtest.h>
#include <map>

using tav::ula::SettlingFiles;
using tav::ula::TreeEvent;
using tav::ula::TreeEventType;
using namespace std::chrono_literals;

namespace {

constexpr SettlingFiles::Time kStart{};

class SettlingFilesTest : public testing::Test {
protected:
    int _looks = 0;
    std::map<std::string, std::uint64_t> _sizes;
    SettlingFiles _files{100ms, [this](const std::string& path) -> SettlingFiles::State {
                             ++_looks;
                             const auto file = _sizes.find(path);
                             if (file == _sizes.end())
                                 return {};
                             return {true, file->second, 0};
                         }};

    static TreeEvent created(const std::string& path) { return {TreeEventType::Created, path}; }
    static TreeEvent changed(const std::string& path) { return {TreeEventType::Changed, path}; }
    static TreeEvent removed(const std::string& path) { return {TreeEventType::Removed, path}; }
    static TreeEvent moved(const std::string& path, const std::string& newPath) {
        return {TreeEventType::Moved, path, newPath};
    }
};

using Events = std::vector<TreeEvent>;

}  // namespace

TEST_F(SettlingFilesTest, WithoutATimeEverythingIsToldAtOnce) {
    SettlingFiles files(0ms, nullptr);
    EXPECT_EQ(files.add({created("/a")}, kStart), Events{created("/a")});
    EXPECT_TRUE(files.isEmpty());
}

TEST_F(SettlingFilesTest, FileIsToldOnceWhenItHasStoppedGrowing) {
    _sizes["/a"] = 1;
    EXPECT_EQ(_files.add({created("/a"), changed("/a")}, kStart), Events{});
    EXPECT_EQ(_files.nextLook(), kStart + 100ms);
    EXPECT_EQ(_files.settled(kStart + 99ms), Events{});
    EXPECT_EQ(_files.settled(kStart + 100ms), Events{created("/a")});
    EXPECT_TRUE(_files.isEmpty());
}

TEST_F(SettlingFilesTest, EachEventLooksAtItsFileOnce) {
    _files.add({created("/a")}, kStart);
    EXPECT_EQ(_looks, 1);
    _files.add({changed("/a")}, kStart);
    EXPECT_EQ(_looks, 2);
}

TEST_F(SettlingFilesTest, EveryChangeStartsTheWaitAnew) {
    _sizes["/a"] = 1;
    _files.add({created("/a")}, kStart);
    _files.add({changed("/a")}, kStart + 50ms);
    EXPECT_EQ(_files.settled(kStart + 100ms), Events{});
    EXPECT_EQ(_files.settled(kStart + 150ms), Events{created("/a")});
}

TEST_F(SettlingFilesTest, GrowthThatNobodyReportedStartsTheWaitAnew) {
    _sizes["/a"] = 1;
    _files.add({changed("/a")}, kStart);
    _sizes["/a"] = 2;
    EXPECT_EQ(_files.settled(kStart + 100ms), Events{});
    EXPECT_EQ(_files.nextLook(), kStart + 200ms);
    EXPECT_EQ(_files.settled(kStart + 200ms), Events{changed("/a")});
}

TEST_F(SettlingFilesTest, FoldersDoNotWait) {
    const TreeEvent folder{TreeEventType::Created, "/a", "", true};
    EXPECT_EQ(_files.add({folder}, kStart), Events{folder});
}

// It may have taken the place of one that is known.
TEST_F(SettlingFilesTest, FileRemovedBeforeItWasToldIsToldAsRemoved) {
    _sizes["/a"] = 1;
    _files.add({created("/a")}, kStart);
    EXPECT_EQ(_files.add({removed("/a")}, kStart), Events{removed("/a")});
    EXPECT_TRUE(_files.isEmpty());
}

TEST_F(SettlingFilesTest, KnownFileRemovedWhileItWaitsIsToldAsRemoved) {
    _sizes["/a"] = 1;
    _files.add({changed("/a")}, kStart);
    EXPECT_EQ(_files.add({removed("/a")}, kStart), Events{removed("/a")});
    EXPECT_TRUE(_files.isEmpty());
}

TEST_F(SettlingFilesTest, NewFileThatMovesIsNewAtItsNewPlace) {
    _sizes = {{"/a", 1}, {"/b", 1}};
    _files.add({created("/a")}, kStart);
    EXPECT_EQ(_files.add({moved("/a", "/b")}, kStart), Events{removed("/a")});
    EXPECT_EQ(_files.settled(kStart + 100ms), Events{created("/b")});
}

TEST_F(SettlingFilesTest, KnownFileThatMovesIsToldAsMovedAndSettlesThere) {
    _sizes = {{"/a", 1}, {"/b", 1}};
    _files.add({changed("/a")}, kStart);
    EXPECT_EQ(_files.add({moved("/a", "/b")}, kStart), Events{moved("/a", "/b")});
    EXPECT_EQ(_files.settled(kStart + 100ms), Events{changed("/b")});
}

TEST_F(SettlingFilesTest, FilesMoveAlongWithTheirFolder) {
    _sizes = {{"/d/a", 1}, {"/e/a", 1}, {"/dd", 1}};
    _files.add({created("/d/a"), created("/dd")}, kStart);
    const TreeEvent move{TreeEventType::Moved, "/d", "/e", true};
    EXPECT_EQ(_files.add({move}, kStart), Events{move});
    EXPECT_EQ(_files.settled(kStart + 100ms), (Events{created("/dd"), created("/e/a")}));
}

TEST_F(SettlingFilesTest, FileThatIsGoneWhenItsTimeComesIsNotTold) {
    _sizes["/a"] = 1;
    _files.add({created("/a")}, kStart);
    _sizes.clear();
    EXPECT_EQ(_files.settled(kStart + 100ms), Events{});
    EXPECT_TRUE(_files.isEmpty());
}

TEST_F(SettlingFilesTest, WhatMovesOverAWaitingFileTakesItsPlace) {
    _sizes = {{"/a", 1}, {"/b", 1}};
    _files.add({created("/b")}, kStart);
    EXPECT_EQ(_files.add({moved("/a", "/b")}, kStart), Events{moved("/a", "/b")});
    EXPECT_TRUE(_files.isEmpty());
}
