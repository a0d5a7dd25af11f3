// SPDX-License-Identifier: MIT
// How often calls onto the main thread and texts ask for memory, in any library.
#include "bench/AllocationCount.h"
#include "tests/Core/TestCaller.h"
#import "ula/ObjCHelper.h"
#include "ula/ScopedARPool.h"

#include <gtest/gtest.h>
#include <memory>
#include <thread>

namespace tav::ula {
namespace {

using bench::allocationCount;

constexpr std::size_t kTimes = 1000;

/// For so many calls of the function, in a pool of their own.
template <class Function>
std::size_t allocationsOf(Function function) {
    const ScopedARPool pool;
    function();
    const std::size_t before = allocationCount();
    for (std::size_t i = 0; i < kTimes; ++i)
        function();
    return allocationCount() - before;
}

TEST(AllocationTest, TextMadeOfAPartAllocatesNoMoreThanThePlatformsOwnCall) {
    const FastString whole("a name that is part of a longer buffer: IMG_0815.JPG");
    const FastString part = whole.substr(40, 8);
    // Whole allocations for each: the pool grows now and then.
    const std::size_t own =
        allocationsOf([] { [NSString stringWithUTF8String:"IMG_0815"]; }) / kTimes;
    EXPECT_GT(own, 0u);
    EXPECT_EQ(allocationsOf([&] { [NSString fromUTF8String:part]; }) / kTimes, own);
}

TEST(AllocationTest, QueuedCallTakesOneAllocation) {
    TestCaller caller;
    std::size_t runs = 0;
    const std::size_t allocations = allocationsOf([&] { caller.callAsync([&runs] { ++runs; }); });
    EXPECT_EQ(allocations, kTimes);
    const std::size_t before = allocationCount();
    caller.runPendingJobs();
    EXPECT_EQ(runs, kTimes + 1);
    EXPECT_EQ(allocationCount() - before, 0u);
}

TEST(AllocationTest, SynchronousCallTakesOneAllocation) {
    TestCaller caller;
    std::size_t allocations = 0;
    std::jthread other([&] { allocations = allocationsOf([&] { caller.callSync([] {}); }); });
    for (std::size_t i = 0; i < kTimes + 1; ++i) {
        caller.wakeUps.acquire();
        caller.runPendingJobs();
    }
    other.join();
    EXPECT_LE(allocations, kTimes);
}

}  // namespace
}  // namespace tav::ula
