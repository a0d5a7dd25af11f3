// SPDX-License-Identifier: MIT
#import <AppKit/NSWorkspace.h>
#import <Foundation/Foundation.h>

#include "Sandbox.h"

#include <unistd.h>

#include <gtest/gtest.h>

namespace {

using namespace trashtest;

// The workspace posts to the distributed notification centre; a TMP of the test's own (see
// CMakeLists.txt) gives it a daemon of its own.
class WorkspaceRecycle : public testing::Test {
protected:
    void SetUp() override {
        setenv("XDG_DATA_HOME", (sandbox / "data").c_str(), 1);
        pool = [[NSAutoreleasePool alloc] init];
    }
    void TearDown() override { [pool release]; }

    BOOL recycle(NSArray* names, NSInteger* tag = nullptr, NSString* destination = @"") {
        return [[NSWorkspace sharedWorkspace]
            performFileOperation:NSWorkspaceRecycleOperation
                          source:[NSString stringWithUTF8String:sandbox.path().c_str()]
                     destination:destination
                           files:names
                             tag:tag];
    }

    Sandbox sandbox;
    NSAutoreleasePool* pool = nil;
};

TEST_F(WorkspaceRecycle, MovesAFileToTheTrash) {
    sandbox.makeFile("one.txt", "kept");
    NSInteger tag = 7;
    EXPECT_TRUE(recycle(@[ @"one.txt" ], &tag));
    EXPECT_EQ(tag, 0);
    EXPECT_FALSE(exists(sandbox / "one.txt"));
    EXPECT_EQ(contentOf(sandbox / "data/Trash/files/one.txt"), "kept");
}

TEST_F(WorkspaceRecycle, TakesNamesThatAreNotAscii) {
    sandbox.makeFile("\xC3\xA4\xE5\x86\x99 \"quoted\".txt");
    EXPECT_TRUE(
        recycle(@[ [NSString stringWithUTF8String:"\xC3\xA4\xE5\x86\x99 \"quoted\".txt"] ]));
    EXPECT_EQ(namesIn(sandbox / "data/Trash/files").size(), 1u);
}

TEST_F(WorkspaceRecycle, TrashesTheOthersWhenOneIsMissingAndAnswersNo) {
    sandbox.makeFile("one");
    sandbox.makeFile("two");
    NSInteger tag = 7;
    EXPECT_FALSE(recycle(@[ @"one", @"missing", @"two" ], &tag));
    EXPECT_LT(tag, 0);
    EXPECT_EQ(namesIn(sandbox / "data/Trash/files"), (std::vector<std::string>{"one", "two"}));
}

TEST_F(WorkspaceRecycle, TakesNeitherTagNorDestination) {
    sandbox.makeFile("one");
    EXPECT_TRUE(recycle(@[ @"one" ], nullptr, nil));
    EXPECT_TRUE(recycle(@[]));
}

// Never "/": an item there may have the same name.
TEST_F(WorkspaceRecycle, TakesTheWorkingFolderWhereNoneIsGiven) {
    sandbox.makeFile("one");
    std::filesystem::current_path(sandbox.path());
    EXPECT_TRUE([[NSWorkspace sharedWorkspace] performFileOperation:NSWorkspaceRecycleOperation
                                                             source:@""
                                                        destination:@""
                                                              files:@[ @"one" ]
                                                                tag:nullptr]);
    EXPECT_TRUE(exists(sandbox / "data/Trash/files/one"));
}

TEST_F(WorkspaceRecycle, RefusesNamesThatLeadElsewhere) {
    sandbox.makeFile("folder/inner");
    EXPECT_FALSE(recycle(@[ @"" ]));
    EXPECT_FALSE(recycle(@[ @"folder/inner" ]));
    EXPECT_FALSE(recycle(@[ @".." ]));
    EXPECT_TRUE(exists(sandbox / "folder/inner"));
}

TEST_F(WorkspaceRecycle, LeavesOtherOperationsToTheWorkspace) {
    sandbox.makeFile("one");
    NSString* source = [NSString stringWithUTF8String:sandbox.path().c_str()];
    EXPECT_FALSE([[NSWorkspace sharedWorkspace] performFileOperation:@"no such operation"
                                                              source:source
                                                         destination:@""
                                                               files:@[ @"one" ]
                                                                 tag:nullptr]);
    EXPECT_TRUE(exists(sandbox / "one"));
}

}  // namespace
