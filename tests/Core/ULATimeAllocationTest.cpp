// SPDX-License-Identifier: MIT
#include "bench/AllocationCount.h"
#include "ula/ShootingDate.h"
#include "ula/ULATime.h"

#include <gtest/gtest.h>
#include <string>

namespace tav::ula {
namespace {

TEST(ULATimeAllocationTest, ReadingAndComparingAllocatesNothing) {
    const std::string text = "2009:03:15 10:20:30.45+02:00",
                      carried = "2009:13:-1 25:61: 1 garbage";
    const std::size_t before = bench::allocationCount();
    const ULATime time = ULATime::fromShootingDateString(text);
    const ULATime other = ULATime::fromShootingDateString(carried);
    const int order = time.compare(other);
    const auto date = parseShootingDate(text);
    const bool hasUtc = date && date->toUtc();
    const std::size_t after = bench::allocationCount();
    EXPECT_EQ(after - before, 0U);
    EXPECT_EQ(order, -1);
    EXPECT_TRUE(hasUtc);
}

}  // namespace
}  // namespace tav::ula
