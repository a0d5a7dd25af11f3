// SPDX-License-Identifier: MIT
// A camera on a USB of the test's own, which comes and goes. Runs under umockdev-wrapper.
#include "ImageCaptureCalls.h"
#include "tests/support/Patience.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <umockdev.h>
#include <unistd.h>

namespace tav::test {

namespace {

/// A still camera by the class of its interface: configuration, interface and three endpoints, as
/// the kernel shows them. No bus runs behind it.
constexpr char kCamera[] =
    "P: /devices/pci0000:00/0000:00:14.0/usb1/1-2\n"
    "N: bus/usb/001/005\n"
    "E: DEVTYPE=usb_device\nE: SUBSYSTEM=usb\nE: DRIVER=usb\nE: BUSNUM=001\nE: DEVNUM=005\n"
    "E: MAJOR=189\nE: MINOR=4\nE: DEVNAME=/dev/bus/usb/001/005\n"
    "E: ID_GPHOTO2=1\nE: ID_VENDOR_ID=04a9\nE: ID_MODEL_ID=ffff\n"
    "A: busnum=1\nA: devnum=5\nA: speed=480\nA: bConfigurationValue=1\nA: bNumConfigurations=1\n"
    "A: idVendor=04a9\nA: idProduct=ffff\nA: bDeviceClass=00\n"
    "H: descriptors="
    "12010002000000"
    "40"
    "a904ffff"
    "0001"
    "010203"
    "01"
    "0902270001010080fa"
    "0904000003060101"
    "00"
    "07058102000200"
    "07050202000200"
    "07058303080009\n"
    "\n"
    "P: /devices/pci0000:00/0000:00:14.0/usb1/1-2/1-2:1.0\n"
    "E: DEVTYPE=usb_interface\nE: SUBSYSTEM=usb\nE: INTERFACE=6/1/1\n"
    "A: bInterfaceClass=06\nA: bInterfaceSubClass=01\nA: bInterfaceProtocol=01\n"
    "A: bInterfaceNumber=00\n";
constexpr char kPlace[] = "/sys/devices/pci0000:00/0000:00:14.0/usb1/1-2";

std::vector<std::string> told;

void note(CFStringRef type, CFDictionaryRef) {
    NSString* name = reinterpret_cast<NSString*>(const_cast<__CFString*>(type));
    told.push_back([name UTF8String]);
    CFRunLoopStop(CFRunLoopGetMain());
}

void runUntilTold(std::size_t count) {
    const CFAbsoluteTime limit = CFAbsoluteTimeGetCurrent() + kPatienceSeconds;
    while (told.size() < count && CFAbsoluteTimeGetCurrent() < limit)
        CFRunLoopRunInMode(kCFRunLoopDefaultMode, limit - CFAbsoluteTimeGetCurrent(), false);
}

TEST(UsbCamera, ComesAndGoesWithItsPlug) {
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    UMockdevTestbed* testbed = umockdev_testbed_new();
    EXPECT_EQ([capture::devices() count], 0u);
    NSArray* types = [NSArray arrayWithObjects:@"ICANotificationTypeDeviceAdded",
                                               @"ICANotificationTypeDeviceRemoved", nil];
    ICARegisterForEventNotificationPB block = {};
    block.eventsOfInterest = reinterpret_cast<CFArrayRef>(types);
    block.notificationProc = note;
    ASSERT_EQ(ICARegisterForEventNotification(&block, nullptr), 0);
    // The first look, for what was there before.
    CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, false);

    GError* error = nullptr;
    ASSERT_TRUE(umockdev_testbed_add_from_string(testbed, kCamera, &error)) << error->message;
    ASSERT_EQ(access(kPlace, F_OK), 0) << "this has to run under umockdev-wrapper";
    runUntilTold(1);
    ASSERT_EQ(told, std::vector<std::string>{"ICANotificationTypeDeviceAdded"});
    NSArray* devices = capture::devices();
    ASSERT_EQ([devices count], 1u);
    NSDictionary* camera = [devices objectAtIndex:0];
    EXPECT_TRUE([[camera objectForKey:@"ICADeviceTypeKey"] isEqual:@"ICADeviceTypeCamera"]);

    // There is nobody behind the plug.
    ICAError code = 0;
    EXPECT_EQ(capture::properties([[camera objectForKey:@"icao"] unsignedIntValue], &code), nil);
    EXPECT_NE(code, 0);

    umockdev_testbed_uevent(testbed, kPlace, "remove");
    umockdev_testbed_remove_device(testbed, kPlace);
    EXPECT_EQ([capture::devices() count], 0u);
    runUntilTold(2);
    ASSERT_EQ(told.size(), 2u);
    EXPECT_EQ(told.back(), "ICANotificationTypeDeviceRemoved");
    g_object_unref(testbed);
    [pool release];
}

}  // namespace

}  // namespace tav::test
