// SPDX-License-Identifier: MIT
#include "SystemProfiler/HardwareReport.h"

#include "tests/frameworks/SystemProfiler/FakeMachine.h"
#include "tests/support/TemporaryFolder.h"

#import <Foundation/Foundation.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace {

using systemprofiler::hardwareReport;

class HardwareReports : public testing::Test {
protected:
    ~HardwareReports() override { [_pool release]; }

    NSArray* parsed(const std::string& report) {
        NSData* const data = [NSData dataWithBytes:report.data() length:report.size()];
        return [NSPropertyListSerialization propertyListWithData:data
                                                         options:NSPropertyListImmutable
                                                          format:nullptr
                                                           error:nullptr];
    }
    NSDictionary* firstItem(NSArray* report) {
        return [[[report objectAtIndex:0] objectForKey:@"_items"] objectAtIndex:0];
    }
    NSTask* reportTask(NSString* dataType) {
        NSTask* const task = [[[NSTask alloc] init] autorelease];
        [task setLaunchPath:@"/usr/sbin/system_profiler"];
        [task setArguments:@[ @"-xml", dataType ]];
        return task;
    }

    systemprofilertest::FakeMachine machine;

private:
    NSAutoreleasePool* _pool = [NSAutoreleasePool new];
};

TEST_F(HardwareReports, HoldTheProcessorUnderThePlatformsKeys) {
    machine.write("proc/cpuinfo", "processor : 0\nmodel name : A <B> & C\ncpu MHz : 2400\n"
                                  "physical id : 0\ncore id : 0\n");
    NSArray* const report = parsed(hardwareReport({"SPHardwareDataType"}, machine.root()));
    NSDictionary* const item = firstItem(report);
    EXPECT_TRUE([[item objectForKey:@"cpu_type"] isEqual:@"A <B> & C"]);
    EXPECT_TRUE([[item objectForKey:@"current_processor_speed"] isEqual:@"2.4 GHz"]);
    EXPECT_EQ([[item objectForKey:@"number_processors"] intValue], 1);
    EXPECT_EQ([[item objectForKey:@"packages"] intValue], 1);
}

TEST_F(HardwareReports, LeaveOutWhatIsUnknown) {
    NSArray* const report = parsed(hardwareReport({"SPHardwareDataType"}, machine.root()));
    EXPECT_EQ([firstItem(report) count], 1u);
}

TEST_F(HardwareReports, AreTextsWhateverTheFirmwareHolds) {
    machine.write("sys/class/dmi/id/product_name", "B\xFF\x01x\xC3\n");
    NSArray* const report = parsed(hardwareReport({"SPHardwareDataType"}, machine.root()));
    EXPECT_TRUE([[firstItem(report) objectForKey:@"machine_model"] isEqual:@"Bx"]);
}

TEST_F(HardwareReports, HaveNoSectionWithoutADeviceOrForAnUnknownType) {
    EXPECT_EQ([parsed(hardwareReport({"SPDisplaysDataType"}, machine.root())) count], 0u);
    EXPECT_EQ([parsed(hardwareReport({"SPNothing"}, machine.root())) count], 0u);
    EXPECT_EQ([parsed(hardwareReport({}, machine.root())) count], 0u);
}

TEST_F(HardwareReports, HoldGraphicsUnderThePlatformsKeys) {
    machine.write("sys/class/drm/card0/device/uevent", "DRIVER=amdgpu\n");
    machine.write("sys/class/drm/card0/device/mem_info_vram_total", "536870912\n");
    NSArray* const report = parsed(hardwareReport({"SPDisplaysDataType"}, machine.root()));
    EXPECT_TRUE([[firstItem(report) objectForKey:@"sppci_model"] isEqual:@"amdgpu"]);
    EXPECT_TRUE([[firstItem(report) objectForKey:@"spdisplays_vram"] isEqual:@"512 MB"]);
}

TEST_F(HardwareReports, AreWholeInAFileWhenTheTaskHasBeenLaunched) {
    const tav::test::TemporaryFolder folder;
    NSString* const path = [NSString stringWithUTF8String:(folder / "report").c_str()];
    [[NSFileManager defaultManager] createFileAtPath:path contents:nil attributes:nil];
    NSTask* const task = reportTask(@"SPHardwareDataType");
    [task setStandardOutput:[NSFileHandle fileHandleForWritingAtPath:path]];
    [task launch];
    NSDictionary* const item = firstItem([NSArray arrayWithContentsOfFile:path]);
    EXPECT_EQ([[item objectForKey:@"number_processors"] intValue], sysconf(_SC_NPROCESSORS_ONLN));
    EXPECT_FALSE([task isRunning]);
    EXPECT_EQ([task terminationStatus], 0);
}

TEST_F(HardwareReports, EndInAPipe) {
    NSTask* const task = reportTask(@"SPHardwareDataType");
    NSPipe* const pipe = [NSPipe pipe];
    [task setStandardOutput:pipe];
    [task launch];
    [task waitUntilExit];
    NSData* const data = [[pipe fileHandleForReading] readDataToEndOfFile];
    EXPECT_GT([data length], 100u);
}

TEST_F(HardwareReports, LeaveOtherTasksAlone) {
    NSTask* const task = [[[NSTask alloc] init] autorelease];
    NSPipe* const pipe = [NSPipe pipe];
    [task setLaunchPath:@"/bin/echo"];
    [task setArguments:@[ @"SPHardwareDataType" ]];
    [task setStandardOutput:pipe];
    [task launch];
    NSData* const data = [[pipe fileHandleForReading] readDataToEndOfFile];
    [task waitUntilExit];
    EXPECT_EQ([data length], 19u);
}

}  // namespace
