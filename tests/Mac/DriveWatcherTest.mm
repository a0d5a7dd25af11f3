// SPDX-License-Identifier: MIT
// What the watcher makes of the workspace's notifications, with doubles in place of the workspace's
// list and of the notification centre's registration.
#include "ula/DriveWatcher.h"

#import "ula/ObjCHelper.h"
#include "ula/ScopedARPool.h"

#import <AppKit/AppKit.h>
#include <gtest/gtest.h>
#include <memory>
#include <objc/runtime.h>

namespace {

/// What the platform is to answer, and what it was asked.
struct Platform {
    std::vector<std::string> paths;
    BOOL isWritable = YES;
    int listings = 0;
    std::vector<std::string> registrations;
    id observer = nil;
};

Platform* platform = nullptr;

NSArray* mountedPaths(id, SEL) {
    ++platform->listings;
    return [NSArray fromStdStringArray:platform->paths];
}

BOOL information(id, SEL, NSString*, BOOL*, BOOL* isWritable, BOOL*, NSString**, NSString**) {
    *isWritable = platform->isWritable;
    return YES;
}

NSImage* noIcon(id, SEL, NSString*) {
    return nil;
}

using AddObserver = void (*)(id, SEL, id, SEL, NSString*, id);
using RemoveObserver = void (*)(id, SEL, id);
AddObserver addToCentre = nullptr;
RemoveObserver removeFromCentre = nullptr;

NSNotificationCenter* centre() {
    return [[NSWorkspace sharedWorkspace] notificationCenter];
}

void addObserver(id self, SEL command, id observer, SEL selector, NSString* name, id object) {
    addToCentre(self, command, observer, selector, name, object);
    if (platform == nullptr || self != centre())
        return;
    platform->observer = observer;
    platform->registrations.push_back([[observer className] toStdString] + " " +
                                      [NSStringFromSelector(selector) toStdString] + " " +
                                      [name toStdString] + (object == nil ? "" : " of one"));
}

void removeObserver(id self, SEL command, id observer) {
    removeFromCentre(self, command, observer);
    if (platform != nullptr && self == centre())
        platform->registrations.push_back(observer == platform->observer ? "removed"
                                                                         : "removed another");
}

}  // namespace

namespace tav::ula {
namespace {

/// Puts one method in place of another, and back.
class Replaced {
public:
    Replaced(Class type, SEL selector, IMP double_)
        : _method(class_getInstanceMethod(type, selector)),
          _original(method_setImplementation(_method, double_)) {}
    ~Replaced() { method_setImplementation(_method, _original); }
    Replaced(const Replaced&) = delete;
    Replaced& operator=(const Replaced&) = delete;

    template <class Function>
    Function original() const {
        return reinterpret_cast<Function>(_original);
    }

private:
    Method _method;
    IMP _original;
};

const NSString* const kMounted = NSWorkspaceDidMountNotification;

/// Of this process alone: the workspace's own method would tell other programs as well.
void post(const NSString* name, NSDictionary* userInfo) {
    NSNotification* const notification =
        [NSNotification notificationWithName:const_cast<NSString*>(name)
                                      object:[NSWorkspace sharedWorkspace]
                                    userInfo:userInfo];
    const SEL selector = @selector(postNotification:);
    reinterpret_cast<void (*)(id, SEL, id)>(class_getMethodImplementation(
        [NSNotificationCenter class], selector))(centre(), selector, notification);
}

class DriveWatching : public testing::Test {
protected:
    DriveWatching() {
        platform = &_platform;
        addToCentre = _add.original<AddObserver>();
        removeFromCentre = _remove.original<RemoveObserver>();
        _platform.paths = {"/", "/Volumes/A"};
        // With the workspace come registrations of its own.
        centre();
        _platform.registrations.clear();
    }
    ~DriveWatching() override {
        _watcher.reset();
        platform = nullptr;
    }

    void watch() {
        _watcher.reset(DriveWatcher::create());
        note(*_watcher);
    }
    void note(DriveWatcher& watcher) {
        watcher.driveMounted.connect([this](const Drive& drive) { note("+", drive); });
        watcher.driveUnmounted.connect([this](const Drive& drive) { note("-", drive); });
    }
    static void mounted() { post(kMounted, @{@"NSDevicePath" : @"/Volumes/any"}); }
    static void unmounted() {
        post(NSWorkspaceDidUnmountNotification, @{@"NSDevicePath" : @"/Volumes/any"});
    }

    const ScopedARPool _pool;
    Platform _platform;
    std::vector<std::string> _told;
    std::unique_ptr<DriveWatcher> _watcher;

private:
    void note(const std::string& sign, const Drive& drive) {
        _told.push_back(sign + drive.properties().fullPath() +
                        (drive.properties().isFlagSet(ReadOnly) ? " read-only" : ""));
    }

    Replaced _paths {
        [NSWorkspace class], @selector(mountedLocalVolumePaths), reinterpret_cast<IMP>(mountedPaths)
    };
    Replaced _information {
        [NSWorkspace class],
            @selector
            (getFileSystemInfoForPath:isRemovable:isWritable:isUnmountable:description:type:),
            reinterpret_cast<IMP>(information)
    };
    Replaced _icon { [NSWorkspace class], @selector(iconForFile:), reinterpret_cast<IMP>(noIcon) };
    Replaced _add {
        [NSNotificationCenter class], @selector(addObserver:selector:name:object:),
            reinterpret_cast<IMP>(addObserver)
    };
    Replaced _remove {
        [NSNotificationCenter class], @selector(removeObserver:),
            reinterpret_cast<IMP>(removeObserver)
    };
};

using Told = std::vector<std::string>;

TEST_F(DriveWatching, ListsTheDrivesAndThenRegistersForBothNotifications) {
    watch();
    EXPECT_EQ(_platform.listings, 1);
    EXPECT_EQ(
        _platform.registrations,
        (Told{"DriveWatcherNotificationObserver deviceMounted: NSWorkspaceDidMountNotification",
              "DriveWatcherNotificationObserver deviceUnMounted: "
              "NSWorkspaceDidUnmountNotification"}));
}

TEST_F(DriveWatching, EndsItsRegistrationWithItself) {
    watch();
    _platform.registrations.clear();
    _watcher.reset();
    EXPECT_EQ(_platform.registrations, Told{"removed"});
    _platform.paths.push_back("/Volumes/B");
    mounted();
    EXPECT_TRUE(_told.empty());
    EXPECT_EQ(_platform.listings, 1);
}

TEST_F(DriveWatching, ObserverThatOutlivesTheWatcherIsSilent) {
    watch();
    id const observer = [_platform.observer retain];
    _watcher.reset();
    NSNotification* const notification =
        [NSNotification notificationWithName:const_cast<NSString*>(kMounted)
                                      object:nil
                                    userInfo:@{@"NSDevicePath" : @"/Volumes/B"}];
    for (SEL selector : { @selector(deviceMounted:), @selector(deviceUnMounted:) })
        [observer performSelector:selector withObject:notification];
    EXPECT_EQ(_platform.listings, 1);
    [observer release];
}

TEST_F(DriveWatching, MountTellsTheRecordOfTheNewVolume) {
    watch();
    _platform.paths = {"/", "/Volumes/B", "/Volumes/A"};
    mounted();
    EXPECT_EQ(_told, Told{"+/Volumes/B"});
    mounted();
    EXPECT_EQ(_told.size(), 1u);
}

TEST_F(DriveWatching, UnmountTellsTheRecordAsItWasKnown) {
    watch();
    _platform.paths = {"/"};
    unmounted();
    EXPECT_EQ(_told, Told{"-/Volumes/A"});
    unmounted();
    EXPECT_EQ(_told.size(), 1u);
}

// What the path of the notification is plays no part.
TEST_F(DriveWatching, MountWithNothingNewTellsNothingButTakesTheListOver) {
    _platform.paths = {"/", "/Volumes/A", "/Volumes/B"};
    watch();
    _platform.paths = {"/", "/Volumes/A"};
    mounted();
    EXPECT_TRUE(_told.empty());
    // B is known no more: it does not go, and it is new when it comes again.
    unmounted();
    EXPECT_TRUE(_told.empty());
    _platform.paths.push_back("/Volumes/B");
    mounted();
    EXPECT_EQ(_told, Told{"+/Volumes/B"});
}

TEST_F(DriveWatching, TwoVolumesBeforeOneMountAreToldInTheOrderOfTheList) {
    watch();
    _platform.paths = {"/Volumes/Z", "/", "/Volumes/A", "/Volumes/B"};
    mounted();
    EXPECT_EQ(_told, (Told{"+/Volumes/Z", "+/Volumes/B"}));
}

TEST_F(DriveWatching, TwoVolumesThatGoBeforeOneUnmountAreToldInTheOrderOfTheList) {
    _platform.paths = {"/Volumes/Z", "/", "/Volumes/A", "/Volumes/B"};
    watch();
    _platform.paths = {"/"};
    unmounted();
    EXPECT_EQ(_told, (Told{"-/Volumes/Z", "-/Volumes/A", "-/Volumes/B"}));
}

TEST_F(DriveWatching, NotificationWithoutADevicePathIsIgnored) {
    watch();
    _platform.paths = {"/", "/Volumes/B"};
    for (const NSString* name : {kMounted, (const NSString*)NSWorkspaceDidUnmountNotification}) {
        post(name, nil);
        post(name, @{@"NSWorkspaceVolumeURLKey" : @"/Volumes/B"});
    }
    EXPECT_TRUE(_told.empty());
    EXPECT_EQ(_platform.listings, 1);
    unmounted();
    EXPECT_EQ(_told, Told{"-/Volumes/A"});
}

TEST_F(DriveWatching, VolumeThatIsStillListedUponAnUnmountIsNotTold) {
    _platform.paths = {"/", "/Volumes/A", "/Volumes/B"};
    watch();
    _platform.paths = {"/", "/Volumes/A"};
    unmounted();
    EXPECT_EQ(_told, Told{"-/Volumes/B"});
}

TEST_F(DriveWatching, RecordThatChangedIsMountedAnewUponAMount) {
    watch();
    _platform.isWritable = NO;
    mounted();
    ASSERT_EQ(_told.size(), 2u);
    EXPECT_EQ(_told[1], "+/Volumes/A read-only");
    // The old record was dropped without a word.
    unmounted();
    EXPECT_EQ(_told.size(), 2u);
}

TEST_F(DriveWatching, RecordThatChangedIsUnmountedAsItWasUponAnUnmount) {
    watch();
    _platform.isWritable = NO;
    unmounted();
    ASSERT_EQ(_told.size(), 2u);
    EXPECT_EQ(_told[1], "-/Volumes/A");
    // The new record was taken over without a word.
    mounted();
    EXPECT_EQ(_told.size(), 2u);
}

TEST_F(DriveWatching, SlotsAreCalledByTheirGroupsInOrder) {
    _watcher.reset(DriveWatcher::create());
    std::string order;
    _watcher->driveMounted.connect(2, [&](const Drive&) { order += "c"; });
    _watcher->driveMounted.connect(1, [&](const Drive&) { order += "a"; });
    _watcher->driveMounted.connect(1, [&](const Drive&) { order += "b"; });
    static_assert(std::is_void_v<decltype(_watcher->driveMounted)::result_type>);
    _platform.paths.push_back("/Volumes/B");
    mounted();
    EXPECT_EQ(order, "abc");
}

TEST_F(DriveWatching, WatcherMayEndInItsOwnSlot) {
    _platform.paths = {"/", "/Volumes/A", "/Volumes/B"};
    watch();
    for (int i = 0; i < 3; ++i)
        _watcher->driveUnmounted.connect([this](const Drive&) { _watcher.reset(); });
    _platform.paths = {"/"};
    unmounted();
    EXPECT_EQ(_told, Told{"-/Volumes/A"});
    EXPECT_EQ(_watcher, nullptr);
}

TEST_F(DriveWatching, SlotThatThrowsKeepsNoOtherVolumeFromBeingTold) {
    watch();
    _watcher->driveMounted.connect([](const Drive&) { throw std::runtime_error("of the slot"); });
    _platform.paths = {"/Volumes/B", "/Volumes/C"};
    EXPECT_THROW(mounted(), std::runtime_error);
    EXPECT_EQ(_told, (Told{"+/Volumes/B", "+/Volumes/C"}));
    mounted();
    EXPECT_EQ(_told.size(), 2u);
}

TEST_F(DriveWatching, WatchersMadeInASlotKnowWhatIsMountedThen) {
    watch();
    std::unique_ptr<DriveWatcher> second;
    _watcher->driveMounted.connect([&](const Drive&) {
        second.reset(DriveWatcher::create());
        note(*second);
    });
    _platform.paths.push_back("/Volumes/B");
    mounted();
    EXPECT_EQ(_told, Told{"+/Volumes/B"});
    _platform.paths = {"/"};
    unmounted();
    EXPECT_EQ(_told.size(), 5u);
}

TEST_F(DriveWatching, WatchersAreToldIndependently) {
    watch();
    _platform.paths.push_back("/Volumes/B");
    const std::unique_ptr<DriveWatcher> late(DriveWatcher::create());
    note(*late);
    mounted();
    EXPECT_EQ(_told, Told{"+/Volumes/B"});
    _platform.paths = {"/"};
    unmounted();
    EXPECT_EQ(_told.size(), 5u);
}

}  // namespace
}  // namespace tav::ula
