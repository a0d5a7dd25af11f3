// SPDX-License-Identifier: MIT
// The workspace's notifications of real mounts. Needs root: mounts in a space of its own.
#import <AppKit/AppKit.h>

#include "tests/support/Mounts.h"
#include "tests/support/Patience.h"
#include "tests/support/TemporaryFolder.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <thread>

@interface VolumeListener : NSObject {
@public
    std::vector<std::string> _heard;
    std::vector<std::size_t> _listed;
    bool _fails;
}
- (void)hear:(NSNotification*)notification;
@end

@implementation VolumeListener
- (void)hear:(NSNotification*)notification {
    EXPECT_EQ([notification object], [NSWorkspace sharedWorkspace]);
    EXPECT_TRUE([NSThread isMainThread]);
    const bool isMount = [[notification name] isEqual:NSWorkspaceDidMountNotification];
    NSString* path = [[notification userInfo] objectForKey:@"NSDevicePath"];
    _heard.push_back((isMount ? "+" : "-") + std::string([path UTF8String]));
    _listed.push_back([[[NSWorkspace sharedWorkspace] mountedLocalVolumePaths] count]);
    if (_fails)
        [NSException raise:@"VolumeListener" format:@"of the listener"];
}
@end

namespace {

using namespace tav::test;
namespace fs = std::filesystem;
using Heard = std::vector<std::string>;

class VolumeNotifications : public testing::Test {
protected:
    void SetUp() override {
        pool = [[NSAutoreleasePool alloc] init];
        listener = [[VolumeListener alloc] init];
        // As listeners do: with the list of now they know what there is.
        before = [[[NSWorkspace sharedWorkspace] mountedLocalVolumePaths] count];
        for (NSString* name in
             @[ NSWorkspaceDidMountNotification, NSWorkspaceDidUnmountNotification ])
            [centre() addObserver:listener selector:@selector(hear:) name:name object:nil];
    }
    void TearDown() override {
        [centre() removeObserver:listener];
        [listener release];
        for (const auto& entry : fs::directory_iterator("/Volumes"))
            if (entry.path().filename() != "Linux")
                fs::remove(entry.path());
        // What the test has left behind is for nobody: the next one begins from here.
        runUntil([] { return false; }, NSDefaultRunLoopMode, 0);
        [pool release];
    }

    static NSNotificationCenter* centre() {
        return [[NSWorkspace sharedWorkspace] notificationCenter];
    }
    template <class Condition>
    static void runUntil(Condition condition, NSString* mode,
                         NSTimeInterval seconds = kPatienceSeconds) {
        NSDate* limit = [NSDate dateWithTimeIntervalSinceNow:seconds];
        do
            [[NSRunLoop currentRunLoop] runMode:mode beforeDate:limit];
        while (!condition() && [limit timeIntervalSinceNow] > 0);
    }
    const Heard& heardAfter(std::size_t count, NSString* mode = NSDefaultRunLoopMode) {
        runUntil([&] { return listener->_heard.size() >= count; }, mode);
        return listener->_heard;
    }
    // What comes last is heard after all that was to be heard before it.
    Heard heardSoFar() {
        const MountedMemory last("/Volumes/last");
        runUntil([&] { return hasHeard("+/Volumes/last"); }, NSDefaultRunLoopMode);
        Heard heard = listener->_heard;
        EXPECT_TRUE(hasHeard("+/Volumes/last"));
        heard.pop_back();
        return heard;
    }
    bool hasHeard(const std::string& text) const {
        return !listener->_heard.empty() && listener->_heard.back() == text;
    }

    NSAutoreleasePool* pool = nil;
    VolumeListener* listener = nil;
    std::size_t before = 0;
    TemporaryFolder folder{fs::canonical(fs::temp_directory_path())};
};

TEST_F(VolumeNotifications, AreServedInEveryModeOfAnApplication) {
    for (NSString* mode in
         @[ NSDefaultRunLoopMode, NSModalPanelRunLoopMode, NSEventTrackingRunLoopMode ]) {
        listener->_heard.clear();
        MountedMemory memory("/Volumes/Memory");
        heardAfter(1, mode);
        memory.unmount();
        EXPECT_EQ(heardAfter(2, mode), (Heard{"+/Volumes/Memory", "-/Volumes/Memory"}))
            << [mode UTF8String];
    }
}

TEST_F(VolumeNotifications, EachFindsTheListAsItLeavesIt) {
    MountedMemory one("/Volumes/One");
    MountedMemory two("/Volumes/Two");
    heardAfter(2);
    one.unmount();
    const MountedMemory three("/Volumes/Three");
    EXPECT_EQ(heardAfter(4),
              (Heard{"+/Volumes/One", "+/Volumes/Two", "-/Volumes/One", "+/Volumes/Three"}));
    EXPECT_EQ(listener->_listed,
              (std::vector<std::size_t>{before + 1, before + 2, before + 1, before + 2}));
}

TEST_F(VolumeNotifications, VolumesWithoutANameInVolumesAreToldByWhereTheyAre) {
    MountedImage image(folder / "disk", folder.path());
    heardAfter(1);
    image.unmount();
    EXPECT_EQ(heardAfter(2), (Heard{"+" + image.point(), "-" + image.point()}));
}

TEST_F(VolumeNotifications, NothingIsToldOfMountsThatAreNoVolumes) {
    fs::create_directory(folder / "one");
    const BoundFolder bound(folder / "one", folder / "two");
    const MountedMemory memory(folder / "memory");
    EXPECT_EQ(heardSoFar(), Heard());
}

TEST_F(VolumeNotifications, NothingIsToldOfAVolumeThatTurnsReadOnlyOrIsBoundElsewhere) {
    const MountedMemory memory("/Volumes/Memory");
    heardAfter(1);
    ASSERT_EQ(mount("", "/Volumes/Memory", "", MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr), 0);
    const BoundFolder bound("/Volumes/Memory", folder / "again");
    EXPECT_EQ(heardSoFar(), Heard{"+/Volumes/Memory"});
}

TEST_F(VolumeNotifications, VolumeOverAnotherTakesItsPlaceAndGivesItBack) {
    const MountedMemory below("/Volumes/Disk");
    heardAfter(1);
    MountedMemory above("/Volumes/Disk");
    heardAfter(3);
    above.unmount();
    EXPECT_EQ(heardAfter(5), (Heard{"+/Volumes/Disk", "-/Volumes/Disk", "+/Volumes/Disk",
                                    "-/Volumes/Disk", "+/Volumes/Disk"}));
}

// As the folder is when the system makes it anew.
TEST_F(VolumeNotifications, NamesAreFollowedInAVolumesFolderThatIsMountedOver) {
    const MountedImage image(folder / "disk", folder.path());
    const MountedMemory names("/Volumes");
    heardAfter(1);
    fs::create_symlink("/", "/Volumes/Linux");
    fs::create_symlink(image.point(), "/Volumes/Disk");
    runUntil([&] { return hasHeard("+/Volumes/Disk"); }, NSDefaultRunLoopMode);
    EXPECT_TRUE(hasHeard("+/Volumes/Disk"));
}

TEST_F(VolumeNotifications, ExceptionOfAListenerKeepsNothingFromTheOthers) {
    VolumeListener* failing = [[VolumeListener alloc] init];
    failing->_fails = true;
    [centre() addObserver:failing
                 selector:@selector(hear:)
                     name:NSWorkspaceDidMountNotification
                   object:nil];
    const MountedMemory one("/Volumes/One");
    const MountedMemory two("/Volumes/Two");
    EXPECT_EQ(heardAfter(2), (Heard{"+/Volumes/One", "+/Volumes/Two"}));
    [centre() removeObserver:failing];
    EXPECT_EQ(failing->_heard, listener->_heard);
    [failing release];
}

TEST_F(VolumeNotifications, ListIsTheLatestOutsideOfThem) {
    const MountedMemory memory("/Volumes/Memory");
    EXPECT_EQ([[[NSWorkspace sharedWorkspace] mountedLocalVolumePaths] count], before + 1);
    EXPECT_TRUE(listener->_heard.empty());
    EXPECT_EQ(heardAfter(1), Heard{"+/Volumes/Memory"});
}

TEST_F(VolumeNotifications, LeaveTheLoopAsleepWhileNothingChanges) {
    EXPECT_EQ(heardSoFar(), Heard());
    heardAfter(2);  // the last one goes
    [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode beforeDate:[NSDate distantPast]];
    NSDate* limit = [NSDate dateWithTimeIntervalSinceNow:0.2];
    // One wait that nothing ends.
    [[NSRunLoop currentRunLoop] runMode:NSModalPanelRunLoopMode beforeDate:limit];
    EXPECT_LE([limit timeIntervalSinceNow], 0.01);
}

}  // namespace
