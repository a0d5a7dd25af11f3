// SPDX-License-Identifier: MIT
// Values and their ownership, and that they are GNUstep's objects.
#import <Foundation/Foundation.h>

#include <CoreFoundation/CoreFoundation.h>
#include <cmath>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace {

class CoreFoundation : public testing::Test {
protected:
    CoreFoundation() : _pool([[NSAutoreleasePool alloc] init]) {}
    ~CoreFoundation() override { [_pool release]; }

    NSAutoreleasePool* _pool;
};

CFStringRef made(const char* text) {
    return CFStringCreateWithCString(kCFAllocatorDefault, text, kCFStringEncodingUTF8);
}

std::string textOf(CFStringRef string) {
    char buffer[512] = "";
    EXPECT_TRUE(CFStringGetCString(string, buffer, sizeof buffer, kCFStringEncodingUTF8));
    return buffer;
}

std::string takenText(CFStringRef string) {
    if (string == nullptr)
        return "(null)";
    std::string text = textOf(string);
    CFRelease(string);
    return text;
}

CFArrayRef arrayOf(NSArray* array) {
    return reinterpret_cast<CFArrayRef>(array);
}

}  // namespace

TEST_F(CoreFoundation, WhatIsCreatedBelongsToTheCaller) {
    CFStringRef string = made("caf\xc3\xa9 ownership");
    EXPECT_EQ(CFGetRetainCount(string), 1);
    EXPECT_EQ(CFRetain(string), string);
    EXPECT_EQ(CFGetRetainCount(string), 2);
    CFRelease(string);
    EXPECT_EQ(CFGetRetainCount(string), 1);
    CFRelease(string);
}

TEST_F(CoreFoundation, AStringIsAnNSString) {
    CFStringRef string = made("h\xc3\xa9llo");
    EXPECT_TRUE([reinterpret_cast<NSString*>(const_cast<__CFString*>(string))
        isEqualToString:[NSString stringWithUTF8String:"h\xc3\xa9llo"]]);
    EXPECT_EQ(CFStringGetLength(string), 5);
    EXPECT_EQ(CFStringGetCharacterAtIndex(string, 1), 0xE9);
    CFRelease(string);
}

TEST_F(CoreFoundation, AStringOfInvalidBytesIsNotMade) {
    EXPECT_EQ(made("\xff\xfe"), nullptr);
    EXPECT_EQ(made(nullptr), nullptr);
    EXPECT_EQ(CFStringCreateWithCString(kCFAllocatorDefault, "a", 0x7fff), nullptr);
}

TEST_F(CoreFoundation, ATextThatDoesNotFitIsNotGiven) {
    CFStringRef string = made("four");
    char buffer[5];
    EXPECT_FALSE(CFStringGetCString(string, buffer, 4, kCFStringEncodingUTF8));
    EXPECT_TRUE(CFStringGetCString(string, buffer, 5, kCFStringEncodingUTF8));
    EXPECT_STREQ(buffer, "four");
    CFRelease(string);
}

TEST_F(CoreFoundation, ATextWithoutAFormInTheEncodingIsNotGiven) {
    char buffer[16];
    EXPECT_FALSE(
        CFStringGetCString(CFSTR("\u20ac"), buffer, sizeof buffer, kCFStringEncodingASCII));
}

TEST_F(CoreFoundation, StringsCompareByTheirText) {
    CFStringRef string = made("abc");
    EXPECT_TRUE(CFEqual(string, CFSTR("abc")));
    EXPECT_EQ(CFHash(string), CFHash(CFSTR("abc")));
    EXPECT_EQ(CFStringCompare(string, CFSTR("abd"), 0), kCFCompareLessThan);
    EXPECT_EQ(CFStringCompare(string, CFSTR("ABC"), kCFCompareCaseInsensitive), kCFCompareEqualTo);
    EXPECT_TRUE(CFStringHasPrefix(string, CFSTR("ab")));
    EXPECT_TRUE(CFStringHasPrefix(string, CFSTR("")));
    EXPECT_TRUE(CFStringHasSuffix(string, CFSTR("bc")));
    EXPECT_FALSE(CFStringHasSuffix(string, CFSTR("ab")));
    CFRelease(string);
}

TEST_F(CoreFoundation, AConstantStringIsOneObjectPerText) {
    EXPECT_EQ(__CFStringMakeConstantString("constant"), __CFStringMakeConstantString("constant"));
    EXPECT_TRUE(CFEqual(__CFStringMakeConstantString("constant"), CFSTR("constant")));
}

TEST_F(CoreFoundation, AnArrayRetainsItsObjects) {
    CFStringRef string = made("a string that is held by an array");
    const void* values[] = {string, string};
    CFArrayRef array = CFArrayCreate(kCFAllocatorDefault, values, 2, &kCFTypeArrayCallBacks);
    EXPECT_EQ(CFGetRetainCount(string), 3);
    EXPECT_EQ(CFArrayGetCount(array), 2);
    EXPECT_EQ(CFArrayGetValueAtIndex(array, 1), string);
    EXPECT_EQ([reinterpret_cast<NSArray*>(const_cast<__CFArray*>(array)) count], 2U);
    CFRelease(array);
    EXPECT_EQ(CFGetRetainCount(string), 1);
    CFRelease(string);
}

TEST_F(CoreFoundation, AnArrayWithoutCallBacksKeepsValuesAsTheyAre) {
    int one = 1;
    int two = 2;
    const void* values[] = {&one, &two};
    CFArrayRef array = CFArrayCreate(kCFAllocatorDefault, values, 2, nullptr);
    CFArrayRef copy = CFArrayCreateCopy(kCFAllocatorDefault, array);
    CFRelease(array);
    EXPECT_EQ(CFArrayGetValueAtIndex(copy, 1), &two);
    CFRelease(copy);
}

TEST_F(CoreFoundation, AMutableArrayGrows) {
    CFMutableArrayRef array = CFArrayCreateMutable(kCFAllocatorDefault, 0, &kCFTypeArrayCallBacks);
    CFArrayAppendValue(array, CFSTR("one"));
    EXPECT_TRUE(CFArrayContainsValue(array, CFRangeMake(0, 1), CFSTR("one")));
    EXPECT_FALSE(CFArrayContainsValue(array, CFRangeMake(0, 0), CFSTR("one")));
    CFRelease(array);
}

TEST_F(CoreFoundation, ADictionaryFindsByText) {
    const void* keys[] = {CFSTR("key"), CFSTR("other"), CFSTR("key")};
    const void* values[] = {CFSTR("first"), kCFBooleanTrue, CFSTR("second")};
    CFDictionaryRef dictionary =
        CFDictionaryCreate(kCFAllocatorDefault, keys, values, 3, &kCFTypeDictionaryKeyCallBacks,
                           &kCFTypeDictionaryValueCallBacks);
    EXPECT_EQ(CFDictionaryGetCount(dictionary), 2);
    CFStringRef key = made("key");
    EXPECT_TRUE(CFEqual(CFDictionaryGetValue(dictionary, key), CFSTR("first")));
    CFRelease(key);
    const void* found = nullptr;
    EXPECT_TRUE(CFDictionaryGetValueIfPresent(dictionary, CFSTR("other"), &found));
    EXPECT_EQ(found, kCFBooleanTrue);
    EXPECT_FALSE(CFDictionaryGetValueIfPresent(dictionary, CFSTR("absent"), &found));
    EXPECT_FALSE(CFDictionaryContainsKey(dictionary, CFSTR("absent")));
    CFRelease(dictionary);
}

TEST_F(CoreFoundation, AMutableDictionaryChanges) {
    CFMutableDictionaryRef dictionary =
        CFDictionaryCreateMutable(kCFAllocatorDefault, 0, &kCFCopyStringDictionaryKeyCallBacks,
                                  &kCFTypeDictionaryValueCallBacks);
    CFDictionarySetValue(dictionary, CFSTR("key"), CFSTR("one"));
    CFDictionaryAddValue(dictionary, CFSTR("key"), CFSTR("two"));
    const void* keys[1];
    const void* values[1];
    CFDictionaryGetKeysAndValues(dictionary, keys, values);
    EXPECT_TRUE(CFEqual(keys[0], CFSTR("key")));
    EXPECT_TRUE(CFEqual(values[0], CFSTR("one")));
    CFDictionaryRemoveValue(dictionary, CFSTR("key"));
    EXPECT_EQ(CFDictionaryGetCount(dictionary), 0);
    CFRelease(dictionary);
}

TEST_F(CoreFoundation, TruthValuesAreTheObjectsOfNSNumber) {
    EXPECT_EQ(static_cast<const void*>(kCFBooleanTrue), [NSNumber numberWithBool:YES]);
    EXPECT_EQ(static_cast<const void*>(kCFBooleanFalse), [NSNumber numberWithBool:NO]);
    EXPECT_TRUE(CFBooleanGetValue(kCFBooleanTrue));
    EXPECT_FALSE(CFBooleanGetValue(kCFBooleanFalse));
}

TEST_F(CoreFoundation, NumbersConvertAndTellWhetherTheyFit) {
    long long big = 1LL << 40;
    CFNumberRef number = CFNumberCreate(kCFAllocatorDefault, kCFNumberLongLongType, &big);
    long long back = 0;
    int narrow = 0;
    double real = 0;
    EXPECT_TRUE(CFNumberGetValue(number, kCFNumberSInt64Type, &back));
    EXPECT_EQ(back, big);
    EXPECT_FALSE(CFNumberGetValue(number, kCFNumberIntType, &narrow));
    EXPECT_TRUE(CFNumberGetValue(number, kCFNumberDoubleType, &real));
    EXPECT_EQ(real, 1099511627776.0);
    EXPECT_FALSE(CFNumberGetValue(number, 99, &narrow));
    CFRelease(number);
}

TEST_F(CoreFoundation, AnUnsignedNumberAboveAllSignedOnesIsNotTakenForANegativeOne) {
    NSNumber* const largest = [NSNumber numberWithUnsignedLongLong:UINT64_MAX - 1];
    CFNumberRef number = reinterpret_cast<CFNumberRef>(largest);
    long long whole = 0;
    EXPECT_FALSE(CFNumberGetValue(number, kCFNumberSInt64Type, &whole));
    EXPECT_EQ(whole, INT64_MAX);
    short narrow = 0;
    EXPECT_FALSE(CFNumberGetValue(number, kCFNumberShortType, &narrow));
    EXPECT_EQ(narrow, INT16_MAX);
    double real = 0;
    EXPECT_FALSE(CFNumberGetValue(number, kCFNumberDoubleType, &real));
    EXPECT_EQ(real, 0x1p64);
    number = reinterpret_cast<CFNumberRef>([NSNumber numberWithUnsignedLong:1UL << 63]);
    EXPECT_TRUE(CFNumberGetValue(number, kCFNumberDoubleType, &real));
    EXPECT_EQ(real, 0x1p63);
    number = reinterpret_cast<CFNumberRef>([NSNumber numberWithUnsignedLongLong:INT64_MAX]);
    EXPECT_TRUE(CFNumberGetValue(number, kCFNumberSInt64Type, &whole));
    EXPECT_EQ(whole, INT64_MAX);
}

TEST_F(CoreFoundation, ARealNumberHasNoExactInteger) {
    double half = 1.5;
    CFNumberRef number = CFNumberCreate(kCFAllocatorDefault, kCFNumberDoubleType, &half);
    int whole = 0;
    EXPECT_FALSE(CFNumberGetValue(number, kCFNumberIntType, &whole));
    EXPECT_EQ(whole, 1);
    CFRelease(number);
    double huge = INFINITY;
    number = CFNumberCreate(kCFAllocatorDefault, kCFNumberDoubleType, &huge);
    EXPECT_FALSE(CFNumberGetValue(number, kCFNumberIntType, &whole));
    EXPECT_EQ(whole, INT32_MAX);
    CFRelease(number);
}

TEST_F(CoreFoundation, AFileUrlGivesItsPathBack) {
    CFURLRef url = CFURLCreateWithFileSystemPath(kCFAllocatorDefault, CFSTR("/tmp/a folder"),
                                                 kCFURLPOSIXPathStyle, true);
    EXPECT_EQ(textOf(CFURLGetString(url)), "file:///tmp/a%20folder/");
    EXPECT_TRUE(CFURLHasDirectoryPath(url));
    EXPECT_EQ(takenText(CFURLCopyFileSystemPath(url, kCFURLPOSIXPathStyle)), "/tmp/a folder");
    EXPECT_EQ(takenText(CFURLCopyLastPathComponent(url)), "a folder");
    EXPECT_EQ(CFURLCopyFileSystemPath(url, 1), nullptr);
    CFRelease(url);
}

TEST_F(CoreFoundation, TheRootKeepsItsSlash) {
    CFURLRef url =
        CFURLCreateWithFileSystemPath(kCFAllocatorDefault, CFSTR("/"), kCFURLPOSIXPathStyle, true);
    EXPECT_EQ(takenText(CFURLCopyFileSystemPath(url, kCFURLPOSIXPathStyle)), "/");
    CFRelease(url);
}

TEST_F(CoreFoundation, ANonAsciiPathGoesThroughAUrl) {
    const char* path = "/tmp/Bl\xc3\xa4tter/\xe2\x82\xac%20#?";
    CFURLRef url = CFURLCreateFromFileSystemRepresentation(
        kCFAllocatorDefault, reinterpret_cast<const UInt8*>(path),
        static_cast<CFIndex>(strlen(path)), false);
    UInt8 buffer[64];
    EXPECT_TRUE(CFURLGetFileSystemRepresentation(url, true, buffer, sizeof buffer));
    EXPECT_STREQ(reinterpret_cast<char*>(buffer), path);
    EXPECT_FALSE(CFURLGetFileSystemRepresentation(url, true, buffer, 4));
    CFRelease(url);
}

TEST_F(CoreFoundation, ARelativePathIsTakenFromTheCurrentFolder) {
    CFURLRef url = CFURLCreateWithFileSystemPath(kCFAllocatorDefault, CFSTR("some/file"),
                                                 kCFURLPOSIXPathStyle, false);
    char folder[4096];
    ASSERT_NE(getcwd(folder, sizeof folder), nullptr);
    EXPECT_EQ(takenText(CFURLCopyFileSystemPath(url, kCFURLPOSIXPathStyle)),
              std::string(folder) + "/some/file");
    CFRelease(url);
}

TEST_F(CoreFoundation, TheCurrentLocaleHasACountry) {
    CFLocaleRef locale = CFLocaleCopyCurrent();
    auto country = static_cast<CFStringRef>(CFLocaleGetValue(locale, kCFLocaleCountryCode));
    ASSERT_NE(country, nullptr);
    EXPECT_EQ(CFStringGetLength(country), 2);
    EXPECT_NE(CFLocaleGetIdentifier(locale), nullptr);
    CFRelease(locale);
}

TEST_F(CoreFoundation, ThereAreLocalesAndPreferredLanguages) {
    CFArrayRef locales = CFLocaleCopyAvailableLocaleIdentifiers();
    CFArrayRef languages = CFLocaleCopyPreferredLanguages();
    EXPECT_GT(CFArrayGetCount(locales), 100);
    EXPECT_GT(CFArrayGetCount(languages), 0);
    CFRelease(locales);
    CFRelease(languages);
}

TEST_F(CoreFoundation, ALocalizationIsChosenByThePreferences) {
    NSArray* available = @[ @"en", @"pt", @"pt_BR", @"de", @"zh-Hant" ];
    auto choice = [&](NSArray* wanted) {
        CFArrayRef chosen =
            CFBundleCopyLocalizationsForPreferences(arrayOf(available), arrayOf(wanted));
        auto* array = [reinterpret_cast<NSArray*>(const_cast<__CFArray*>(chosen)) autorelease];
        return std::string([[array componentsJoinedByString:@" "] UTF8String]);
    };
    EXPECT_EQ(choice(@[ @"de" ]), "de");
    EXPECT_EQ(choice(@[ @"fr", @"de-AT", @"en" ]), "de");
    EXPECT_EQ(choice(@[ @"pt-BR" ]), "pt_BR pt");
    EXPECT_EQ(choice(@[ @"zh_Hant_TW" ]), "zh-Hant");
    EXPECT_EQ(choice(@[ @"xx" ]), "en");
}

TEST_F(CoreFoundation, NoLocalizationsGiveNone) {
    CFArrayRef chosen = CFBundleCopyLocalizationsForPreferences(arrayOf(@[]), arrayOf(@[ @"de" ]));
    EXPECT_EQ(CFArrayGetCount(chosen), 0);
    CFRelease(chosen);
}

TEST_F(CoreFoundation, TheUsersLanguagesDecideWithoutPreferences) {
    CFArrayRef locales = CFLocaleCopyAvailableLocaleIdentifiers();
    CFArrayRef chosen = CFBundleCopyLocalizationsForPreferences(locales, nullptr);
    EXPECT_GT(CFArrayGetCount(chosen), 0);
    CFRelease(chosen);
    CFRelease(locales);
}

TEST_F(CoreFoundation, AbsoluteTimeCountsFrom2001) {
    double now = [[NSDate date] timeIntervalSinceReferenceDate];
    EXPECT_NEAR(CFAbsoluteTimeGetCurrent(), now, 1);
    EXPECT_EQ(kCFAbsoluteTimeIntervalSince1970, NSTimeIntervalSince1970);
}

TEST_F(CoreFoundation, ModeNamesAreThoseOfGNUstep) {
    EXPECT_TRUE(CFEqual(kCFRunLoopDefaultMode, NSDefaultRunLoopMode));
    EXPECT_TRUE(CFEqual(kCFRunLoopCommonModes, NSRunLoopCommonModes));
}

TEST_F(CoreFoundation, ADescriptionBelongsToTheCaller) {
    EXPECT_EQ(takenText(CFCopyDescription(CFSTR("described"))), "described");
    EXPECT_EQ(CFCopyDescription(nullptr), nullptr);
}
