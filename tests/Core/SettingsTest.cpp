// SPDX-License-Identifier: MIT
#include "ula/Settings.h"

#include "tests/support/LogCapture.h"

#include <gmock/gmock.h>

namespace tav::ula {
namespace {

using test::assertionLine;
using test::LogCapture;
using testing::ElementsAre;

/// The least backend.
class MemorySettings : public Settings {
public:
    using Settings::Settings;
    bool read() override { return false; }
    bool write() override { return false; }

    const FastString& appName() const { return _appName; }
    const FastString& company() const { return _company; }
};

class SettingsTest : public testing::Test {
protected:
    SettingsTest() {
        settings.changed().connect([this] { ++changes; });
    }
    MemorySettings settings{"App", "Company"};
    int changes = 0;
};

TEST_F(SettingsTest, AMissingKeyEmitsOnceAPresentOneNothing) {
    settings.getInt("G", "K", 1);
    EXPECT_EQ(changes, 1);
    settings.getInt("G", "K", 1);
    EXPECT_EQ(changes, 1);
}

TEST_F(SettingsTest, StoringTheSameValueTwiceEmitsTwice) {
    settings.setGeneric("G", "K", 1);
    settings.setGeneric("G", "K", 1);
    EXPECT_EQ(changes, 2);
}

TEST_F(SettingsTest, AReplacedTypeEmitsOnce) {
    settings.setGeneric("G", "K", 1);
    settings.getString("G", "K", "text");
    EXPECT_EQ(changes, 2);
}

TEST_F(SettingsTest, TheStoreHasChangedWhenTheSignalIsEmitted) {
    bool seen = false;
    settings.changed().connect([&] { seen = settings.containsValue("G", "K"); });
    settings.setGeneric("G", "K", 1);
    EXPECT_TRUE(seen);
}

TEST_F(SettingsTest, KeepsItsIdentity) {
    EXPECT_EQ(settings.appName(), "App");
    EXPECT_EQ(settings.company(), "Company");
}

TEST_F(SettingsTest, ListsGroupsAndNamesInTheStoresOrder) {
    settings.setGeneric("b", "2", 1);
    settings.setGeneric("b", "1", 1);
    settings.setGeneric("\xC3\xA4", "1", 1);
    EXPECT_THAT(settings.allGroups(), ElementsAre(FastString("\xC3\xA4"), FastString("b")));
    EXPECT_THAT(settings.allValuesNamesOfGroup("b"), ElementsAre(FastString("1"), FastString("2")));
}

TEST_F(SettingsTest, AnUnknownGroupHasNoNamesAndIsNotMade) {
    EXPECT_TRUE(settings.allValuesNamesOfGroup("G").empty());
    EXPECT_TRUE(settings.allGroups().empty());
    EXPECT_EQ(changes, 0);
}

TEST(SettingsIdentityTest, AnEmptyCompanyIsAssertedAndTheSettingsStillWork) {
    LogCapture log;
    MemorySettings settings("App", "");
    EXPECT_THAT(log.lines(), ElementsAre(assertionLine("src/Core/Settings", 12,
                                                       "!_appName.empty() && !_company.empty()")));
    EXPECT_EQ(settings.getInt("G", "K", 5), 5);
}

TEST(SettingsIdentityTest, TwoEmptyNamesAreAssertedOnce) {
    LogCapture log;
    const MemorySettings settings("", "");
    EXPECT_EQ(log.lines().size(), 1U);
}

}  // namespace
}  // namespace tav::ula
