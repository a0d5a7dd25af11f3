// SPDX-License-Identifier: MIT
// The report's program is replaced by a stand-in, for which the launch waits where a test wants to
// see what it has written. The last tests ask for the report of this machine.
#include "ula/SystemInformation.h"

#import "ula/ObjCHelper.h"
#include "ula/ScopedARPool.h"

#include "tests/support/LogCapture.h"
#include "tests/support/TemporaryFolder.h"

#import <Foundation/Foundation.h>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <objc/runtime.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

std::string standIn;
bool isWaitedFor = true;
IMP originalLaunch = nullptr;
NSTask* lastTask = nil;

void launch(id self, SEL selector) {
    EXPECT_TRUE([[self launchPath] isEqualToString:@"/usr/sbin/system_profiler"]);
    [self setLaunchPath:[NSString fromStdString:standIn]];
    [lastTask release];
    lastTask = [self retain];
    reinterpret_cast<void (*)(id, SEL)>(originalLaunch)(self, selector);
    if (isWaitedFor)
        [self waitUntilExit];
}

Method launchMethod() {
    return class_getInstanceMethod(objc_getClass("NSConcreteUnixTask"), @selector(launch));
}

std::string plist(const std::string& body) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">" + body +
           "</plist>\n";
}

std::string reportWith(const std::string& entries) {
    return plist("<array><dict><key>_items</key><array><dict>" + entries +
                 "</dict></array></dict></array>");
}

std::string entry(const std::string& key, const std::string& value) {
    return "<key>" + key + "</key><string>" + value + "</string>";
}

}  // namespace

namespace tav::ula {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class StandIn : public testing::Test {
protected:
    StandIn() {
        isWaitedFor = true;
        originalLaunch = method_setImplementation(launchMethod(), reinterpret_cast<IMP>(launch));
        program("cat report; echo \"$@\" > arguments; name=$(readlink /proc/$$/fd/1); echo "
                "\"$name\" > output");
    }
    ~StandIn() override {
        method_setImplementation(launchMethod(), originalLaunch);
        [lastTask release];
        lastTask = nil;
    }

    void program(const std::string& commands) {
        standIn = _folder / "program";
        test::writeFile(standIn,
                        "#!/bin/sh\ncd '" + _folder.path().string() + "'\n" + commands + "\n");
        fs::permissions(standIn, fs::perms::owner_all);
    }
    void report(const std::string& text) { test::writeFile(_folder / "report", text); }
    std::string said(const std::string& name) {
        const std::string text = test::readFile(_folder / name);
        return text.substr(0, text.find('\n'));
    }

    CPUInfo cpu() {
        const std::vector<CPUInfo> infos = SystemInformation::getCPUInfo();
        EXPECT_EQ(infos.size(), 1u);
        return infos.front();
    }
    CPUInfo cpuOf(const std::string& text) {
        report(text);
        return cpu();
    }
    std::uint64_t speedOf(const std::string& text) {
        return cpuOf(reportWith(entry("current_processor_speed", text))).speedMHz;
    }
    VideoControllerInfo video(const std::string& entries) {
        report(reportWith(entries));
        const std::vector<VideoControllerInfo> infos = SystemInformation::getVideoControllerInfo();
        EXPECT_EQ(infos.size(), 1u);
        return infos.front();
    }
    std::uint64_t memoryOf(const std::string& text) {
        return video(entry("spdisplays_vram", text)).videoMemory;
    }

    test::TemporaryFolder _folder;
    test::LogCapture _log;

private:
    const ScopedARPool _pool;
};

void expectDefault(const CPUInfo& info) {
    EXPECT_EQ(info.description, "Unknown");
    EXPECT_EQ(info.architecture, "Unknown");
    EXPECT_EQ(info.type, "Unknown");
    EXPECT_EQ(info.speedMHz, 0u);
    EXPECT_EQ(info.count, 0);
}

TEST_F(StandIn, SpeedInGHzIsAThousandTimesMHz) {
    EXPECT_EQ(speedOf("2.66 GHz"), 2660u);
    EXPECT_EQ(speedOf("3 GHz"), 3000u);
    EXPECT_THAT(_log.lines(), IsEmpty());
}

TEST_F(StandIn, SpeedInMHzIsTaken) {
    EXPECT_EQ(speedOf("2400 MHz"), 2400u);
    EXPECT_EQ(speedOf("1066.9 MHz"), 1066u);
    EXPECT_THAT(_log.lines(), IsEmpty());
}

TEST_F(StandIn, SpeedInAnotherUnitIs0AndLogged) {
    EXPECT_EQ(speedOf("fast"), 0u);
    EXPECT_THAT(_log.lines(),
                ElementsAre(test::assertionLine("src/Mac/SystemInformationMac", 87, "false"),
                            "2 src/Mac/SystemInformationMac:89 Unknown processor speed: fast"));
}

TEST_F(StandIn, SpeedInBothUnitsIsInMHz) {
    EXPECT_EQ(speedOf("2400 MHz (2.4 GHz)"), 2400u);
}

TEST_F(StandIn, SpeedWithoutABlankBeforeItsUnitIsNoNumber) {
    EXPECT_EQ(speedOf("2400MHz"), 0u);
    EXPECT_EQ(speedOf("2.4GHz"), 0u);
    EXPECT_THAT(_log.lines(), IsEmpty());
}

TEST_F(StandIn, SpeedThatHasNoRoomIs0) {
    EXPECT_EQ(speedOf("1e300 MHz"), 0u);
    EXPECT_EQ(speedOf("-5 GHz"), 0u);
    EXPECT_EQ(speedOf("nan MHz"), 0u);
}

TEST_F(StandIn, EmptySpeedIs0AndNotLogged) {
    EXPECT_EQ(speedOf(""), 0u);
    EXPECT_EQ(cpuOf(reportWith("")).speedMHz, 0u);
    EXPECT_THAT(_log.lines(), IsEmpty());
}

TEST_F(StandIn, ProcessorHasTypeCountAndTheBuildsArchitecture) {
    const CPUInfo info = cpuOf(reportWith(entry("cpu_type", "Gr\u00fcn 5") +
                                          "<key>number_processors</key><integer>8</integer>"));
    EXPECT_EQ(info.type, "Gr\u00fcn 5");
    EXPECT_EQ(info.count, 8);
    EXPECT_EQ(info.description, "Unknown");
#ifdef __x86_64__
    EXPECT_EQ(info.architecture, "x86_64");
#endif
    EXPECT_EQ(said("arguments"), "-xml SPHardwareDataType");
}

TEST_F(StandIn, CountMayBeAText) {
    EXPECT_EQ(cpuOf(reportWith(entry("number_processors", "4 of them"))).count, 4);
}

TEST_F(StandIn, ProcessorWithoutEntriesIsUnknown) {
    const CPUInfo info = cpuOf(reportWith(entry("other", "x")));
    EXPECT_EQ(info.type, "Unknown");
    EXPECT_EQ(info.count, 0);
    EXPECT_NE(info.architecture, "Unknown");
}

TEST_F(StandIn, VideoMemoryIsInMebibytesOrGibibytes) {
    EXPECT_EQ(memoryOf("512 MB"), std::uint64_t{512} << 20);
    EXPECT_EQ(memoryOf("1 GB"), std::uint64_t{1} << 30);
    EXPECT_THAT(_log.lines(), IsEmpty());
    EXPECT_EQ(said("arguments"), "-xml SPDisplaysDataType");
}

TEST_F(StandIn, VideoMemoryThatIsPartOfTheMainMemoryIs0AndNotLogged) {
    EXPECT_EQ(memoryOf("spdisplays_integrated_vram"), 0u);
    EXPECT_THAT(_log.lines(), IsEmpty());
}

TEST_F(StandIn, VideoMemoryInAnotherUnitIs0AndLogged) {
    EXPECT_EQ(memoryOf("512MB"), 0u);
    EXPECT_THAT(_log.lines(),
                ElementsAre(test::assertionLine("src/Mac/SystemInformationMac", 141, "false"),
                            "2 src/Mac/SystemInformationMac:142 Unknown video ram amount: 512MB"));
}

TEST_F(StandIn, VideoMemoryThatIsNoIntegerIs0) {
    EXPECT_EQ(memoryOf("1.5 GB"), 0u);
    EXPECT_EQ(memoryOf(" MB"), 0u);
    EXPECT_THAT(_log.lines(), IsEmpty());
}

TEST_F(StandIn, VideoControllerHasItsModelAndNoDetails) {
    const VideoControllerInfo info = video(entry("sppci_model", "Radeon"));
    EXPECT_EQ(info.model, "Radeon");
    EXPECT_EQ(info.details, "");
    EXPECT_EQ(info.videoMemory, 0u);
}

TEST_F(StandIn, ReportThatIsNoneGivesTheDefaults) {
    for (const std::string& text :
         {std::string(), std::string("no report"), plist("<array/>"), plist("<dict/>"),
          plist("<array><string>x</string></array>"), plist("<array><dict/></array>"),
          plist("<array><dict><key>_items</key><array/></dict></array>"),
          plist("<array><dict><key>_items</key><string>x</string></dict></array>"),
          plist("<array><dict><key>_items</key><array><true/></array></dict></array>"),
          reportWith(entry("cpu_type", "cut")).substr(0, 120)}) {
        SCOPED_TRACE(text);
        expectDefault(cpuOf(text));
    }
}

TEST_F(StandIn, EntriesOfOtherKindsAreOverlooked) {
    const CPUInfo info =
        cpuOf(reportWith("<key>cpu_type</key><array/><key>current_processor_speed</key><true/>"
                         "<key>number_processors</key><dict/>"));
    EXPECT_EQ(info.type, "Unknown");
    EXPECT_EQ(info.speedMHz, 0u);
    EXPECT_EQ(info.count, 0);
    EXPECT_EQ(video("<key>sppci_model</key><integer>1</integer>").model, "");
}

TEST_F(StandIn, ProgramThatIsNotThereGivesTheDefaults) {
    standIn = "/nonexistent/program";
    expectDefault(cpu());
    EXPECT_EQ(SystemInformation::getVideoControllerInfo().front().model, "");
}

TEST_F(StandIn, ProgramThatFailsGivesTheDefaults) {
    program("exit 1");
    expectDefault(cpu());
}

TEST_F(StandIn, ReportIsReadAtOnceAndNotWaitedFor) {
    isWaitedFor = false;
    ASSERT_EQ(mkfifo((_folder / "go").c_str(), 0600), 0);
    report(reportWith(entry("cpu_type", "late")));
    program("read line < go; cat report");
    expectDefault(cpu());
    std::ofstream(_folder / "go") << "go\n";
    [lastTask waitUntilExit];
    EXPECT_EQ([lastTask terminationStatus], 0);
}

TEST_F(StandIn, ReportsFileIsGoneAfterwards) {
    EXPECT_EQ(speedOf("2 GHz"), 2000u);
    EXPECT_NE(said("output"), "");
    EXPECT_FALSE(fs::exists(said("output"))) << said("output");
}

std::ptrdiff_t openDescriptors() {
    const fs::directory_iterator descriptors("/proc/self/fd");
    return std::distance(fs::begin(descriptors), fs::end(descriptors));
}

TEST(ThisMachine, IsReportedAsItIs) {
    const std::vector<CPUInfo> infos = SystemInformation::getCPUInfo();
    ASSERT_EQ(infos.size(), 1u);
    EXPECT_NE(infos.front().type, "Unknown");
    EXPECT_NE(infos.front().architecture, "Unknown");
    EXPECT_GT(infos.front().speedMHz, 100u);
    EXPECT_EQ(infos.front().count, sysconf(_SC_NPROCESSORS_ONLN));
}

TEST(ThisMachine, HasOneVideoControllerOrTheDefault) {
    const std::vector<VideoControllerInfo> infos = SystemInformation::getVideoControllerInfo();
    ASSERT_EQ(infos.size(), 1u);
    EXPECT_EQ(infos.front().details, "");
}

TEST(ThisMachine, ReportsLeaveNoDescriptorOpen) {
    SystemInformation::getCPUInfo();
    const std::ptrdiff_t before = openDescriptors();
    for (int i = 0; i < 20; ++i)
        SystemInformation::getCPUInfo();
    EXPECT_EQ(openDescriptors(), before);
}

TEST(ThisMachine, HasMemory) {
    const MemInfo memory = SystemInformation::getMemInfo();
    EXPECT_EQ(memory.first, static_cast<std::uint64_t>(sysconf(_SC_PHYS_PAGES)) *
                                static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE)));
    EXPECT_GT(memory.second, 0u);
}

TEST(ThisMachine, HasNoDiskRecords) {
    EXPECT_TRUE(SystemInformation::getHDDInfo().empty());
}

TEST(ThisMachine, IsAtLeastWhatThisProcessMayUseOfIt) {
    const std::int64_t count = SystemInformation::getEffectiveCPUCount();
    EXPECT_GE(count, 1);
    EXPECT_LE(count, SystemInformation::getCPUInfo().front().count);
    EXPECT_LE(SystemInformation::getEffectiveMemInfo().first,
              SystemInformation::getMemInfo().first);
}

}  // namespace
}  // namespace tav::ula
