// SPDX-License-Identifier: MIT
// The tree of nodes, over helpers that look at no disk.
#include "ula/Dir.h"

#include "tests/support/LogCapture.h"

#include <gmock/gmock.h>

namespace tav::ula {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

FileProperties named(const std::string& name) {
    FileProperties properties;
    properties.setName(name);
    properties.setTitle(name);
    properties.setFullPath("/" + name);
    return properties;
}

struct Counts {
    int listings = 0;
    int alive = 0;
    bool lastArgument = false;
};

/// Has two children, of which one is a visible folder.
class CountingHelper : public AbstractDirHelper {
public:
    CountingHelper(const std::string& name, Counts& counts)
        : AbstractDirHelper(named(name)), _counts(counts) {
        ++_counts.alive;
    }
    ~CountingHelper() override { --_counts.alive; }

    std::vector<AbstractDirHelper*> children(bool visibleFoldersOnly) override {
        ++_counts.listings;
        _counts.lastArgument = visibleFoldersOnly;
        std::vector<AbstractDirHelper*> found{new CountingHelper("Item 10", _counts)};
        if (!visibleFoldersOnly)
            found.push_back(new CountingHelper("item 9", _counts));
        return found;
    }
    bool exists() const override { return true; }
    void refresh() override {}

private:
    Counts& _counts;
};

/// What only the base answers.
class BareHelper : public AbstractDirHelper {
public:
    explicit BareHelper(const std::string& path) : AbstractDirHelper(path) {}
    std::vector<AbstractDirHelper*> children(bool) override { return {}; }
    bool exists() const override { return false; }
    void refresh() override {}
};

TEST(AbstractDirHelper, CutsTheFinalSlashOfLongerPathsOnly) {
    EXPECT_EQ(BareHelper("/abc/").properties().fullPath(), "/abc");
    EXPECT_EQ(BareHelper("/ab/").properties().fullPath(), "/ab");
    EXPECT_EQ(BareHelper("/a/").properties().fullPath(), "/a/");
    EXPECT_EQ(BareHelper("/").properties().fullPath(), "/");
    EXPECT_EQ(BareHelper("").properties().fullPath(), "");
    EXPECT_EQ(BareHelper("/abc//").properties().fullPath(), "/abc/");
}

TEST(AbstractDirHelper, ContainsChildrenIsAnErrorOfTheProgram) {
    const test::LogCapture log;
    EXPECT_FALSE(BareHelper("/abc").containsChildren(true));
    EXPECT_THAT(log.lines(),
                ElementsAre(test::assertionLine("src/Core/AbstractDirHelper", 29, "false")));
}

TEST(Dir, HasTheSlashForSeparator) {
    EXPECT_EQ(Dir::sep(), "/");
}

TEST(Dir, AdoptsItsHelperAndItsChildren) {
    Counts counts;
    {
        Dir dir(new CountingHelper("top", counts));
        dir.children(false);
        EXPECT_EQ(counts.alive, 3);
    }
    EXPECT_EQ(counts.alive, 0);
}

TEST(Dir, ListsOnce) {
    Counts counts;
    Dir dir(new CountingHelper("top", counts));
    const std::vector<Dir*>& first = dir.children(true);
    EXPECT_EQ(&dir.children(true), &first);
    EXPECT_EQ(counts.listings, 1);
    EXPECT_TRUE(counts.lastArgument);
}

TEST(Dir, FirstCallDecidesWhichChildrenThereAre) {
    Counts counts;
    Dir dir(new CountingHelper("top", counts));
    EXPECT_EQ(dir.children(true).size(), 1U);
    EXPECT_EQ(dir.children(false).size(), 1U);
    EXPECT_EQ(counts.listings, 1);
}

TEST(Dir, ChildrenKeepTheOrderOfTheListing) {
    Counts counts;
    Dir dir(new CountingHelper("top", counts));
    EXPECT_EQ(dir.children(false)[0]->name(), "Item 10");
    EXPECT_EQ(dir.children(false)[1]->name(), "item 9");
}

TEST(Dir, SortedChildrenAreTheSameNodesInTheFindersOrder) {
    Counts counts;
    Dir dir(new CountingHelper("top", counts));
    const std::vector<Dir*> sorted = dir.childrenSorted(false);
    EXPECT_THAT(sorted, ElementsAre(dir.children(false)[1], dir.children(false)[0]));
    EXPECT_EQ(counts.listings, 1);
}

TEST(Dir, ProgressIsToldAtTheEndAtLeast) {
    Counts counts;
    Dir dir(new CountingHelper("top", counts));
    std::vector<std::size_t> told;
    EXPECT_TRUE(dir.loadChildren(false, [&](std::size_t found) {
        told.push_back(found);
        return true;
    }));
    EXPECT_THAT(told, ElementsAre(2U));
    EXPECT_EQ(dir.children(true).size(), 2U);
    EXPECT_EQ(counts.listings, 1);
}

TEST(Dir, ListingWhoseProgressThrowsLeavesNoChildren) {
    Counts counts;
    Dir dir(new CountingHelper("top", counts));
    EXPECT_THROW(dir.loadChildren(false, [](std::size_t) -> bool { throw 7; }), int);
    EXPECT_EQ(counts.alive, 1);
    EXPECT_EQ(dir.children(false).size(), 2U);
}

TEST(Dir, ListingThatIsEndedLeavesNoChildren) {
    Counts counts;
    Dir dir(new CountingHelper("top", counts));
    EXPECT_FALSE(dir.loadChildren(false, [](std::size_t) { return false; }));
    EXPECT_EQ(counts.alive, 1);
    EXPECT_EQ(dir.children(true).size(), 1U);
    EXPECT_EQ(counts.listings, 2);
}

TEST(Dir, LoadedChildrenAreNotListedAgain) {
    Counts counts;
    Dir dir(new CountingHelper("top", counts));
    dir.children(true);
    EXPECT_TRUE(dir.loadChildren(false, [](std::size_t) { return false; }));
    EXPECT_EQ(counts.listings, 1);
}

TEST(Dir, FlagsAreThoseOfTheRecord) {
    const auto dirWith = [](FilePropertyFlags flag) {
        FileProperties properties;
        properties.setFlag(flag, true);
        struct Helper : BareHelper {
            explicit Helper(FileProperties its) : BareHelper("") { setProperties(std::move(its)); }
        };
        return std::make_unique<Dir>(new Helper(std::move(properties)));
    };
    EXPECT_TRUE(dirWith(Directory)->isDir());
    EXPECT_TRUE(dirWith(ReadOnly)->isReadOnly());
    EXPECT_TRUE(dirWith(Hidden)->isHidden());
    EXPECT_TRUE(dirWith(Link)->isLink());
    EXPECT_TRUE(dirWith(UnresolvedAlias)->isUnresolvedAlias());
    EXPECT_TRUE(dirWith(Alias)->isAlias());
    EXPECT_FALSE(dirWith(MountPoint)->isDir() || dirWith(MountPoint)->isHidden());
}

TEST(Dir, DumpWritesTwoLinesForItselfAndForEachChild) {
    Counts counts;
    Dir dir(new CountingHelper("top", counts));
    testing::internal::CaptureStdout();
    dir.dump(true);
    const auto block = [](const std::string& name) {
        return "Name:" + name + " Title:" + name + " FullPath:/" + name +
               " Target:\nIsRoot: 0 Exists:1 IsAlias:0 isUnresolvedAlias:0 isLink:0 isHidden:0 "
               "isReadOnly:0\n";
    };
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              block("top") + block("Item 10") + block("item 9"));
    EXPECT_EQ(counts.listings, 1);
}

TEST(Dir, DumpWithoutChildrenListsNothing) {
    Counts counts;
    Dir dir(new CountingHelper("top", counts));
    testing::internal::CaptureStdout();
    dir.dump(false);
    EXPECT_THAT(testing::internal::GetCapturedStdout(), HasSubstr("Name:top Title:top "));
    EXPECT_EQ(counts.listings, 0);
}

}  // namespace
}  // namespace tav::ula
