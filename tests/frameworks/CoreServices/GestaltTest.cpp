// SPDX-License-Identifier: MIT
#include "CoreServices/SystemVersion.h"
#include "tests/support/TemporaryFolder.h"

#include <CoreServices/CoreServices.h>

#include <filesystem>
#include <gtest/gtest.h>
#include <sys/utsname.h>

namespace {

using coreservices::packedForm;
using coreservices::parseSystemVersion;
using coreservices::readSystemVersion;
using coreservices::SystemVersion;

class ReleaseFile : public testing::Test {
protected:
    ReleaseFile() {
        std::filesystem::create_directories(_folder / "etc");
        std::filesystem::create_directories(_folder / "usr/lib");
    }
    void write(const std::string& name, const std::string& text) {
        tav::test::writeFile(_folder / name, text);
    }
    std::optional<SystemVersion> version() { return readSystemVersion(_folder.path().string()); }

private:
    tav::test::TemporaryFolder _folder;
};

std::optional<SystemVersion> kernelVersion() {
    utsname names{};
    uname(&names);
    return parseSystemVersion(names.release);
}

TEST_F(ReleaseFile, SaysTheVersionWithOrWithoutQuotes) {
    write("etc/os-release", "NAME=\"X\"\nVERSION=\"9.9\"\nVERSION_ID=\"22.04\"\n");
    EXPECT_EQ(version(), (SystemVersion{22, 4, 0}));
    write("etc/os-release", "VERSION_ID=12\n");
    EXPECT_EQ(version(), (SystemVersion{12, 0, 0}));
    write("etc/os-release", "VERSION_ID='3.18.4'");
    EXPECT_EQ(version(), (SystemVersion{3, 18, 4}));
}

TEST_F(ReleaseFile, OfTheDistributionCountsWhereTheOwnerHasNone) {
    write("usr/lib/os-release", "VERSION_ID=41\n");
    EXPECT_EQ(version(), (SystemVersion{41, 0, 0}));
    write("etc/os-release", "VERSION_ID=40\n");
    EXPECT_EQ(version(), (SystemVersion{40, 0, 0}));
}

TEST_F(ReleaseFile, WithoutAVersionLeavesTheKernels) {
    EXPECT_EQ(version(), kernelVersion());
    write("etc/os-release", "ID=arch\nBUILD_ID=rolling\n");
    EXPECT_EQ(version(), kernelVersion());
    write("etc/os-release", "VERSION_ID=rolling\n");
    EXPECT_EQ(version(), kernelVersion());
}

TEST(SystemVersions, StopAtWhatIsNoNumber) {
    EXPECT_EQ(parseSystemVersion("6.18.44-fc"), (SystemVersion{6, 18, 44}));
    EXPECT_EQ(parseSystemVersion("15-SP5"), (SystemVersion{15, 0, 0}));
    EXPECT_EQ(parseSystemVersion("1.2.3.4"), (SystemVersion{1, 2, 3}));
    EXPECT_EQ(parseSystemVersion("7."), (SystemVersion{7, 0, 0}));
    EXPECT_EQ(parseSystemVersion("20240101"), (SystemVersion{20240101, 0, 0}));
    EXPECT_EQ(parseSystemVersion(""), std::nullopt);
    EXPECT_EQ(parseSystemVersion("-1"), std::nullopt);
    EXPECT_EQ(parseSystemVersion("99999999999"), std::nullopt);
}

TEST(SystemVersions, ArePackedDigitByDigit) {
    EXPECT_EQ(packedForm({10, 3, 9}), 0x1039);
    EXPECT_EQ(packedForm({9, 0, 0}), 0x0900);
    EXPECT_EQ(packedForm({12, 0, 0}), 0x1200);
    EXPECT_EQ(packedForm({99, 9, 9}), 0x9999);
}

TEST(SystemVersions, WithoutRoomInThePackedFormAreLaterThanAllThatHave) {
    EXPECT_EQ(packedForm({3, 18, 4}), 0x9999);
    EXPECT_EQ(packedForm({10, 0, 12}), 0x9999);
    EXPECT_EQ(packedForm({2024, 1, 1}), 0x9999);
}

TEST(Gestalt, TellsTheVersionOfThisSystem) {
    const SystemVersion version = readSystemVersion().value();
    SInt32 number = -1;
    EXPECT_EQ(Gestalt(gestaltSystemVersion, &number), noErr);
    EXPECT_EQ(number, packedForm(version));
    EXPECT_EQ(Gestalt(gestaltSystemVersionMajor, &number), noErr);
    EXPECT_EQ(number, version.major);
    EXPECT_EQ(Gestalt(gestaltSystemVersionMinor, &number), noErr);
    EXPECT_EQ(number, version.minor);
    EXPECT_EQ(Gestalt(gestaltSystemVersionBugFix, &number), noErr);
    EXPECT_EQ(number, version.bugFix);
}

TEST(Gestalt, RefusesOtherQuestionsAndTouchesNothing) {
    SInt32 number = 7;
    EXPECT_EQ(Gestalt(OSType{0x6D616368}, &number), gestaltUndefSelectorErr);
    EXPECT_EQ(number, 7);
    EXPECT_EQ(Gestalt(gestaltSystemVersion, nullptr), paramErr);
}

}  // namespace
