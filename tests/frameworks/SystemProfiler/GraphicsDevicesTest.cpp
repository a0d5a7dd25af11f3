// SPDX-License-Identifier: MIT
#include "SystemProfiler/GraphicsDevices.h"

#include "tests/frameworks/SystemProfiler/FakeMachine.h"

#include <gtest/gtest.h>

namespace {

using namespace systemprofiler;

class GraphicsOfAMachine : public testing::Test {
protected:
    GraphicsOfAMachine() {
        machine.write("usr/share/misc/pci.ids", "# a list\n1002  AMD/ATI\n\t73bf  Radeon RX 6800\n"
                                                "8086  Intel Corporation\n\t1912  HD Graphics 530\n"
                                                "10de  NVIDIA Corporation\n\t1b80  GP104\n");
    }
    void pciCard(const std::string& card, const std::string& vendor, const std::string& device,
                 const std::string& driver) {
        const std::string folder = "sys/class/drm/" + card + "/device/";
        machine.write(folder + "vendor", vendor + "\n");
        machine.write(folder + "device", device + "\n");
        machine.write(folder + "uevent", "DRIVER=" + driver + "\nPCI_SLOT_NAME=0000:01:00.0\n");
    }
    std::vector<GraphicsDevice> read() const { return readGraphicsDevices(machine.root()); }
    GraphicsDevice first() const {
        const auto devices = read();
        return devices.empty() ? GraphicsDevice() : devices.front();
    }

    systemprofilertest::FakeMachine machine;
};

TEST_F(GraphicsOfAMachine, AreNamedByTheListOfDevices) {
    pciCard("card0", "0x1002", "0x73bf", "amdgpu");
    machine.write("sys/class/drm/card0/device/mem_info_vram_total", "17163091968\n");
    EXPECT_EQ(first().model, "AMD/ATI Radeon RX 6800");
    EXPECT_EQ(first().driver, "amdgpu");
    EXPECT_EQ(videoMemoryText(first()), "16368 MB");
}

TEST_F(GraphicsOfAMachine, ShareTheMemoryOfTheProcessors) {
    pciCard("card0", "0x8086", "0x1912", "i915");
    EXPECT_EQ(first().model, "Intel Corporation HD Graphics 530");
    EXPECT_EQ(videoMemoryText(first()), "spdisplays_integrated_vram");
}

TEST_F(GraphicsOfAMachine, HaveMemoryOfTheirOwnWhateverTheMaker) {
    pciCard("card0", "0x8086", "0x1912", "i915");
    machine.write("sys/class/drm/card0/lmem_total_bytes", "0x200000000\n");
    EXPECT_EQ(videoMemoryText(first()), "8 GB");
}

TEST_F(GraphicsOfAMachine, OfVirtualMachinesShowTheirMemoryOnTheBus) {
    pciCard("card0", "0x1234", "0x1111", "bochs-drm");
    machine.write("sys/class/drm/card0/device/resource",
                  "0x00000000fd000000 0x00000000fdffffff 0x0000000000042208\n"
                  "0x0000000000000000 0x0000000000000000 0x0000000000000000\n");
    EXPECT_EQ(first().model, "QEMU graphics 1234:1111");
    EXPECT_EQ(videoMemoryText(first()), "16 MB");
    pciCard("card0", "0x15ad", "0x0405", "vmwgfx");
    EXPECT_EQ(videoMemoryText(first()), "");
}

TEST_F(GraphicsOfAMachine, WhoseDriverKnowsTheModelAreNamedByIt) {
    pciCard("card0", "0x10de", "0x1b80", "nvidia");
    EXPECT_EQ(first().model, "NVIDIA Corporation GP104");
    machine.write("proc/driver/nvidia/gpus/0000:01:00.0/information",
                  "Model: \t\t NVIDIA GeForce GTX 1080\nIRQ:   \t\t 139\n");
    EXPECT_EQ(first().model, "NVIDIA GeForce GTX 1080");
    EXPECT_EQ(videoMemoryText(first()), "");
}

TEST_F(GraphicsOfAMachine, OfASmallBoardAreNamedByTheBoard) {
    machine.write("sys/class/drm/card0/device/uevent",
                  "DRIVER=vc4-drm\nOF_NAME=gpu\nOF_COMPATIBLE_0=brcm,bcm2711-vc5\n");
    EXPECT_EQ(first().model, "brcm,bcm2711-vc5");
    EXPECT_EQ(videoMemoryText(first()), "spdisplays_integrated_vram");
    machine.write("sys/class/drm/card0/device/uevent", "DRIVER=simple-framebuffer\n");
    EXPECT_EQ(first().model, "simple-framebuffer");
}

TEST_F(GraphicsOfAMachine, BeginWithTheOneThatTheFirmwareDrawsOn) {
    pciCard("card0", "0x8086", "0x1912", "i915");
    pciCard("card2", "0x1002", "0x73bf", "amdgpu");
    pciCard("card10", "0x10de", "0x1b80", "nouveau");
    EXPECT_EQ(first().driver, "i915");
    machine.write("sys/class/drm/card10-HDMI-A-1/status", "connected\n");
    machine.write("sys/class/drm/card0-DP-1/status", "disconnected\n");
    EXPECT_EQ(first().driver, "nouveau");
    machine.write("sys/class/drm/card2/device/boot_vga", "1\n");
    const auto devices = read();
    ASSERT_EQ(devices.size(), 3u);
    EXPECT_EQ(devices[0].driver, "amdgpu");
    EXPECT_EQ(devices[1].driver, "nouveau");
    EXPECT_EQ(devices[2].driver, "i915");
}

TEST_F(GraphicsOfAMachine, AreFoundOnTheBusWithoutADriver) {
    machine.write("sys/bus/pci/devices/0000:00:1f.0/class", "0x060100\n");
    EXPECT_TRUE(read().empty());
    const std::string folder = "sys/bus/pci/devices/0000:00:02.0/";
    machine.write(folder + "class", "0x030000\n");
    machine.write(folder + "vendor", "0x10de\n");
    machine.write(folder + "device", "0x1b80\n");
    EXPECT_EQ(first().model, "NVIDIA Corporation GP104");
    EXPECT_EQ(first().driver, "");
}

TEST_F(GraphicsOfAMachine, AreNoneWhereThereIsNothingBehindThem) {
    machine.write("sys/class/drm/version", "drm 1.1.0 20060810\n");
    machine.write("sys/class/drm/card0/dev", "226:0\n");
    EXPECT_TRUE(read().empty());
}

TEST_F(GraphicsOfAMachine, WithNonsenseInTheirFilesAreUnknown) {
    pciCard("card0", "0x1234", "0x1111", "bochs-drm");
    for (const char* resource : {"", "x", "0x1", "0x1 ", "0x5 0x4 0x0", "zz yy xx"}) {
        machine.write("sys/class/drm/card0/device/resource", resource);
        EXPECT_EQ(videoMemoryText(first()), "") << resource;
    }
}

}  // namespace
