// SPDX-License-Identifier: MIT
// Running applications as AppKit's objects.
#import <AppKit/AppKit.h>
#import <AppKit/NSRunningApplication.h>

#include "tests/support/ApplicationBundle.h"
#include "tests/support/RunningProgram.h"

#include <gtest/gtest.h>

namespace {

using namespace tav::test;

class RunningObjects : public testing::Test {
protected:
    RunningObjects() : _pool([[NSAutoreleasePool alloc] init]) {
        EXPECT_EQ(program.readLine(), "ready");
    }
    ~RunningObjects() override { [_pool release]; }

    NSRunningApplication* other() const {
        return [NSRunningApplication runningApplicationWithProcessIdentifier:program.process()];
    }

    NSAutoreleasePool* _pool;
    TemporaryFolder folder{std::filesystem::canonical(std::filesystem::temp_directory_path())};
    const ApplicationBundle bundle{folder.path().string(), "Photo Box", "com.maker.objects"};
    RunningProgram program{bundle.program(), "wait"};
};

TEST_F(RunningObjects, TellWhatTheyAre) {
    NSRunningApplication* const application = other();
    ASSERT_NE(application, nil);
    EXPECT_STREQ([[application localizedName] UTF8String], "Photo Box");
    EXPECT_STREQ([[application bundleIdentifier] UTF8String], "com.maker.objects");
    EXPECT_EQ([[[application bundleURL] path] UTF8String], bundle.path());
    EXPECT_EQ([[[application executableURL] path] UTF8String], bundle.program());
    EXPECT_FALSE([application isTerminated]);
}

TEST_F(RunningObjects, AreFoundByTheirIdentifier) {
    NSArray* const found =
        [NSRunningApplication runningApplicationsWithBundleIdentifier:@"com.maker.objects"];
    ASSERT_EQ([found count], 1u);
    EXPECT_TRUE([[found objectAtIndex:0] isEqual:other()]);
    EXPECT_EQ([[NSRunningApplication runningApplicationsWithBundleIdentifier:@""] count], 0u);
}

TEST_F(RunningObjects, AreListedByTheWorkspace) {
    EXPECT_TRUE([[[NSWorkspace sharedWorkspace] runningApplications] containsObject:other()]);
}

TEST_F(RunningObjects, KnowThatTheyHaveEnded) {
    NSRunningApplication* const application = other();
    program.finish();
    EXPECT_TRUE([application isTerminated]);
    EXPECT_FALSE([application terminate]);
    EXPECT_FALSE([application activateWithOptions:NSApplicationActivateIgnoringOtherApps]);
    EXPECT_EQ(other(), nil);
}

TEST_F(RunningObjects, AreEndedOnDemand) {
    NSRunningApplication* const application = other();
    EXPECT_TRUE([application terminate]);
    EXPECT_TRUE(program.waitForEnd());
    EXPECT_TRUE([application isTerminated]);
}

TEST_F(RunningObjects, TheCurrentOneIsThisProcess) {
    EXPECT_EQ([[NSRunningApplication currentApplication] processIdentifier], getpid());
}

}  // namespace
