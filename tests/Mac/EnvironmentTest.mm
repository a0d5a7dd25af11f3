// SPDX-License-Identifier: MIT
// Language and country by the process's own variables, the system's version by doubles of the
// platform's calls.
#include "ula/Environment.h"

#include "tests/support/ChildProcess.h"

#include <CoreServices/CoreServices.h>
#import <Foundation/Foundation.h>
#include <cstdlib>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <optional>
#include <pwd.h>
#include <unistd.h>

namespace {

/// What the platform is to answer; a number that is missing fails.
struct Platform {
    std::map<OSType, SInt32> numbers;
    std::optional<NSArray*> localizations;  ///< instead of the platform's own choice
    bool isAskedWithPreferences = false;
};

Platform* platform = nullptr;

}  // namespace

// Found before the framework's own.
OSErr Gestalt(OSType selector, SInt32* response) {
    const auto found = platform->numbers.find(selector);
    if (found == platform->numbers.end())
        return gestaltUndefSelectorErr;
    *response = found->second;
    return noErr;
}

CFArrayRef CFBundleCopyLocalizationsForPreferences(CFArrayRef available, CFArrayRef preferences) {
    platform->isAskedWithPreferences = preferences != nullptr;
    if (platform->localizations)
        return reinterpret_cast<CFArrayRef>([*platform->localizations retain]);
    // The user's best language, where there is a locale of that name.
    auto* const locales = reinterpret_cast<NSArray*>(const_cast<__CFArray*>(available));
    NSString* const best =
        [[[NSLocale preferredLanguages] objectAtIndex:0] stringByReplacingOccurrencesOfString:@"-"
                                                                                   withString:@"_"];
    NSArray* const chosen = [locales containsObject:best] ? @[ best ] : @[];
    return reinterpret_cast<CFArrayRef>([chosen retain]);
}

namespace tav::ula {
namespace {

class EnvironmentTest : public testing::Test {
protected:
    EnvironmentTest() {
        platform = &_platform;
        for (const char* name : {"LC_ALL", "LC_MESSAGES", "LC_MONETARY", "LANG", "LANGUAGE"})
            unsetenv(name);
    }
    ~EnvironmentTest() override {
        platform = nullptr;
        [_pool release];
    }
    void set(const char* name, const char* value) { setenv(name, value, 1); }
    std::string versionWith(const std::map<OSType, SInt32>& numbers) {
        _platform.numbers = numbers;
        return Environment::getOSVersion();
    }

    Platform _platform;

private:
    NSAutoreleasePool* _pool = [NSAutoreleasePool new];
};

TEST_F(EnvironmentTest, LanguageIsTheFirstLocalizationForTheUsersPreferences) {
    _platform.localizations = @[ @"pt_BR", @"pt", @"en" ];
    EXPECT_EQ(Environment::getOSLanguageISO3166(), "pt_BR");
    EXPECT_FALSE(_platform.isAskedWithPreferences);
}

TEST_F(EnvironmentTest, LanguageIsEnglishWithoutALocalization) {
    _platform.localizations = @[];
    EXPECT_EQ(Environment::getOSLanguageISO3166(), "en");
    _platform.localizations = static_cast<NSArray*>(nil);
    EXPECT_EQ(Environment::getOSLanguageISO3166(), "en");
}

TEST_F(EnvironmentTest, LanguageIsOneOfTheSystemsLocales) {
    set("LANG", "de_DE.UTF-8");
    EXPECT_EQ(Environment::getOSLanguageISO3166(), "de");
    set("LANGUAGE", "en_GB:de");
    EXPECT_EQ(Environment::getOSLanguageISO3166(), "en_GB");
}

TEST_F(EnvironmentTest, NameOfTheLanguageEndsAtTheFirstBlank) {
    set("LANG", "en_US.UTF-8");
    EXPECT_EQ(Environment::getOSLanguage(), "English");
    set("LANG", "de_AT.UTF-8");
    EXPECT_EQ(Environment::getOSLanguage(), "Deutsch");
    set("LANG", "pt_BR.UTF-8");
    EXPECT_EQ(Environment::getOSLanguage(), "portugu\u00eas");
}

TEST_F(EnvironmentTest, CountryIsThatOfTheFormats) {
    set("LANG", "en_US.UTF-8");
    EXPECT_EQ(Environment::getOSCountryISO3166(), "US");
    set("LC_MONETARY", "de_CH.UTF-8");
    EXPECT_EQ(Environment::getOSCountryISO3166(), "CH");
}

TEST_F(EnvironmentTest, CountryIsEmptyWhereTheLocaleHasNone) {
    set("LANG", "eo");
    EXPECT_EQ(Environment::getOSCountryISO3166(), "");
}

TEST_F(EnvironmentTest, NameOfTheCountryIsThatOfThePreferredLanguageAndNotSplit) {
    set("LANG", "en_US.UTF-8");
    EXPECT_EQ(Environment::getOSCountry(), "English");
    set("LANGUAGE", "de");
    EXPECT_EQ(Environment::getOSCountry(), "German");
    set("LANGUAGE", "pt_PT");
    EXPECT_EQ(Environment::getOSCountry(), "Portuguese (Portugal)");
    set("LANG", "de_DE.UTF-8");
    set("LANGUAGE", "fr");
    EXPECT_EQ(Environment::getOSCountry(), "Franz\u00f6sisch");
}

TEST_F(EnvironmentTest, WithoutALocaleIsEnglish) {
    EXPECT_EQ(Environment::getOSLanguageISO3166(), "en");
    EXPECT_EQ(Environment::getOSLanguage(), "English");
    EXPECT_EQ(Environment::getOSCountryISO3166(), "US");
    EXPECT_EQ(Environment::getOSCountry(), "English");
}

TEST_F(EnvironmentTest, LocaleThatNamesNothingIsNone) {
    set("LC_ALL", "garbage////");
    EXPECT_EQ(Environment::getOSLanguageISO3166(), "en");
    EXPECT_EQ(Environment::getOSLanguage(), "English");
}

TEST_F(EnvironmentTest, VersionUpTo10_3_15IsUnpacked) {
    EXPECT_EQ(versionWith({{gestaltSystemVersion, 4153}}), "10.3.9");
    EXPECT_EQ(versionWith({{gestaltSystemVersion, 0x103F}}), "10.3.15");
    EXPECT_EQ(versionWith({{gestaltSystemVersion, 0x0900}}), "9.0.0");
    EXPECT_EQ(versionWith({{gestaltSystemVersion, 0}}), "0.0.0");
}

TEST_F(EnvironmentTest, LaterVersionIsAskedForNumberByNumber) {
    EXPECT_EQ(versionWith({{gestaltSystemVersion, 0x1040},
                           {gestaltSystemVersionMajor, 22},
                           {gestaltSystemVersionMinor, 10},
                           {gestaltSystemVersionBugFix, 104}}),
              "22.10.104");
}

TEST_F(EnvironmentTest, NumberOfALaterVersionThatFailsIs0) {
    EXPECT_EQ(versionWith({{gestaltSystemVersion, 0x1068}}), "0.0.0");
    EXPECT_EQ(versionWith({{gestaltSystemVersion, 0x1068}, {gestaltSystemVersionMinor, 6}}),
              "0.6.0");
}

TEST_F(EnvironmentTest, VersionThatFailsIs0WhateverTheNumbersAre) {
    EXPECT_EQ(versionWith({{gestaltSystemVersionMajor, 22}}), "0.0.0");
}

TEST_F(EnvironmentTest, ConstantsAreConstant) {
    EXPECT_EQ(Environment::getOSVersionNumber(), 0u);
    EXPECT_TRUE(Environment::getOSis64bit());
    const std::unique_ptr<Environment> environment(Environment::create());
    EXPECT_NE(environment, nullptr);
}

TEST_F(EnvironmentTest, UserNameIsTheLoginName) {
    const passwd* const entry = getpwuid(geteuid());
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(Environment::getUserName(), entry->pw_name);
}

TEST_F(EnvironmentTest, UserWithoutAPasswordEntryHasTheNameOfTheEnvironmentOrANumber) {
    const auto nameOfUnknownUser = [] {
        return test::runInChild(
            [] { return setuid(3'999'999) == 0 ? Environment::getUserName() : "no such user"; });
    };
    unsetenv("USER");
    set("LOGNAME", "somebody");
    EXPECT_EQ(nameOfUnknownUser(), "somebody");
    unsetenv("LOGNAME");
    EXPECT_EQ(nameOfUnknownUser(), "3999999");
}

TEST_F(EnvironmentTest, WithoutAHomeEverythingIsAnswered) {
    set("LANG", "de_AT.UTF-8");
    const std::string answers = test::runInChild([] {
        unsetenv("HOME");
        return setuid(3'999'999) != 0
                   ? "no such user"
                   : Environment::getOSLanguage() + ' ' + Environment::getOSCountryISO3166() + ' ' +
                         Environment::getOSCountry();
    });
    EXPECT_EQ(answers, "Deutsch AT Deutsch (\u00d6sterreich)");
}

}  // namespace
}  // namespace tav::ula
