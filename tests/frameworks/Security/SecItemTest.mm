// SPDX-License-Identifier: MIT
// Lists, texts and what calls make of bad arguments.
#include "tests/frameworks/Security/KeychainFixture.h"

#import <Foundation/Foundation.h>

namespace tav::test {
namespace {

class SecItemTest : public KeychainFixture {
protected:
    ~SecItemTest() override { [pool release]; }

    static std::string messageOf(OSStatus status) {
        CFStringRef text = SecCopyErrorMessageString(status, nullptr);
        std::string message =
            [reinterpret_cast<NSString*>(const_cast<__CFString*>(text)) UTF8String];
        CFRelease(text);
        return message;
    }
    static NSMutableDictionary* query() {
        NSMutableDictionary* const dictionary = [NSMutableDictionary dictionary];
        [dictionary setObject:(id)kSecClassGenericPassword forKey:(id)kSecClass];
        [dictionary setObject:(id)kSecMatchLimitAll forKey:(id)kSecMatchLimit];
        [dictionary setObject:(id)kCFBooleanTrue forKey:(id)kSecReturnAttributes];
        return dictionary;
    }
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
};

TEST_F(SecItemTest, EveryStatusHasItsText) {
    EXPECT_EQ(messageOf(errSecSuccess), "No error.");
    EXPECT_EQ(messageOf(errSecItemNotFound),
              "The specified item could not be found in the keychain.");
    EXPECT_EQ(messageOf(errSecDuplicateItem), "The specified item already exists in the keychain.");
    EXPECT_EQ(messageOf(errSecUserCanceled), "User canceled the operation.");
    EXPECT_EQ(messageOf(errSecInteractionNotAllowed), "User interaction is not allowed.");
    EXPECT_EQ(messageOf(errSecNotAvailable),
              "No keychain is available. You may need to restart your computer.");
    EXPECT_EQ(messageOf(-12345), "OSStatus -12345");
}

TEST_F(SecItemTest, ListsNamesAndNoSecrets) {
    CFTypeRef found = nullptr;
    EXPECT_EQ(SecItemCopyMatching((CFDictionaryRef)query(), &found), errSecItemNotFound);
    EXPECT_EQ(found, nullptr);
    ASSERT_EQ(addPassword("ann", "secret"), errSecSuccess);
    ASSERT_EQ(SecItemCopyMatching((CFDictionaryRef)query(), &found), errSecSuccess);
    NSArray* const items = [(NSArray*)found autorelease];
    ASSERT_EQ([items count], 1U);
    NSDictionary* const item = [items objectAtIndex:0];
    EXPECT_EQ([item count], 2U);
    EXPECT_TRUE([[item objectForKey:(id)kSecAttrAccount] isEqual:@"ann"]);
    EXPECT_TRUE([[item objectForKey:(id)kSecAttrService] isEqual:@"Password:Mail_test"]);
}

TEST_F(SecItemTest, OtherQueriesAreNotAnswered) {
    CFTypeRef found = nullptr;
    NSMutableDictionary* const other = query();
    [other removeObjectForKey:(id)kSecMatchLimit];
    EXPECT_EQ(SecItemCopyMatching((CFDictionaryRef)other, &found), errSecUnimplemented);
    EXPECT_EQ(SecItemCopyMatching(nullptr, &found), errSecParam);
}

TEST_F(SecItemTest, BadArgumentsAreRefused) {
    EXPECT_EQ(
        SecKeychainFindGenericPassword(nullptr, 3, nullptr, 0, nullptr, nullptr, nullptr, nullptr),
        errSecParam);
    EXPECT_EQ(SecKeychainFindGenericPassword(@"no keychain", 1, "s", 0, nullptr, nullptr, nullptr,
                                             nullptr),
              errSecParam);
    EXPECT_EQ(SecKeychainAddGenericPassword((SecKeychainRef) @"no keychain", 1, "s", 0, nullptr, 1,
                                            "x", nullptr),
              errSecParam);
    EXPECT_EQ(SecKeychainItemDelete((SecKeychainItemRef) @"no item"), errSecInvalidItemRef);
    EXPECT_EQ(SecKeychainItemDelete(nullptr), errSecInvalidItemRef);
    EXPECT_EQ(SecKeychainSetDefault(nullptr), errSecNoSuchKeychain);
    EXPECT_EQ(SecKeychainItemFreeContent(nullptr, nullptr), errSecSuccess);
}

TEST_F(SecItemTest, APathNeedsRoom) {
    SecKeychainRef keychain = nullptr;
    ASSERT_EQ(SecKeychainCopyDefault(&keychain), errSecSuccess);
    char path[8];
    UInt32 length = sizeof path;
    EXPECT_EQ(SecKeychainGetPath(keychain, &length, path), errSecParam);
    EXPECT_EQ(pathOf(keychain), file("items"));
    CFRelease(keychain);
}

}  // namespace
}  // namespace tav::test
