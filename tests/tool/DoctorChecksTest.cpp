// SPDX-License-Identifier: MIT
// The checks of ula doctor, on hosts of the tests' own.
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/tool/SilentSocket.h"
#include "tools/ula/doctor/CamerasCheck.h"
#include "tools/ula/doctor/ClockCheck.h"
#include "tools/ula/doctor/DisplayCheck.h"
#include "tools/ula/doctor/Host.h"
#include "tools/ula/doctor/InotifyCheck.h"
#include "tools/ula/doctor/LocaleCheck.h"
#include "tools/ula/doctor/RunChecks.h"
#include "tools/ula/doctor/SessionBusCheck.h"
#include "tools/ula/doctor/ShellWord.h"
#include "tools/ula/doctor/TrashCheck.h"
#include "tools/ula/doctor/VolumesCheck.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <grp.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace tav::test {

namespace {

using namespace tool::doctor;
namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::StartsWith;

constexpr uid_t kNobody = 65534;

class DoctorChecks : public testing::Test {
protected:
    DoctorChecks() {
        host.environment.clear();
        host.displaySockets = place("sockets");
        host.inotifyLimits = place("limits");
        host.usbDevices = place("devices");
        host.usbNodes = place("nodes");
        host.program = place("program");
        fs::create_symlink("/usr/bin/ula", host.program);
        for (const char* name : {"sockets", "limits", "devices", "nodes"})
            fs::create_directory(place(name));
    }
    std::string place(const std::string& name) const {
        return fs::canonical(folder.path()).string() + "/" + name;
    }
    Finding examine(const Check& check) const { return check.examine(host); }
    /// As a user without any rights: the state and the message.
    std::string examineAsNobody(const Check& check) const {
        return runInChild([&]() -> std::string {
            if (setgid(kNobody) != 0 || setuid(kNobody) != 0)
                return "these tests need root";
            const Finding finding = examine(check);
            return std::string(textOf(finding.state)) + ": " + finding.message + " -> " +
                   finding.remedy;
        });
    }
    void limit(const char* name, const std::string& number) const {
        writeFile(place("limits/") + name, number + "\n");
    }
    /// A device with a file, at bus 1.
    void addCamera(const std::string& name, const std::string& number) const {
        const std::string device = place("devices/1-") + number;
        fs::create_directories(device);
        fs::create_directories(device + ":1.0");
        fs::create_directories(place("nodes/001"));
        writeFile(device + "/busnum", "1\n");
        writeFile(device + "/devnum", number + "\n");
        writeFile(device + "/product", name + "\n");
        writeFile(device + ":1.0/bInterfaceClass", "06\n");
        writeFile(device + ":1.0/bInterfaceSubClass", "01\n");
        writeFile(node(number), "");
    }
    std::string node(const std::string& number) const { return place("nodes/001/00") + number; }

    const TemporaryFolder folder;
    Host host = Host::ofProcess();
};

TEST_F(DoctorChecks, CheckThatFindsNothingInTimeHoldsUpNoOther) {
    const SilentSocket socket(place("bus"));
    host.environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=" + place("bus");
    host.environment["LC_ALL"] = "C.UTF-8";
    std::vector<Finding> findings;
    // As long as the second one needs on a busy machine.
    for (const int milliseconds : {500, 5'000, 50'000}) {
        findings = runChecks({sessionBusCheck(), localeCheck()}, host,
                             std::chrono::milliseconds(milliseconds));
        if (findings[1].state == CheckState::Ok)
            break;
    }
    EXPECT_EQ(findings[0].message, "the session bus does not answer");
    EXPECT_EQ(findings[1].message, "C.UTF-8 is installed");
}

TEST_F(DoctorChecks, CheckThatFailsIsUnknown) {
    const Check failing{
        "failing", [](const Host&) -> Finding { throw std::runtime_error("why"); }, {}};
    const Finding finding = runChecks({failing}, host, std::chrono::seconds(10)).front();
    EXPECT_EQ(finding.state, CheckState::Unknown);
    EXPECT_EQ(finding.message, "cannot be examined: why");
}

TEST_F(DoctorChecks, DisplayThatIsThereIsProposed) {
    const SilentSocket socket(place("sockets/X7"));
    writeFile(place("sockets/X2"), "");
    EXPECT_EQ(examine(displayCheck()).remedy, "export DISPLAY=:7");
}

TEST_F(DoctorChecks, WithoutAnyDisplayOneIsToBeStarted) {
    EXPECT_THAT(examine(displayCheck()).remedy, HasSubstr("xvfb-run PROGRAM"));
    host.environment["WAYLAND_DISPLAY"] = "wayland-0";
    EXPECT_THAT(examine(displayCheck()).remedy, HasSubstr("apt-get install xwayland"));
}

TEST_F(DoctorChecks, TextThatNamesNoDisplayIsFound) {
    host.environment["DISPLAY"] = "nonsense";
    const Finding finding = examine(displayCheck());
    EXPECT_EQ(finding.state, CheckState::Problem);
    EXPECT_EQ(finding.message, "DISPLAY=nonsense names no display");
}

TEST_F(DoctorChecks, NoBusIsStartedToFindOne) {
    host.environment["DBUS_SESSION_BUS_ADDRESS"] = "autolaunch:";
    EXPECT_EQ(examine(sessionBusCheck()).message, "this session has no bus");
}

TEST_F(DoctorChecks, MissingFolderOfVolumesIsFound) {
    host.volumes = place("Volumes");
    const Finding finding = examine(volumesCheck());
    EXPECT_EQ(finding.state, CheckState::Problem);
    EXPECT_EQ(finding.message, "there is no folder " + place("Volumes"));
    EXPECT_EQ(finding.remedy, "ula volumes --mend");
}

TEST_F(DoctorChecks, ProgramThatIsNotInstalledIsCalledByItsPath) {
    host.volumes = place("Volumes");
    host.program = place("other program");
    fs::create_symlink("/home/ann/my tools/ula", host.program);
    EXPECT_EQ(examine(volumesCheck()).remedy, "'/home/ann/my tools/ula' volumes --mend");
    fs::permissions(folder.path(), fs::perms::all);
    EXPECT_THAT(examineAsNobody(volumesCheck()),
                HasSubstr(" -> sudo '/home/ann/my tools/ula' volumes --mend"));
}

TEST_F(DoctorChecks, FileInThePlaceOfVolumesIsToBeMovedAway) {
    host.volumes = place("Volumes");
    writeFile(host.volumes, "");
    EXPECT_EQ(examine(volumesCheck()).remedy,
              "mv " + host.volumes + " " + host.volumes + ".old && ula volumes --mend");
}

TEST_F(DoctorChecks, VolumesThatMayNotBeLookedIntoAreFound) {
    host.volumes = place("Volumes");
    fs::create_directory(host.volumes);
    fs::permissions(host.volumes, fs::perms::owner_all);
    fs::permissions(folder.path(), fs::perms::all);
    EXPECT_EQ(examineAsNobody(volumesCheck()), "problem: nobody may not look into " + host.volumes +
                                                   " -> sudo chmod 755 " + host.volumes);
}

TEST_F(DoctorChecks, EveryLowLimitIsTold) {
    limit("max_user_watches", "8191");
    limit("max_user_instances", "64");
    limit("max_queued_events", "16384");
    const Finding finding = examine(inotifyCheck());
    EXPECT_EQ(finding.state, CheckState::Problem);
    EXPECT_EQ(finding.message,
              "few may be watched: max_user_watches is 8191, max_user_instances is 64");
    EXPECT_EQ(finding.remedy, "sysctl -w fs.inotify.max_user_watches=524288 "
                              "fs.inotify.max_user_instances=1024");
}

TEST_F(DoctorChecks, LimitsThatSufficeAreWell) {
    limit("max_user_watches", "65536");
    limit("max_user_instances", "128");
    limit("max_queued_events", "16384");
    EXPECT_EQ(examine(inotifyCheck()).state, CheckState::Ok);
    limit("max_queued_events", "16383");
    EXPECT_EQ(examine(inotifyCheck()).state, CheckState::Warning);
    limit("max_queued_events", "many");
    EXPECT_EQ(examine(inotifyCheck()).state, CheckState::Unknown);
}

TEST_F(DoctorChecks, CameraThatCanBeUsedIsNamed) {
    addCamera("Snapper 3", "5");
    // No camera: another class.
    addCamera("Stick", "6");
    writeFile(place("devices/1-6:1.0/bInterfaceClass"), "08\n");
    const Finding finding = examine(camerasCheck());
    EXPECT_EQ(finding.state, CheckState::Ok);
    EXPECT_EQ(finding.message, "can be used: Snapper 3");
}

TEST_F(DoctorChecks, ProgramThatHasTheCameraIsNamed) {
    addCamera("Snapper 3", "5");
    std::array<int, 2> ready{};
    ASSERT_EQ(pipe(ready.data()), 0);
    ChildProcess program([&] {
        open(node("5").c_str(), O_RDWR);
        prctl(PR_SET_NAME, "darkroom");
        close(ready[1]);
        pause();
    });
    close(ready[1]);
    char end = 0;
    ASSERT_EQ(read(ready[0], &end, 1), 0);
    close(ready[0]);
    const Finding finding = examine(camerasCheck());
    EXPECT_EQ(finding.state, CheckState::Warning);
    EXPECT_EQ(finding.message,
              "Snapper 3: \"darkroom\" (process " + std::to_string(program.id()) + ") has it");
    const std::string command = "kill " + std::to_string(program.id());
    EXPECT_EQ(finding.remedy, "close that program, or run: " + command);
    ASSERT_EQ(std::system(command.c_str()), 0);
    EXPECT_EQ(program.wait(), -SIGTERM);
    EXPECT_EQ(examine(camerasCheck()).state, CheckState::Ok);
}

TEST_F(DoctorChecks, CamerasThatMayNotBeUsedAreFoundAmongOthers) {
    addCamera("Snapper", "5");
    addCamera("Snapper 3", "6");
    fs::permissions(folder.path(), fs::perms::all);
    chmod(node("5").c_str(), 0666);
    chmod(node("6").c_str(), 0644);
    EXPECT_EQ(examineAsNobody(camerasCheck()),
              "problem: Snapper 3: you may not use " + node("6") +
                  " -> install Debian's libgphoto2-6 for its device rules and plug the camera in "
                  "again");
}

TEST_F(DoctorChecks, GroupThatMayUseTheCameraIsToBeJoined) {
    addCamera("Snapper", "5");
    fs::permissions(folder.path(), fs::perms::all);
    ASSERT_EQ(chown(node("5").c_str(), 0, getgrnam("plugdev")->gr_gid), 0);
    ASSERT_EQ(chmod(node("5").c_str(), 0664), 0);
    EXPECT_EQ(examineAsNobody(camerasCheck()),
              "problem: Snapper: you may not use " + node("5") +
                  " -> sudo adduser \"$USER\" plugdev  # then log in again");
}

TEST_F(DoctorChecks, FolderOfAnotherUserInTheHomeIsFound) {
    const std::string home = place("home");
    fs::create_directories(home + "/.local");
    ASSERT_EQ(chown(home.c_str(), kNobody, kNobody), 0);
    fs::permissions(folder.path(), fs::perms::all);
    host.environment["HOME"] = home;
    host.homeTrash = [home] { return home + "/.local/share/Trash"; };
    EXPECT_EQ(examineAsNobody(trashCheck()), "problem: nobody may not write in " + home +
                                                 "/.local -> sudo chown nobody " + home +
                                                 "/.local");
    ASSERT_EQ(chown((home + "/.local").c_str(), kNobody, kNobody), 0);
    EXPECT_THAT(examineAsNobody(trashCheck()), StartsWith("ok: "));
    fs::permissions(home + "/.local", fs::perms::owner_read);
    EXPECT_THAT(examineAsNobody(trashCheck()), HasSubstr(" -> chmod u+rwx " + home + "/.local"));
}

TEST_F(DoctorChecks, NoFolderOutsideTheHomeIsToBeGivenAway) {
    fs::permissions(folder.path(), fs::perms::all);
    fs::create_directory(place("homes"));
    host.environment["HOME"] = place("homes/nobody");
    host.homeTrash = [this] { return place("homes/nobody/.local/share/Trash"); };
    EXPECT_EQ(examineAsNobody(trashCheck()),
              "problem: nobody may not write in " + place("homes") +
                  " -> set HOME, or XDG_DATA_HOME, to a folder of nobody");
}

TEST_F(DoctorChecks, NothingOutsideTheHomeIsToBeMoved) {
    host.environment["HOME"] = "/dev/null";
    host.homeTrash = [] { return "/dev/null/.local/share/Trash"; };
    const Finding finding = examine(trashCheck());
    EXPECT_EQ(finding.message, "/dev/null is no folder");
    EXPECT_EQ(finding.remedy, "set HOME, or XDG_DATA_HOME, to a folder of root");
}

TEST_F(DoctorChecks, LinksInTheTrashAreNoFolders) {
    fs::create_directories(place("Trash"));
    fs::create_directory_symlink("/", place("Trash/files"));
    host.homeTrash = [this] { return place("Trash"); };
    EXPECT_EQ(examine(trashCheck()).message, place("Trash/files") + " is no folder");
}

TEST_F(DoctorChecks, LocaleThatCannotBeMadeIsToBeReplaced) {
    host.environment = {{"LANG", "C.UTF-8"}, {"LC_TIME", "xx_YY.UTF-8"}};
    const Finding finding = examine(localeCheck());
    EXPECT_EQ(finding.state, CheckState::Problem);
    EXPECT_EQ(finding.message, "LC_TIME=xx_YY.UTF-8: this locale is not installed");
    EXPECT_EQ(finding.remedy, "export LC_TIME=C.UTF-8");
}

TEST_F(DoctorChecks, LocaleIsMadeUnderTheNameThatTheSystemHas) {
    host.environment = {{"LANG", "qq_YY.utf8@euro"}};
    host.supportedLocales = place("list");
    writeFile(host.supportedLocales, "qq_YY UTF-8\nqq_YY.UTF-8@euro UTF-8\n");
    EXPECT_THAT(examine(localeCheck()).remedy, StartsWith("echo 'qq_YY.UTF-8@euro UTF-8' | "));
    fs::remove(host.supportedLocales);
    EXPECT_THAT(examine(localeCheck()).remedy, StartsWith("apt-get install locales"));
}

TEST_F(DoctorChecks, WhatStandsBelowLcAllTakesNoEffect) {
    host.environment = {{"LC_ALL", "C.UTF-8"}, {"LANG", "xx_YY.UTF-8"}};
    EXPECT_EQ(examine(localeCheck()).state, CheckState::Ok);
    host.environment = {{"LC_TIME", "C.UTF-8"}};
    EXPECT_EQ(examine(localeCheck()).remedy, "export LANG=C.UTF-8");
}

TEST_F(DoctorChecks, ClockThatDriftsIsWarnedOf) {
    host.synchronisation = [] { return Synchronisation::No; };
    EXPECT_EQ(examine(clockCheck()).state, CheckState::Warning);
    host.services = folder.path().string();
    EXPECT_EQ(examine(clockCheck()).remedy, "timedatectl set-ntp true");
    host.services = place("none");
    EXPECT_EQ(examine(clockCheck()).remedy, "apt-get install chrony");
}

TEST_F(DoctorChecks, ClockInAnotherTimeZoneIsNoneOfThePast) {
    host.synchronisation = [] { return Synchronisation::Yes; };
    host.program = "/proc/self/exe";
    struct stat program {};
    ASSERT_EQ(stat("/proc/self/exe", &program), 0);
    host.now = [&] { return program.st_mtime - 14 * 3600; };
    EXPECT_EQ(examine(clockCheck()).state, CheckState::Ok);
    host.now = [&] { return program.st_mtime - 25 * 3600; };
    EXPECT_EQ(examine(clockCheck()).state, CheckState::Problem);
}

/// From now on the kernel answers this process's questions about its clock with `error`; with 0, as
/// if it were kept right.
void answerForTheClock(unsigned error) {
    std::array<sock_filter, 5> steps = {
        {BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
         BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_clock_adjtime, 1, 0),
         BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_adjtimex, 0, 1),
         BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | error),
         BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW)}};
    const sock_fprog program{static_cast<unsigned short>(steps.size()), steps.data()};
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
        prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0)
        throw std::runtime_error("no filter");
}

TEST_F(DoctorChecks, KernelIsAskedWhetherTheClockIsKept) {
    const auto stateWith = [&](unsigned error) {
        return runInChild([&] {
            answerForTheClock(error);
            return std::string(textOf(examine(clockCheck()).state));
        });
    };
    EXPECT_EQ(stateWith(0), "ok");
    EXPECT_EQ(stateWith(EPERM), "unknown");
}

TEST_F(DoctorChecks, CommandsNamePathsAsTheShellReadsThem) {
    for (const std::string text : {"/plain", "two words", "it's", "Gr\u00fcn & \"$HOME\" `x` \\n",
                                   "new\nline\x1b[31m", "no text: \xff\xfe", ""}) {
        writeFile(place("script"), "printf %s " + shellWord(text) + " > " + place("output"));
        ASSERT_EQ(std::system(("bash " + place("script")).c_str()), 0);
        EXPECT_EQ(readFile(place("output")), text);
        EXPECT_EQ(shellWord(text).find('\n'), std::string::npos);
    }
    EXPECT_EQ(shellWord("Gr\u00fcn"), "'Gr\u00fcn'");
}

}  // namespace

}  // namespace tav::test
