// SPDX-License-Identifier: MIT
#include "ula/ShootingDate.h"
#include "ula/ULATime.h"

#include <atomic>
#include <cstdlib>
#include <gtest/gtest.h>
#include <new>
#include <string>

namespace {

std::atomic<std::size_t> allocations = 0;

}  // namespace

void* operator new(std::size_t size) {
    ++allocations;
    if (void* memory = std::malloc(size ? size : 1))
        return memory;
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace tav::ula {
namespace {

TEST(ULATimeAllocationTest, ReadingAndComparingAllocatesNothing) {
    const std::string text = "2009:03:15 10:20:30.45+02:00",
                      carried = "2009:13:-1 25:61: 1 garbage";
    const std::size_t before = allocations;
    const ULATime time = ULATime::fromShootingDateString(text);
    const ULATime other = ULATime::fromShootingDateString(carried);
    const int order = time.compare(other);
    const auto date = parseShootingDate(text);
    const bool hasUtc = date && date->toUtc();
    const std::size_t after = allocations;
    EXPECT_EQ(after - before, 0U);
    EXPECT_EQ(order, -1);
    EXPECT_TRUE(hasUtc);
}

}  // namespace
}  // namespace tav::ula
