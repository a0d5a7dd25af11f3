// SPDX-License-Identifier: MIT
#include "ula/foundation/memory/SystemMem.h"

#include "ula/foundation/math/GenRect.h"
#include "ula/foundation/time/Timestamp.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tav {
namespace {

TEST(SystemMemTest, PhysicalMemoryIsWhatTheSystemManages) {
    const auto pages = static_cast<std::uint64_t>(sysconf(_SC_PHYS_PAGES));
    const auto page = static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
    EXPECT_EQ(memory::SystemMem::MemGetPhysicalMemSize(), pages * page);
}

TEST(SystemMemTest, AvailableMemoryIsWithinBounds) {
    const std::uint64_t available = memory::SystemMem::MemGetAvailVirtualMemSize();
    EXPECT_GT(available, 0U);
    EXPECT_LT(available, std::uint64_t{1} << 50);
}

TEST(SystemMemTest, ALimitedAddressSpaceLimitsIt) {
    const pid_t child = fork();
    if (child == 0) {
        // A limit that is passed already: nothing is left.
        const rlimit limit{1 << 20, 1 << 20};
        const bool isSet = setrlimit(RLIMIT_AS, &limit) == 0;
        _exit(isSet && memory::SystemMem::MemGetAvailVirtualMemSize() == 0 ? 0 : 1);
    }
    int status = 1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

TEST(TimestampTest, OnlyRunsForward) {
    time::Timestamp earlier = time::Timestamp::now();
    for (int i = 0; i < 1000; ++i) {
        const time::Timestamp now = time::Timestamp::now();
        ASSERT_GE(now - earlier, 0);
        earlier = now;
    }
    EXPECT_GT(earlier - time::Timestamp(), 0);
    EXPECT_EQ(time::Timestamp::unitsPerSecond(), 1'000'000'000);
}

TEST(GenRectTest, IsLeftTopRightBottom) {
    const math::GenRect<int> rect{1, 2, 11, 22};
    EXPECT_EQ(rect.width(), 10);
    EXPECT_EQ(rect.height(), 20);
    EXPECT_EQ(rect, (math::GenRect<int>{1, 2, 11, 22}));
    EXPECT_EQ(math::GenRect<float>().right, 0.0F);
}

}  // namespace
}  // namespace tav
