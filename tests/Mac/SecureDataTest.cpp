// SPDX-License-Identifier: MIT
// Of a user without a session bus, with the encrypted file.
#include "ula/SecureData.h"

#include "tests/support/LogCapture.h"
#include "tests/support/TemporaryFolder.h"

#include <Security/Security.h>
#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>

namespace tav::ula {
namespace {

using test::assertionLine;
using testing::ElementsAre;
using testing::IsEmpty;

class SecureDataTest : public testing::Test {
protected:
    SecureDataTest() {
        setenv("HOME", home.path().c_str(), 1);
        setenv("XDG_DATA_HOME", home.path().c_str(), 1);
        unsetenv("DBUS_SESSION_BUS_ADDRESS");
        unsetenv("XDG_RUNTIME_DIR");
    }

    static FastString password(const char* name, const char* account, const char* qualifier) {
        FastString text("unchanged");
        return getFromKeychain(name, FastString(account), text, qualifier) ? text
                                                                           : "failed, " + text;
    }
    static FastString note(const char* name, const char* qualifier) {
        FastString text("unchanged");
        return getFromKeychain(FastString(name), text, FastString(qualifier)) ? text
                                                                              : "failed, " + text;
    }
    /// The lines for a status.
    static std::vector<std::string> report(int status, const std::string& message) {
        return {"4 src/Mac/SecureData:13 Error Occured while checking keychainItem existance " +
                    std::to_string(status),
                "4 src/Mac/SecureData:15 Error message: " + message,
                assertionLine("src/Mac/SecureData", 17, "0")};
    }
    static OSStatus find(const std::string& service, const std::string& account) {
        return SecKeychainFindGenericPassword(nullptr, static_cast<UInt32>(service.size()),
                                              service.data(), static_cast<UInt32>(account.size()),
                                              account.data(), nullptr, nullptr, nullptr);
    }

    test::TemporaryFolder home;
    test::LogCapture log;
    const FastString q{"org.example"};
    const FastString none;
};

const char* const kDuplicate = "The specified item already exists in the keychain.";

TEST_F(SecureDataTest, APasswordIsFoundByNameAccountAndQualifier) {
    EXPECT_TRUE(addToKeychain("Mail", "ann", "secret", q));
    EXPECT_EQ(password("Mail", "ann", "org.example"), "secret");
    EXPECT_EQ(password("Mail", "bob", "org.example"), "failed, unchanged");
    EXPECT_EQ(password("Mail", "ann", "other"), "failed, unchanged");
    EXPECT_EQ(password("News", "ann", "org.example"), "failed, unchanged");
    EXPECT_EQ(find("Password:Mail_org.example", "ann"), errSecSuccess);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(SecureDataTest, AnEmptyQualifierLeavesTheBar) {
    EXPECT_TRUE(addToKeychain("Mail", "ann", "secret", none));
    EXPECT_TRUE(addToKeychain("Code", FastString("1234"), none));
    EXPECT_EQ(find("Password:Mail_", "ann"), errSecSuccess);
    EXPECT_EQ(find("Secure Note:Code_", ""), errSecSuccess);
}

TEST_F(SecureDataTest, AddingAPasswordAgainReplacesIt) {
    EXPECT_TRUE(addToKeychain("Mail", "ann", "one", q));
    EXPECT_TRUE(addToKeychain("Mail", "ann", "two", q));
    EXPECT_EQ(password("Mail", "ann", "org.example"), "two");
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(SecureDataTest, AddingANoteAgainIsRefusedAndReported) {
    EXPECT_TRUE(addToKeychain("Code", FastString("one"), q));
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_FALSE(addToKeychain("Code", FastString("two"), q));
    EXPECT_EQ(log.lines(), report(-25299, kDuplicate));
    EXPECT_EQ(note("Code", "org.example"), "one");
}

// The existence of a note is asked for with the note as the account.
TEST_F(SecureDataTest, ANoteThatIsAnAccountIsFoundAndNotRemoved) {
    const std::string service = "Secure Note:Code_org.example";
    ASSERT_EQ(SecKeychainAddGenericPassword(nullptr, static_cast<UInt32>(service.size()),
                                            service.data(), 3, "two", 1, "x", nullptr),
              errSecSuccess);
    EXPECT_FALSE(addToKeychain("Code", FastString("two"), q));
    EXPECT_EQ(log.lines(),
              report(-25300, "The specified item could not be found in the keychain."));
    EXPECT_EQ(find(service, "two"), errSecSuccess);
    EXPECT_EQ(find(service, ""), errSecItemNotFound);
    // With a note of that name, too, it is replaced.
    EXPECT_TRUE(addToKeychain("Code", FastString("one"), q));
    EXPECT_TRUE(addToKeychain("Code", FastString("two"), q));
    EXPECT_EQ(note("Code", "org.example"), "two");
}

TEST_F(SecureDataTest, EditingReplacesWhatThereIs) {
    EXPECT_FALSE(editKeychain("Mail", "ann", "two", q));
    EXPECT_FALSE(editKeychain("Code", FastString("two"), q));
    EXPECT_TRUE(addToKeychain("Mail", "ann", "one", q));
    EXPECT_TRUE(addToKeychain("Code", FastString("one"), q));
    EXPECT_TRUE(editKeychain("Mail", "ann", "two", q));
    EXPECT_TRUE(editKeychain("Code", FastString("two"), q));
    EXPECT_EQ(password("Mail", "ann", "org.example"), "two");
    EXPECT_EQ(note("Code", "org.example"), "two");
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(SecureDataTest, WhatIsMissingIsNotDeletedAndNotReported) {
    EXPECT_FALSE(deleteKeychain("Mail", "ann", q));
    EXPECT_FALSE(deleteKeychain("Code", q));
    EXPECT_EQ(note("Code", ""), "failed, unchanged");
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(SecureDataTest, APasswordAndANoteOfOneNameAreTwoItems) {
    EXPECT_TRUE(addToKeychain("Mail", "ann", "password", q));
    EXPECT_TRUE(addToKeychain("Mail", FastString("note"), q));
    EXPECT_TRUE(deleteKeychain("Mail", "ann", q));
    EXPECT_EQ(password("Mail", "ann", "org.example"), "failed, unchanged");
    EXPECT_EQ(note("Mail", "org.example"), "note");
    EXPECT_TRUE(deleteKeychain("Mail", q));
    EXPECT_EQ(note("Mail", "org.example"), "failed, unchanged");
}

TEST_F(SecureDataTest, AnEmptyArgumentTouchesNothing) {
    FastString text("unchanged");
    EXPECT_FALSE(addToKeychain("", "ann", "secret", q));
    EXPECT_FALSE(addToKeychain("Mail", "", "secret", q));
    EXPECT_FALSE(addToKeychain("Mail", "ann", "", q));
    EXPECT_FALSE(addToKeychain("", FastString("note"), q));
    EXPECT_FALSE(addToKeychain("Code", none, q));
    EXPECT_FALSE(getFromKeychain("", FastString("ann"), text, q));
    EXPECT_FALSE(getFromKeychain("Mail", none, text, q));
    EXPECT_FALSE(getFromKeychain(none, text, q));
    EXPECT_FALSE(editKeychain("", "ann", "secret", q));
    EXPECT_FALSE(editKeychain("Mail", "", "secret", q));
    EXPECT_FALSE(editKeychain("Mail", "ann", "", q));
    EXPECT_FALSE(editKeychain("", FastString("note"), q));
    EXPECT_FALSE(editKeychain("Code", none, q));
    EXPECT_FALSE(deleteKeychain("", "ann", q));
    EXPECT_FALSE(deleteKeychain("Mail", "", q));
    EXPECT_FALSE(deleteKeychain("", q));
    EXPECT_FALSE(getWholeFromKeychain("", FastString("ann"), text, q));
    EXPECT_FALSE(getWholeFromKeychain(none, text, q));
    EXPECT_EQ(text, "unchanged");
    EXPECT_TRUE(std::filesystem::is_empty(home.path()));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(SecureDataTest, ALongSecretIsReadUpToItsLimitOrWhole) {
    const std::string secret = std::string(1022, 'a') + "bc" + std::string(5000, 'd');
    EXPECT_TRUE(addToKeychain("Mail", "ann", FastString(secret), q));
    EXPECT_TRUE(addToKeychain("Code", FastString(secret), q));
    EXPECT_EQ(password("Mail", "ann", "org.example"), FastString(secret.substr(0, 1023)));
    EXPECT_EQ(note("Code", "org.example"), FastString(secret.substr(0, 1023)));
    FastString whole;
    EXPECT_TRUE(getWholeFromKeychain("Mail", FastString("ann"), whole, q));
    EXPECT_EQ(whole, FastString(secret));
    EXPECT_TRUE(getWholeFromKeychain(FastString("Code"), whole, q));
    EXPECT_EQ(whole, FastString(secret));
}

TEST_F(SecureDataTest, ASecretIsReadUpToItsFirstZeroOrWhole) {
    const FastString secret("ab\0cd", 5);
    EXPECT_TRUE(addToKeychain("Mail", "ann", secret, q));
    EXPECT_EQ(password("Mail", "ann", "org.example"), "ab");
    FastString whole;
    EXPECT_TRUE(getWholeFromKeychain("Mail", FastString("ann"), whole, q));
    EXPECT_EQ(whole, secret);
    EXPECT_TRUE(editKeychain("Mail", "ann", FastString("\0cd", 3), q));
    EXPECT_EQ(password("Mail", "ann", "org.example"), "");
}

TEST_F(SecureDataTest, AnEmptySecretIsReportedAsNoError) {
    const std::string service = "Password:Mail_";
    ASSERT_EQ(SecKeychainAddGenericPassword(nullptr, static_cast<UInt32>(service.size()),
                                            service.data(), 3, "ann", 0, nullptr, nullptr),
              errSecSuccess);
    EXPECT_EQ(password("Mail", "ann", ""), "failed, unchanged");
    EXPECT_EQ(log.lines(), report(0, "No error."));
}

TEST_F(SecureDataTest, ABrokenKeychainIsReportedByEachStep) {
    EXPECT_TRUE(addToKeychain("Mail", "ann", "secret", q));
    std::filesystem::permissions(home / "ula/keychain/key", std::filesystem::perms(0644));
    const std::string refused = "The user name or passphrase you entered is not correct.";
    EXPECT_FALSE(deleteKeychain("Mail", "ann", q));
    EXPECT_EQ(log.lines(), report(-25293, refused));
    log.clear();
    // The item counts as missing then, and storing fails, too.
    EXPECT_FALSE(addToKeychain("Mail", "ann", "other", q));
    EXPECT_EQ(log.lines().size(), 6U);
}

TEST_F(SecureDataTest, NamesAreListedSortedWithoutSecrets) {
    EXPECT_TRUE(addToKeychain("News", "ann", "secret", q));
    EXPECT_TRUE(addToKeychain("Mail", "bob", "secret", q));
    EXPECT_TRUE(addToKeychain("Mail", "ann", "secret", q));
    EXPECT_TRUE(addToKeychain("Mail", FastString("note"), q));
    EXPECT_TRUE(addToKeychain("Other", FastString("note"), "other"));
    ASSERT_EQ(SecKeychainAddGenericPassword(nullptr, 7, "foreign", 0, nullptr, 1, "x", nullptr),
              errSecSuccess);
    std::vector<KeychainItemName> names;
    EXPECT_TRUE(listKeychain(q, names));
    const auto password = KeychainItemKind::Password;
    EXPECT_THAT(names, ElementsAre(KeychainItemName{password, "Mail", "ann"},
                                   KeychainItemName{password, "Mail", "bob"},
                                   KeychainItemName{KeychainItemKind::Note, "Mail", ""},
                                   KeychainItemName{password, "News", "ann"}));
    names.clear();
    EXPECT_TRUE(listKeychain(names));
    ASSERT_EQ(names.size(), 5U);
    EXPECT_EQ(names.back().name, "Other_other");
}

TEST_F(SecureDataTest, AnEmptyKeychainHasNoNames) {
    std::vector<KeychainItemName> names;
    EXPECT_TRUE(listKeychain(names));
    EXPECT_THAT(names, IsEmpty());
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(SecureDataTest, BothStoresAreTold) {
    const std::vector<KeychainStore> stores = keychainStores();
    ASSERT_EQ(stores.size(), 2U);
    EXPECT_EQ(stores[0].path, FastString(home / "ula/keychain/items"));
    EXPECT_TRUE(stores[0].isDefault);
    EXPECT_TRUE(stores[0].isAvailable);
    EXPECT_FALSE(stores[0].isLocked);
    EXPECT_FALSE(stores[1].isDefault);
    EXPECT_FALSE(stores[1].isAvailable);
    EXPECT_EQ(stores[1].error, "No keychain is available. You may need to restart your computer.");
}

TEST_F(SecureDataTest, AMoveToAnUnreachableStoreLeavesAllWhereItWas) {
    EXPECT_TRUE(addToKeychain("Mail", "ann", "secret", q));
    const KeychainMove move = moveKeychain(keychainStores()[1].path);
    EXPECT_EQ(move.moved, 0);
    EXPECT_EQ(move.error, "No keychain is available. You may need to restart your computer.");
    EXPECT_EQ(password("Mail", "ann", "org.example"), "secret");
    EXPECT_EQ(password("Mail", "bob", "org.example"), "failed, unchanged");
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_EQ(moveKeychain("/nowhere").error, "The specified keychain could not be found.");
}

}  // namespace
}  // namespace tav::ula
