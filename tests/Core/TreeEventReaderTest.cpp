// SPDX-License-Identifier: MIT
#include "ula/src/Core/TreeEventReader.h"

#include <gtest/gtest.h>
#include <map>

using tav::ula::ReportedChange;
using tav::ula::TreeEvent;
using tav::ula::TreeEventReader;
using tav::ula::TreeEventType;

namespace {

class TreeEventReaderTest : public testing::Test {
protected:
    // What is on the disk: whether it is a folder.
    std::map<std::string, bool> _disk;

    std::vector<TreeEvent> read(const std::vector<ReportedChange>& changes,
                                const std::vector<std::string>& ignore = {}) {
        TreeEventReader reader = newReader(ignore);
        return read(reader, changes);
    }

    TreeEventReader newReader(const std::vector<std::string>& ignore = {}) {
        return TreeEventReader("/root", ignore, [&](const std::string& path) {
            const auto item = _disk.find(path);
            return item == _disk.end() ? std::nullopt : std::optional(item->second);
        });
    }

    static std::vector<TreeEvent> read(TreeEventReader& reader,
                                       const std::vector<ReportedChange>& changes) {
        std::vector<TreeEvent> events;
        for (std::size_t index = 0; index < changes.size();)
            for (const TreeEvent& event : reader.readNext(changes, &index))
                events.push_back(event);
        return events;
    }
};

ReportedChange change(const std::string& path, std::uint64_t id = 0) {
    ReportedChange change;
    change.path = path;
    change.id = id;
    return change;
}

ReportedChange renamed(const std::string& path, std::uint64_t id, bool isFolder = false) {
    ReportedChange result = change(path, id);
    result.isRenamed = true;
    result.isFolder = isFolder;
    return result;
}

}  // namespace

TEST_F(TreeEventReaderTest, SingleChangesAreTakenAsTheyAre) {
    ReportedChange created = change("/root/a");
    created.isCreated = created.isFolder = true;
    ReportedChange removed = change("/root/b");
    removed.isRemoved = true;
    EXPECT_EQ(read({created, removed, change("/root/c")}),
              (std::vector<TreeEvent>{{TreeEventType::Created, "/root/a", "", true},
                                      {TreeEventType::Removed, "/root/b"},
                                      {TreeEventType::Changed, "/root/c"}}));
}

TEST_F(TreeEventReaderTest, EndsWithNumbersThatFollowEachOtherAreAMove) {
    EXPECT_EQ(read({renamed("/root/a", 5, true), renamed("/root/b", 6, true)}),
              (std::vector<TreeEvent>{{TreeEventType::Moved, "/root/a", "/root/b", true}}));
}

TEST_F(TreeEventReaderTest, EndsOfDifferentMovesAreSingle) {
    _disk = {{"/root/b", false}};
    EXPECT_EQ(read({renamed("/root/a", 5), renamed("/root/b", 7)}),
              (std::vector<TreeEvent>{{TreeEventType::Removed, "/root/a"},
                                      {TreeEventType::Created, "/root/b"}}));
}

TEST_F(TreeEventReaderTest, FolderThatMovedInIsToBeRead) {
    _disk = {{"/root/in", true}};
    EXPECT_EQ(read({renamed("/root/in", 5, true)}),
              (std::vector<TreeEvent>{{TreeEventType::Created, "/root/in", "", true},
                                      {TreeEventType::RescanNeeded, "/root/in"}}));
}

TEST_F(TreeEventReaderTest, ContradictoryChangesAreLookedUp) {
    ReportedChange both = change("/root/a");
    both.isCreated = both.isRemoved = true;
    EXPECT_EQ(read({both}), (std::vector<TreeEvent>{{TreeEventType::Removed, "/root/a"}}));
    _disk = {{"/root/a", false}};
    EXPECT_EQ(read({both}), (std::vector<TreeEvent>{{TreeEventType::Created, "/root/a"}}));
}

TEST_F(TreeEventReaderTest, ScanIsPassedOn) {
    ReportedChange scan = change("/root/a");
    scan.mustScan = true;
    EXPECT_EQ(read({scan}), (std::vector<TreeEvent>{{TreeEventType::RescanNeeded, "/root/a"}}));
}

TEST_F(TreeEventReaderTest, ChangedRootIsRemovedToBeReadOrChanged) {
    ReportedChange root = change("/root");
    root.isRootChanged = true;
    EXPECT_EQ(read({root}), (std::vector<TreeEvent>{{TreeEventType::Removed, "/root"}}));
    _disk = {{"/root", true}};
    EXPECT_EQ(read({root}), (std::vector<TreeEvent>{{TreeEventType::RescanNeeded, "/root"}}));
    _disk = {{"/root", false}};
    EXPECT_EQ(read({root}), (std::vector<TreeEvent>{{TreeEventType::Changed, "/root"}}));
}

TEST_F(TreeEventReaderTest, WhatIsIgnoredIsLeftOut) {
    EXPECT_EQ(
        read({change("/root/x.tmp"), change("/root/.git/a"), change("/root/b")}, {"*.tmp", ".git"}),
        (std::vector<TreeEvent>{{TreeEventType::Changed, "/root/b"}}));
}

TEST_F(TreeEventReaderTest, RootIsNeverIgnored) {
    EXPECT_EQ(read({change("/root")}, {"root", "*"}),
              (std::vector<TreeEvent>{{TreeEventType::Changed, "/root"}}));
}

TEST_F(TreeEventReaderTest, MoveBetweenSeenAndIgnoredIsARemovalOrACreation) {
    _disk = {{"/root/a", false}};
    EXPECT_EQ(read({renamed("/root/a", 1), renamed("/root/a.tmp", 2)}, {"*.tmp"}),
              (std::vector<TreeEvent>{{TreeEventType::Removed, "/root/a"}}));
    EXPECT_EQ(read({renamed("/root/a.tmp", 3), renamed("/root/a", 4)}, {"*.tmp"}),
              (std::vector<TreeEvent>{{TreeEventType::Created, "/root/a"}}));
}

TEST_F(TreeEventReaderTest, MoveFromBeforeARescanIsLookedUp) {
    TreeEventReader reader = newReader();
    reader.didRescan("/root/a", 10);
    _disk = {{"/root/a/y", true}};
    EXPECT_EQ(read(reader, {renamed("/root/a/x", 9, true), renamed("/root/a/y", 10, true)}),
              (std::vector<TreeEvent>{{TreeEventType::Removed, "/root/a/x", "", true},
                                      {TreeEventType::Created, "/root/a/y", "", true},
                                      {TreeEventType::RescanNeeded, "/root/a/y"}}));
}

TEST_F(TreeEventReaderTest, MoveAfterARescanIsAMove) {
    TreeEventReader reader = newReader();
    reader.didRescan("/root/a", 10);
    EXPECT_EQ(read(reader, {renamed("/root/a/x", 11), renamed("/root/a/y", 12)}),
              (std::vector<TreeEvent>{{TreeEventType::Moved, "/root/a/x", "/root/a/y"}}));
}

TEST_F(TreeEventReaderTest, ChangeBesideARescanIsTakenAsItIs) {
    TreeEventReader reader = newReader();
    reader.didRescan("/root/a", 10);
    ReportedChange created = change("/root/ab", 5);
    created.isCreated = true;
    EXPECT_EQ(read(reader, {created}),
              (std::vector<TreeEvent>{{TreeEventType::Created, "/root/ab"}}));
}
