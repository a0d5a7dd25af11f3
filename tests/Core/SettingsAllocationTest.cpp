// SPDX-License-Identifier: MIT
#include "bench/AllocationCount.h"
#include "ula/SettingsBase.h"

#include <gtest/gtest.h>
#include <string>

namespace tav::ula {
namespace {

using Setting = SettingsBase::Setting;

TEST(SettingsAllocationTest, ReadingWhatIsThereAllocatesNothing) {
    SettingsBase settings;
    std::vector<FastString> keys;
    for (int i = 0; i < 1000; ++i)
        keys.push_back(FastString("key" + std::to_string(i)));
    const FastString group("group"), text("text"), empty;
    for (const FastString& key : keys) {
        settings.setGeneric("ints", key, Setting(1));
        settings.setGeneric(group, key, Setting("a text that needs memory of its own"));
    }
    const FastString ints("ints");
    const std::size_t before = bench::allocationCount();
    std::size_t length = 0;
    for (const FastString& key : keys) {
        length += settings.getString(group, key, empty).length();
        length += static_cast<std::size_t>(settings.getInt(ints, key, 0));
    }
    const std::size_t after = bench::allocationCount();
    EXPECT_EQ(after - before, 0U);
    EXPECT_EQ(length, 1000 * 36U);
}

}  // namespace
}  // namespace tav::ula
