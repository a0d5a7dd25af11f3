// SPDX-License-Identifier: MIT
#include "ula/src/Core/ImportPlaces.h"

#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace tav::test {

namespace {

using namespace ula;

constexpr std::int64_t kHour = 3600;

TEST(ImportDates, AreTheSameToTwoSeconds) {
    EXPECT_TRUE(isSameDate(100'000, 100'000));
    EXPECT_TRUE(isSameDate(100'002, 100'000));
    EXPECT_FALSE(isSameDate(100'003, 100'000));
    EXPECT_FALSE(isSameDate(100'000 + 1800, 100'000));
}

TEST(ImportDates, AreTheSameWhenTheClocksHaveChanged) {
    EXPECT_TRUE(isSameDate(100'000 + kHour, 100'000));
    EXPECT_TRUE(isSameDate(100'000 - kHour - 1, 100'000));
    EXPECT_TRUE(isSameDate(100'000 + 25 * kHour, 100'000));
    EXPECT_FALSE(isSameDate(100'000 + 26 * kHour, 100'000));
}

TEST(ImportDates, OfAllNumbersHaveAnAnswer) {
    EXPECT_FALSE(isSameDate(0, 1LL << 60));
    EXPECT_FALSE(isSameDate(-(1LL << 60), 0));
}

TEST(ImportNames, LongOnesAreCutBeforeTheirNumber) {
    const TemporaryFolder folder;
    const std::string name = std::string(251, 'a') + ".JPG";
    writeFile(folder / name, "another");
    ImportPlaces places(folder.path().string());
    const ImportPlace place = places.choose("", {1, name, "", 1, 0});
    EXPECT_EQ(place.path, folder / (std::string(249, 'a') + "-2.JPG"));
}

TEST(ImportNames, OfOneImportAreDifferent) {
    const TemporaryFolder folder;
    ImportPlaces places(folder.path().string());
    EXPECT_EQ(places.choose("", {1, "a", "", 1, 0}).path, folder / "a");
    EXPECT_EQ(places.choose("", {2, "a", "", 1, 0}).path, folder / "a-2");
    EXPECT_EQ(places.choose("b", {3, "a", "", 1, 0}).path, folder / "b/a");
}

}  // namespace

}  // namespace tav::test
