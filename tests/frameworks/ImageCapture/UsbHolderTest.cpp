// SPDX-License-Identifier: MIT
#include "ImageCapture/UsbHolder.h"

#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;
using imagecapture::usbAdvice;
using tav::test::TemporaryFolder;
using tav::test::writeFile;

class UsbHolders : public testing::Test {
protected:
    UsbHolders() {
        fs::create_directories(folder.path() / "usb/001");
        writeFile(folder / "usb/001/005", "");
        fs::create_directories(folder.path() / "proc/sys");
    }
    void addProcess(const std::string& number, const std::string& name, const std::string& opened) {
        fs::create_directories(folder.path() / "proc" / number / "fd");
        writeFile(folder / ("proc/" + number + "/comm"), name + "\n");
        fs::create_symlink(opened, folder / ("proc/" + number + "/fd/7"));
    }
    std::string advice() { return usbAdvice("001,005", folder / "proc", folder / "usb"); }

    TemporaryFolder folder;
};

TEST_F(UsbHolders, ProgramThatHasTheCameraIsNamedWithACure) {
    addProcess("17", "editor", "/tmp/x");
    addProcess("4711", "darkroom", folder / "usb/001/005");
    EXPECT_EQ(advice(), "; \"darkroom\" (process 4711) has it: close that program, or "
                        "run: kill 4711");
}

TEST_F(UsbHolders, DesktopsOwnServiceIsToldToLetGo) {
    addProcess("99", "gvfsd-gphoto2", folder / "usb/001/005");
    EXPECT_EQ(advice(), "; \"gvfsd-gphoto2\" (process 99) has it: eject the camera in the file "
                        "manager, or run: gio mount -s gphoto2");
}

TEST_F(UsbHolders, CameraThatWasPulledOutIsSaidToBe) {
    fs::remove(folder / "usb/001/005");
    EXPECT_EQ(advice(), "; it is no longer connected");
}

TEST_F(UsbHolders, NothingIsSaidWhereNothingStandsInTheWay) {
    addProcess("17", "editor", "/tmp/x");
    EXPECT_EQ(advice(), "");
}

}  // namespace
