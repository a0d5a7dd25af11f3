// SPDX-License-Identifier: MIT
#include "SystemProfiler/Processors.h"

#include "SystemProfiler/ArmCores.h"
#include "SystemProfiler/KernelFile.h"
#include "tests/frameworks/SystemProfiler/FakeMachine.h"

#include <gtest/gtest.h>
#include <unistd.h>

namespace {

using namespace systemprofiler;

class OfAMachine : public testing::Test {
protected:
    Processors read() const { return readProcessors(machine.root()); }
    void table(const std::string& text) { machine.write("proc/cpuinfo", text); }

    systemprofilertest::FakeMachine machine;
};

std::string thread(int number, int package, int core) {
    return "processor\t: " + std::to_string(number) +
           "\nvendor_id\t: GenuineIntel\n"
           "model name\t: Intel(R) Core(TM) i7-4790 CPU  @   3.60GHz\n"
           "cpu MHz\t\t: 1200.000\nphysical id\t: " +
           std::to_string(package) + "\ncore id\t\t: " + std::to_string(core) + "\n\n";
}

TEST_F(OfAMachine, ThreadsCoresAndPackagesAreCounted) {
    std::string text;
    for (int i = 0; i < 8; ++i)
        text += thread(i, i / 4, i / 2 % 2);
    table(text);
    const Processors processors = read();
    EXPECT_EQ(processors.count, 8u);
    EXPECT_EQ(processors.cores, 4u);
    EXPECT_EQ(processors.packages, 2u);
}

TEST_F(OfAMachine, TheNameHasSingleBlanksAndTellsTheSpeed) {
    table(thread(0, 0, 0));
    machine.write("sys/devices/system/cpu/cpufreq/policy0/cpuinfo_max_freq", "4000000\n");
    EXPECT_EQ(read().type, "Intel(R) Core(TM) i7-4790 CPU @ 3.60GHz");
    EXPECT_EQ(read().speedMHz, 3600u);
}

TEST_F(OfAMachine, WithoutASpeedInItsNameTheBaseFrequencyComesFirst) {
    table("processor : 0\nmodel name : AMD Ryzen 7 5800X 8-Core Processor\ncpu MHz : 2200.5\n");
    EXPECT_EQ(read().speedMHz, 2201u);
    machine.write("sys/devices/system/cpu/cpufreq/policy0/cpuinfo_max_freq", "3800000\n");
    machine.write("sys/devices/system/cpu/cpufreq/policy8/cpuinfo_max_freq", "4850195\n");
    EXPECT_EQ(read().speedMHz, 4850u);
    machine.write("sys/devices/system/cpu/cpufreq/policy0/base_frequency", "3800000\n");
    EXPECT_EQ(read().speedMHz, 3800u);
}

TEST_F(OfAMachine, ArmCoresAreNamedByTheirCodes) {
    table("processor\t: 0\nBogoMIPS\t: 108.00\nCPU implementer\t: 0x41\nCPU architecture: 8\n"
          "CPU variant\t: 0x0\nCPU part\t: 0xd08\nCPU revision\t: 3\n\n"
          "processor\t: 1\nCPU implementer\t: 0x41\nCPU part\t: 0xd03\n\nHardware\t: BCM2835\n");
    machine.write("sys/devices/system/cpu/cpu0/topology/core_id", "0\n");
    machine.write("sys/devices/system/cpu/cpu0/topology/physical_package_id", "0\n");
    machine.write("sys/devices/system/cpu/cpu1/topology/core_id", "1\n");
    machine.write("sys/devices/system/cpu/cpu1/topology/physical_package_id", "0\n");
    const Processors processors = read();
    EXPECT_EQ(processors.type, "ARM Cortex-A72");
    EXPECT_EQ(processors.count, 2u);
    EXPECT_EQ(processors.cores, 2u);
    EXPECT_EQ(processors.packages, 1u);
}

TEST_F(OfAMachine, OtherArchitecturesHaveOtherKeys) {
    table("processor\t: 0\ncpu\t\t: POWER9, altivec supported\nclock\t\t: 2300.000000MHz\n");
    EXPECT_EQ(read().type, "POWER9, altivec supported");
    EXPECT_EQ(read().speedMHz, 2300u);
    table("processor\t: 0\nhart\t\t: 2\nuarch\t\t: sifive,u74-mc\n");
    EXPECT_EQ(read().type, "sifive,u74-mc");
    table("Hardware\t: Something\nprocessor\t: 0\n");
    EXPECT_EQ(read().type, "Something");
}

TEST_F(OfAMachine, ProcessorsThatAreOfflineDoNotCount) {
    table(thread(0, 0, 0) + thread(1, 0, 1));
    machine.write("sys/devices/system/cpu/online", "0-2,8,10-11\n");
    EXPECT_EQ(read().count, 6u);
}

TEST_F(OfAMachine, WithoutAnyFileIsUnknown) {
    const Processors processors = read();
    EXPECT_EQ(processors.type, "");
    EXPECT_EQ(processors.speedMHz, 0u);
    EXPECT_EQ(processors.count, 0u);
}

TEST_F(OfAMachine, NonsenseIsUnknown) {
    table("model name\nprocessor\n: : :\ncpu MHz : fast\n\xFF\xFE\n");
    machine.write("sys/devices/system/cpu/online", "9-1,x,-,");
    machine.write("sys/devices/system/cpu/cpufreq/policy0/base_frequency", "-1");
    EXPECT_EQ(read().speedMHz, 0u);
    EXPECT_EQ(read().count, 0u);
}

TEST(ThisMachine, IsDescribed) {
    const Processors processors = readProcessors();
    EXPECT_NE(processors.type, "");
    EXPECT_GT(processors.speedMHz, 100u);
    EXPECT_EQ(processors.count, static_cast<uint64_t>(sysconf(_SC_NPROCESSORS_ONLN)));
}

TEST(SpeedText, IsInGHzWhereThatReadsBack) {
    EXPECT_EQ(speedText(2660), "2.66 GHz");
    EXPECT_EQ(speedText(3000), "3 GHz");
    EXPECT_EQ(speedText(2500), "2.5 GHz");
    EXPECT_EQ(speedText(800), "800 MHz");
    EXPECT_EQ(speedText(2010), "2010 MHz");
    EXPECT_EQ(speedText(0), "");
}

TEST(ArmCores, OfUnknownDesignsAreNamedByMakerAndCode) {
    EXPECT_EQ(armCoreName("0x61", "0x022"), "Apple 0x022");
    EXPECT_EQ(armCoreName("0x41", "0xfff"), "ARM 0xfff");
    EXPECT_EQ(armCoreName("0x99", "0xd08"), "");
    EXPECT_EQ(armCoreName("", ""), "");
}

TEST(KernelNumbers, AreDecimalOrHexadecimalAndWhole) {
    EXPECT_EQ(numberOf("0x1af4"), 0x1AF4u);
    EXPECT_EQ(numberOf("12"), 12u);
    EXPECT_EQ(numberOf("12 kB"), std::nullopt);
    EXPECT_EQ(numberOf(""), std::nullopt);
    EXPECT_EQ(numberOf("99999999999999999999"), std::nullopt);
}

}  // namespace
