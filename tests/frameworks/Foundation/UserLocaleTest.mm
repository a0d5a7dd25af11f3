// SPDX-License-Identifier: MIT
#include "Foundation/UserLocale.h"

#include <CoreFoundation/CoreFoundation.h>
#import <Foundation/Foundation.h>

#include <cstdlib>
#include <gmock/gmock.h>
#include <map>

namespace {

using testing::ElementsAre;
using Variables = std::map<std::string, std::string>;

foundation::Variable in(const Variables& variables) {
    return [variables](const char* name) {
        const auto found = variables.find(name);
        return found == variables.end() ? std::string() : found->second;
    };
}

std::string identifier(const Variables& variables) {
    return foundation::localeIdentifier(in(variables));
}

std::vector<std::string> languages(const Variables& variables) {
    return foundation::preferredLanguages(in(variables));
}

TEST(LocaleIdentifier, IsThatOfLang) {
    EXPECT_EQ(identifier({{"LANG", "de_DE.UTF-8"}}), "de_DE");
    EXPECT_EQ(identifier({{"LANG", "de"}}), "de");
    EXPECT_EQ(identifier({{"LANG", "es_419"}}), "es");
    EXPECT_EQ(identifier({{"LANG", "de_DE@euro"}}), "de_DE");
}

TEST(LocaleIdentifier, HasTheAlphabet) {
    EXPECT_EQ(identifier({{"LANG", "sr_RS@latin"}}), "sr_Latn_RS");
    EXPECT_EQ(identifier({{"LANG", "uz_UZ.UTF-8@cyrillic"}}), "uz_Cyrl_UZ");
}

TEST(LocaleIdentifier, OfAllCategoriesComesBeforeThatOfOneAndOfLang) {
    EXPECT_EQ(identifier({{"LANG", "de_DE"}, {"LC_MESSAGES", "fr_FR"}, {"LC_ALL", "it_IT"}}),
              "it_IT");
}

TEST(LocaleIdentifier, TakesTheRegionFromTheFormats) {
    EXPECT_EQ(identifier({{"LANG", "en_US.UTF-8"}, {"LC_MONETARY", "de_CH.UTF-8"}}), "en_CH");
    EXPECT_EQ(identifier({{"LANG", "en_US"}, {"LC_TIME", "en_DK"}}), "en_US");
    EXPECT_EQ(identifier({{"LANG", "de_DE"}, {"LC_MESSAGES", "C"}}), "en_DE");
    EXPECT_EQ(identifier({{"LANG", "de_AT"}, {"LC_MONETARY", "C"}}), "de_AT");
}

TEST(LocaleIdentifier, WithoutALocaleIsTheProgrammersEnglish) {
    for (const char* none : {"", "C", "C.UTF-8", "POSIX", "garbage////", "xx_YY", "_DE"})
        EXPECT_EQ(identifier({{"LANG", none}}), "en_US_POSIX") << none;
    EXPECT_EQ(identifier({}), "en_US_POSIX");
}

TEST(LocaleIdentifier, OverlooksEmptyVariables) {
    EXPECT_EQ(identifier({{"LC_ALL", ""}, {"LC_MESSAGES", ""}, {"LANG", "nl_BE"}}), "nl_BE");
}

TEST(LocaleIdentifier, OfALocaleThatNamesNothingIsNotLookedForElsewhere) {
    EXPECT_EQ(identifier({{"LC_ALL", "nonsense"}, {"LANG", "nl_BE"}}), "en_US_POSIX");
}

TEST(PreferredLanguages, AreThoseOfTheListThenThatOfTheMessages) {
    EXPECT_THAT(languages({{"LANG", "de_DE.UTF-8"}, {"LANGUAGE", "fr_CA:pt_BR:de"}}),
                ElementsAre("fr-CA", "pt", "de"));
    EXPECT_THAT(languages({{"LANG", "it_IT"}, {"LANGUAGE", "::C:fr:"}}), ElementsAre("fr", "it"));
}

TEST(PreferredLanguages, TellTheRegionThatTheLanguageDoesNotImply) {
    EXPECT_THAT(languages({{"LANG", "de_DE"}}), ElementsAre("de"));
    EXPECT_THAT(languages({{"LANG", "en_GB"}}), ElementsAre("en-GB"));
    EXPECT_THAT(languages({{"LANG", "zh_TW"}}), ElementsAre("zh-TW"));
    EXPECT_THAT(languages({{"LANG", "sr_RS@latin"}}), ElementsAre("sr-Latn"));
}

TEST(PreferredLanguages, WithoutALocaleAreEnglishWhateverTheListSays) {
    EXPECT_THAT(languages({}), ElementsAre("en"));
    EXPECT_THAT(languages({{"LANGUAGE", "de"}}), ElementsAre("en"));
    EXPECT_THAT(languages({{"LC_ALL", "C"}, {"LANG", "de_DE"}, {"LANGUAGE", "de"}}),
                ElementsAre("en"));
}

/// The variables of this process, empty but for those that a test sets.
class CurrentLocale : public testing::Test {
protected:
    CurrentLocale() {
        for (const char* name : {"LC_ALL", "LC_MESSAGES", "LC_MONETARY", "LANG", "LANGUAGE"})
            unsetenv(name);
    }
    ~CurrentLocale() override { [_pool release]; }

private:
    NSAutoreleasePool* _pool = [NSAutoreleasePool new];
};

std::string current() {
    return [[[NSLocale currentLocale] localeIdentifier] UTF8String];
}

TEST_F(CurrentLocale, FollowsTheEnvironment) {
    EXPECT_EQ(current(), "en_US_POSIX");
    setenv("LANG", "de_AT.UTF-8", 1);
    EXPECT_EQ(current(), "de_AT");
    setenv("LC_MONETARY", "de_DE.UTF-8", 1);
    EXPECT_EQ(current(), "de_DE");
}

TEST_F(CurrentLocale, KnowsLanguageAndCountryAndTheirNames) {
    setenv("LANG", "de_AT.UTF-8", 1);
    NSLocale* const locale = [NSLocale currentLocale];
    EXPECT_TRUE([[locale objectForKey:NSLocaleLanguageCode] isEqual:@"de"]);
    EXPECT_TRUE([[locale objectForKey:NSLocaleCountryCode] isEqual:@"AT"]);
    EXPECT_STREQ([[locale displayNameForKey:NSLocaleIdentifier value:@"en"] UTF8String],
                 "Englisch");
}

TEST_F(CurrentLocale, HasThePreferredLanguagesOfTheEnvironment) {
    setenv("LANG", "de_AT.UTF-8", 1);
    setenv("LANGUAGE", "fr", 1);
    EXPECT_TRUE([[NSLocale preferredLanguages] isEqual:(@[ @"fr", @"de-AT" ])]);
}

TEST_F(CurrentLocale, ThatIsNoneOfTheSystemsLeavesEnglishToChoose) {
    setenv("LANG", "tlh", 1);
    CFArrayRef available = CFLocaleCopyAvailableLocaleIdentifiers();
    CFArrayRef chosen = CFBundleCopyLocalizationsForPreferences(available, nullptr);
    EXPECT_TRUE([reinterpret_cast<NSString*>(const_cast<void*>(CFArrayGetValueAtIndex(chosen, 0)))
        isEqual:@"en"]);
    CFRelease(chosen);
    CFRelease(available);
}

}  // namespace
