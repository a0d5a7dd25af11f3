// SPDX-License-Identifier: MIT
#include "ula/SettingsBase.h"

#include "tests/support/LogCapture.h"

#include <bit>
#include <gmock/gmock.h>
#include <limits>
#include <thread>

namespace tav::ula {
namespace {

using Setting = SettingsBase::Setting;
using test::assertionLine;
using test::LogCapture;
using testing::ElementsAre;

constexpr const char* kNamesCondition = "!groupName.empty() && !key.empty()";

TEST(SettingsBaseTest, AMissingIntGivesTheDefaultAndStoresIt) {
    SettingsBase settings;
    EXPECT_EQ(settings.getInt("G", "K", 3), 3);
    ASSERT_TRUE(settings.containsValue("G", "K"));
    const auto& group = settings.getAllSettings().at("G");
    EXPECT_EQ(group.size(), 1U);
    EXPECT_EQ(group.at("K").type(), SETTINGSTYPE_INT);
    EXPECT_EQ(group.at("K").asInt(), 3);
}

TEST(SettingsBaseTest, EachTypeIsStoredAndReadBack) {
    SettingsBase settings;
    settings.setGeneric("G", "int", Setting(-7));
    settings.setGeneric("G", "bool", Setting(true));
    settings.setGeneric("G", "double", Setting(0.1));
    settings.setGeneric("G", "string", Setting("text"));
    settings.setGeneric("G", "array", Setting(std::vector<FastString>{"a", ""}));
    EXPECT_EQ(settings.getInt("G", "int", 0), -7);
    EXPECT_EQ(settings.getBool("G", "bool", false), true);
    EXPECT_EQ(settings.getDouble("G", "double", 0), 0.1);
    EXPECT_EQ(settings.getString("G", "string", ""), "text");
    EXPECT_THAT(settings.getStringArray("G", "array", {}),
                ElementsAre(FastString("a"), FastString("")));
}

TEST(SettingsBaseTest, AValueOfAnotherTypeIsReplacedByTheDefault) {
    SettingsBase settings;
    settings.setGeneric("G", "K", Setting(1));
    EXPECT_FALSE(settings.getBool("G", "K", false));
    EXPECT_EQ(settings.getAllSettings().at("G").at("K").type(), SETTINGSTYPE_BOOL);
    EXPECT_FALSE(settings.getAllSettings().at("G").at("K").asBool());
}

TEST(SettingsBaseTest, GetWithADefaultOfAnotherTypeRefersToTheCallersRecord) {
    SettingsBase settings;
    settings.setGeneric("G", "K", Setting(1));
    const Setting fallback("text");
    EXPECT_EQ(&settings.get("G", "K", fallback), &fallback);
    EXPECT_EQ(settings.getAllSettings().at("G").at("K"), fallback);
}

TEST(SettingsBaseTest, GetOfAPresentValueRefersToTheStoredRecord) {
    SettingsBase settings;
    settings.setGeneric("G", "K", Setting(1));
    const Setting fallback(2);
    EXPECT_EQ(&settings.get("G", "K", fallback), &settings.getAllSettings().at("G").at("K"));
}

TEST(SettingsBaseTest, AReferenceStaysValidWhileOtherKeysAreAdded) {
    SettingsBase settings;
    settings.setGeneric("G", "K", Setting(1));
    const Setting& stored = settings.get("G", "K", Setting(0));
    for (int i = 0; i < 10'000; ++i)
        settings.setGeneric("G", FastString(std::to_string(i)), Setting(i));
    EXPECT_EQ(&settings.get("G", "K", Setting(0)), &stored);
    EXPECT_EQ(stored.asInt(), 1);
}

TEST(SettingsBaseTest, SetGenericReplacesAValueOfAnotherTypeWithoutComplaint) {
    LogCapture log;
    SettingsBase settings;
    settings.setGeneric("G", "K", Setting("text"));
    settings.setGeneric("G", "K", Setting(2.5));
    EXPECT_EQ(settings.getAllSettings().at("G").at("K"), Setting(2.5));
    EXPECT_TRUE(log.lines().empty());
}

TEST(SettingsBaseTest, NamesThatBeginOutsideAsciiComeFirstAndAPrefixBeforeTheLongerName) {
    SettingsBase settings;
    for (const char* name : {"B", "A", "AA", "\xC3\x84", "\xE5\x86\x99", "a"})
        settings.setGeneric(name, "K", Setting(1));
    std::vector<FastString> names;
    for (const auto& [name, keys] : settings.getAllSettings())
        names.push_back(name);
    EXPECT_THAT(names,
                ElementsAre(FastString("\xC3\x84"), FastString("\xE5\x86\x99"), FastString("A"),
                            FastString("AA"), FastString("B"), FastString("a")));
}

TEST(SettingsBaseTest, NamesAreCaseSensitive) {
    SettingsBase settings;
    settings.setGeneric("G", "K", Setting(1));
    EXPECT_FALSE(settings.containsValue("g", "K"));
    EXPECT_FALSE(settings.containsValue("G", "k"));
}

TEST(SettingsBaseTest, AnEmptyGroupNameIsAssertedByTheGetterAndTheStoreAndUsed) {
    LogCapture log;
    SettingsBase settings;
    EXPECT_EQ(settings.getInt("", "K", 4), 4);
    EXPECT_THAT(log.lines(),
                ElementsAre(assertionLine("src/Core/SettingsBase", 51, kNamesCondition),
                            assertionLine("src/Core/SettingsBase", 15, kNamesCondition)));
    EXPECT_TRUE(settings.containsValue("", "K"));
}

TEST(SettingsBaseTest, AnEmptyKeyIsAssertedByEveryGetter) {
    SettingsBase settings;
    settings.setGeneric("G", "", Setting(1));
    const auto line = assertionLine("src/Core/SettingsBase", 51, kNamesCondition);
    LogCapture log;
    settings.getInt("G", "", 1);
    EXPECT_THAT(log.lines(), ElementsAre(line));
    settings.getBool("G", "", true);
    settings.getDouble("G", "", 1);
    settings.getString("G", "", "");
    settings.getStringArray("G", "", {});
    settings.get("G", "", Setting(1));
    EXPECT_EQ(std::ranges::count(log.lines(), line), 6);
}

TEST(SettingsBaseTest, SetGenericWithEmptyNamesIsAssertedOnceAndStores) {
    LogCapture log;
    SettingsBase settings;
    settings.setGeneric("", "", Setting(1));
    EXPECT_THAT(log.lines(),
                ElementsAre(assertionLine("src/Core/SettingsBase", 15, kNamesCondition)));
    EXPECT_TRUE(settings.containsValue("", ""));
}

TEST(SettingsBaseTest, ContainsValueAssertsAndStoresNothing) {
    LogCapture log;
    SettingsBase settings;
    EXPECT_FALSE(settings.containsValue("", ""));
    EXPECT_TRUE(log.lines().empty());
    EXPECT_TRUE(settings.getAllSettings().empty());
}

TEST(SettingsBaseTest, AnEmptyDefaultArrayIsStoredWithoutElements) {
    SettingsBase settings;
    EXPECT_TRUE(settings.getStringArray("G", "K", {}).empty());
    EXPECT_EQ(settings.getAllSettings().at("G").at("K").type(), SETTINGSTYPE_STRING_ARRAY);
    EXPECT_TRUE(settings.getAllSettings().at("G").at("K").asStringArray().empty());
}

TEST(SettingsBaseTest, AccessorsOfAnotherTypeAreAssertedAndReturn) {
    const Setting number(1);
    const Setting text("t");
    LogCapture log;
    text.asInt();
    text.asBool();
    text.asDouble();
    EXPECT_EQ(number.asString(), "");
    EXPECT_TRUE(number.asStringArray().empty());
    const std::string source = "src/Core/../../SettingsBase";
    EXPECT_THAT(log.lines(),
                ElementsAre(assertionLine(source, 50, "_type == SETTINGSTYPE_INT"),
                            assertionLine(source, 51, "_type == SETTINGSTYPE_BOOL"),
                            assertionLine(source, 52, "_type == SETTINGSTYPE_DOUBLE"),
                            assertionLine(source, 53, "_type == SETTINGSTYPE_STRING"),
                            assertionLine(source, 54, "_type == SETTINGSTYPE_STRING_ARRAY")));
}

TEST(SettingsBaseTest, ADefaultMadeSettingIsInvalidAndEmpty) {
    LogCapture log;
    const Setting setting;
    EXPECT_EQ(setting.type(), SETTINGSTYPE_INVALID);
    EXPECT_TRUE(setting.asString().empty());
    EXPECT_TRUE(setting.asStringArray().empty());
}

TEST(SettingsBaseTest, TheTypesHaveTheirFixedNumbers) {
    EXPECT_EQ(sizeof(SettingsType), 4U);
    EXPECT_THAT((std::vector<unsigned>{SETTINGSTYPE_INVALID, SETTINGSTYPE_INT, SETTINGSTYPE_BOOL,
                                       SETTINGSTYPE_DOUBLE, SETTINGSTYPE_STRING,
                                       SETTINGSTYPE_STRING_ARRAY}),
                ElementsAre(0, 1, 2, 3, 4, 5));
}

TEST(SettingsBaseTest, DoublesAreEqualByTheirBits) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(Setting(nan), Setting(nan));
    EXPECT_FALSE(Setting(0.0) == Setting(-0.0));
    EXPECT_FALSE(Setting(1) == Setting(1.0));
}

TEST(SettingsBaseTest, AStringOutlivesTheStoreAndGoesToAnotherThread) {
    FastString text;
    {
        SettingsBase settings;
        settings.setGeneric("G", "K", Setting("handed on"));
        text = settings.getString("G", "K", "");
    }
    std::string seen;
    std::thread([&seen, text] { seen = text.toStdString(); }).join();
    EXPECT_EQ(seen, "handed on");
}

}  // namespace
}  // namespace tav::ula
