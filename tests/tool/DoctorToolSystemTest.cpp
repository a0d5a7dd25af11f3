// SPDX-License-Identifier: MIT
// ula doctor: what is broken in the system is found, and what it says mends it.
#include "tests/tool/DoctorTool.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/Mounts.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <sched.h>
#include <sys/mount.h>
#include <vector>

namespace tav::test {

namespace {

namespace fs = std::filesystem;
using testing::ContainsRegex;
using testing::StartsWith;

TEST_F(DoctorTool, MissingNameOfTheStartUpDiskIsFoundAndMended) {
    fs::remove("/Volumes/Linux");
    const Finding finding = find("volumes");
    EXPECT_EQ(finding.state, "problem");
    EXPECT_EQ(finding.message, "without a name in /Volumes: /");
    EXPECT_EQ(finding.remedy, ULA_TOOL_PATH " volumes --mend");
    EXPECT_EQ(mend(finding.remedy + " >/dev/null"), 0);
    EXPECT_EQ(find("volumes").state, "ok");
}

TEST_F(DoctorTool, VolumeWithoutANameIsFoundAndMended) {
    fs::create_directory(place("images"));
    const MountedImage image(place("disk"), place("images"));
    const Finding finding = find("volumes");
    EXPECT_EQ(finding.state, "problem");
    EXPECT_EQ(finding.message, "without a name in /Volumes: " + image.point());
    EXPECT_EQ(mend(finding.remedy + " >/dev/null"), 0);
    EXPECT_EQ(find("volumes").state, "ok");
    fs::remove("/Volumes/disk");
}

TEST_F(DoctorTool, LinkOfAVolumeThatHasGoneIsFoundAndMended) {
    fs::create_symlink(place("gone"), "/Volumes/Gone");
    const Finding finding = find("volumes");
    EXPECT_EQ(finding.state, "warning");
    EXPECT_EQ(finding.message, "these links in /Volumes lead nowhere: Gone");
    EXPECT_EQ(mend(finding.remedy + " >/dev/null"), 0);
    EXPECT_EQ(find("volumes").state, "ok");
}

TEST_F(DoctorTool, LowLimitsOfTheKernelAreFound) {
    fs::create_directory(place("limits"));
    writeFile(place("limits/max_user_watches"), "10000\n");
    writeFile(place("limits/max_user_instances"), "128\n");
    writeFile(place("limits/max_queued_events"), "16384\n");
    const BoundFolder limits(place("limits"), "/proc/sys/fs/inotify");
    const Finding finding = find("inotify");
    EXPECT_EQ(finding.state, "warning");
    EXPECT_EQ(finding.message, "few may be watched: max_user_watches is 10000");
    EXPECT_EQ(finding.remedy, "sysctl -w fs.inotify.max_user_watches=524288");
}

TEST_F(DoctorTool, WatchingThatTheKernelRefusesIsFound) {
    const std::string output = runInChild([this]() -> std::string {
        if (unshare(CLONE_NEWUSER) != 0)
            return "no space of one's own";
        std::ofstream("/proc/self/uid_map") << "0 0 1";
        if (!(std::ofstream("/proc/sys/user/max_inotify_instances") << "0" << std::flush))
            return "no limit of one's own";
        return examined({"doctor", "--json"}).output;
    });
    const Finding finding = findIn(output, "inotify");
    EXPECT_EQ(finding.state, "problem");
    EXPECT_THAT(finding.message,
                ContainsRegex("^all inotify instances of .+ are in use \\([0-9]+\\)"));
    EXPECT_THAT(finding.remedy, StartsWith("sysctl -w fs.inotify.max_user_instances="));
}

TEST_F(DoctorTool, ReadOnlyHomeIsFoundAndMended) {
    const MountedMemory disk(home);
    ASSERT_EQ(mount("", home.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);
    const Finding finding = find("trash");
    EXPECT_EQ(finding.state, "problem");
    EXPECT_EQ(finding.message, "the disk of " + home + " is read-only");
    EXPECT_EQ(mend(finding.remedy), 0);
    EXPECT_EQ(find("trash").state, "ok");
}

TEST_F(DoctorTool, FullDiskIsFound) {
    const MountedMemory disk(home);
    EXPECT_EQ(find("trash").state, "ok");
    const std::vector<char> more(2 << 20);
    std::ofstream(home + "/large").write(more.data(), static_cast<std::streamsize>(more.size()));
    const Finding finding = find("trash");
    EXPECT_EQ(finding.state, "problem");
    EXPECT_EQ(finding.message, "the disk of " + home + " is full");
    fs::remove(home + "/large");
    EXPECT_EQ(find("trash").state, "ok");
}

TEST_F(DoctorTool, FileInThePlaceOfTheTrashIsFoundAndMended) {
    fs::create_directories(home + "/.local/share/Trash");
    writeFile(home + "/.local/share/Trash/info", "");
    const Finding finding = find("trash");
    EXPECT_EQ(finding.state, "problem");
    EXPECT_EQ(finding.message, home + "/.local/share/Trash/info is no folder");
    EXPECT_EQ(mend(finding.remedy), 0);
    EXPECT_EQ(find("trash").state, "ok");
}

TEST_F(DoctorTool, LookingAtTheTrashLeavesNothing) {
    EXPECT_EQ(find("trash").message, "files can be moved to " + home + "/.local/share/Trash");
    EXPECT_FALSE(fs::exists(home + "/.local/share/Trash"));
}

TEST_F(DoctorTool, CameraWithoutADeviceFileIsFound) {
    const MountedMemory bus("/sys/bus");
    fs::create_directories("/sys/bus/usb/devices/1-2");
    fs::create_directories("/sys/bus/usb/devices/1-2:1.0");
    writeFile("/sys/bus/usb/devices/1-2:1.0/bInterfaceClass", "06\n");
    writeFile("/sys/bus/usb/devices/1-2:1.0/bInterfaceSubClass", "01\n");
    writeFile("/sys/bus/usb/devices/1-2/busnum", "250\n");
    writeFile("/sys/bus/usb/devices/1-2/devnum", "7\n");
    writeFile("/sys/bus/usb/devices/1-2/product", "Snapper 3\n");
    const Finding finding = find("cameras");
    EXPECT_EQ(finding.state, "problem");
    EXPECT_EQ(finding.message, "Snapper 3 has no file in /dev/bus/usb");
}

TEST_F(DoctorTool, ShareThatDoesNotAnswerIsFoundAndMended) {
    const WithoutLeakCheck answersNothing;
    DeadShare share(place("a share"));
    const Finding finding = findAtOnce("mounts");
    EXPECT_EQ(finding.state, "problem");
    EXPECT_EQ(finding.message, share.point() + ": does not answer");
    EXPECT_EQ(finding.remedy, "umount -l '" + share.point() + "'");
    EXPECT_EQ(mend(finding.remedy), 0);
    share.forget();
    EXPECT_EQ(find("mounts").state, "ok");
}

TEST_F(DoctorTool, ShareWhoseProgramHasDiedIsFoundAndMended) {
    DeadShare share(place("share"));
    share.die();
    const Finding finding = find("mounts");
    EXPECT_EQ(finding.state, "problem");
    EXPECT_EQ(finding.message, share.point() + ": Transport endpoint is not connected");
    EXPECT_EQ(mend(finding.remedy), 0);
    share.forget();
    EXPECT_EQ(find("mounts").state, "ok");
}

TEST_F(DoctorTool, ClockFromBeforeTheProgramIsFound) {
    fs::copy_file(ULA_TOOL_PATH, place("ula"));
    fs::last_write_time(place("ula"), fs::file_time_type::clock::now() + std::chrono::hours(72));
    Finding finding;
    for (int attempt = 0; attempt == 0 || (attempt < 10 && isSilent(finding.message)); ++attempt) {
        ASSERT_EQ(mend("! " + place("ula") + " doctor --json > " + place("output")), 0);
        finding = findIn(readFile(place("output")), "clock");
    }
    EXPECT_EQ(finding.state, "problem");
    EXPECT_THAT(finding.message,
                ContainsRegex("^the clock says .+, but this program was made on "));
}

}  // namespace

}  // namespace tav::test
