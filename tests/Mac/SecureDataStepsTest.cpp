// SPDX-License-Identifier: MIT
// Which calls of the keychain each function makes, with which arguments, in which order.
#include "KeychainSpy.h"
#include "tests/support/LogCapture.h"
#include "ula/SecureData.h"

#include <gmock/gmock.h>

namespace tav::ula {
namespace {

using test::assertionLine;
using testing::ElementsAre;
using testing::IsEmpty;

class SecureDataStepsTest : public testing::Test {
protected:
    SecureDataStepsTest() { spy = {}; }
    ~SecureDataStepsTest() override { EXPECT_EQ(spy.itemsHeld(), 0); }

    /// The lines for a status.
    static std::vector<std::string> report(int status, const std::string& message) {
        return {"4 src/Mac/SecureData:13 Error Occured while checking keychainItem existance " +
                    std::to_string(status),
                "4 src/Mac/SecureData:15 Error message: " + message,
                assertionLine("src/Mac/SecureData", 17, "0")};
    }

    test::KeychainSpy& spy = test::KeychainSpy::instance();
    test::LogCapture log;
    const FastString mail{"Mail"};
    const FastString ann{"ann"};
    const FastString text{"text"};
    const FastString q{"q"};
};

constexpr const char* kFindPassword = "find Password:Mail_q|ann";
constexpr const char* kFindNote = "find Secure Note:Mail_q|";

TEST_F(SecureDataStepsTest, AddingANewPasswordLooksAndStores) {
    EXPECT_TRUE(addToKeychain(mail, ann, text, q));
    EXPECT_THAT(spy.take(), ElementsAre(kFindPassword, "add Password:Mail_q|ann=text"));
}

TEST_F(SecureDataStepsTest, AddingAPasswordThatIsThereRemovesItFirst) {
    spy.found = {errSecSuccess};
    EXPECT_TRUE(addToKeychain(mail, ann, text, q));
    EXPECT_THAT(spy.take(), ElementsAre(kFindPassword, "find Password:Mail_q|ann, item", "delete",
                                        "add Password:Mail_q|ann=text"));
}

TEST_F(SecureDataStepsTest, AddingANoteLooksForItselfAsTheAccount) {
    EXPECT_TRUE(addToKeychain(mail, text, q));
    EXPECT_THAT(spy.take(),
                ElementsAre("find Secure Note:Mail_q|text", "add Secure Note:Mail_q|=text"));
}

TEST_F(SecureDataStepsTest, AddingANoteThatIsAnAccountRemovesTheNoteWithoutOne) {
    spy.found = {errSecSuccess};
    EXPECT_TRUE(addToKeychain(mail, text, q));
    EXPECT_THAT(spy.take(),
                ElementsAre("find Secure Note:Mail_q|text", "find Secure Note:Mail_q|, item",
                            "delete", "add Secure Note:Mail_q|=text"));
}

TEST_F(SecureDataStepsTest, EditingWhatIsMissingOnlyLooks) {
    EXPECT_FALSE(editKeychain(mail, ann, text, q));
    EXPECT_FALSE(editKeychain(mail, text, q));
    EXPECT_THAT(spy.take(), ElementsAre(kFindPassword, kFindNote));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(SecureDataStepsTest, EditingRemovesAndStores) {
    spy.found = {errSecSuccess};
    EXPECT_TRUE(editKeychain(mail, ann, text, q));
    EXPECT_THAT(spy.take(), ElementsAre(kFindPassword, "find Password:Mail_q|ann, item", "delete",
                                        "add Password:Mail_q|ann=text"));
    EXPECT_TRUE(editKeychain(mail, text, q));
    EXPECT_THAT(spy.take(), ElementsAre(kFindNote, "find Secure Note:Mail_q|, item", "delete",
                                        "add Secure Note:Mail_q|=text"));
}

TEST_F(SecureDataStepsTest, GettingLooksReadsAndReturnsTheData) {
    spy.found = {errSecSuccess};
    spy.data = "secret";
    FastString got;
    EXPECT_TRUE(getFromKeychain(mail, ann, got, q));
    EXPECT_THAT(spy.take(),
                ElementsAre(kFindPassword, "find Password:Mail_q|ann, length, data", "free"));
    EXPECT_TRUE(getFromKeychain(mail, got, q));
    EXPECT_THAT(spy.take(),
                ElementsAre(kFindNote, "find Secure Note:Mail_q|, length, data", "free"));
    EXPECT_EQ(got, "secret");
}

TEST_F(SecureDataStepsTest, DeletingLooksAndRemoves) {
    spy.found = {errSecSuccess};
    EXPECT_TRUE(deleteKeychain(mail, ann, q));
    EXPECT_THAT(spy.take(), ElementsAre(kFindPassword, "find Password:Mail_q|ann, item", "delete"));
    EXPECT_TRUE(deleteKeychain(mail, q));
    EXPECT_THAT(spy.take(), ElementsAre(kFindNote, "find Secure Note:Mail_q|, item", "delete"));
}

TEST_F(SecureDataStepsTest, AnEmptyNameMakesNoCall) {
    const FastString none;
    FastString got("as it was");
    EXPECT_FALSE(addToKeychain(none, ann, text, q));
    EXPECT_FALSE(addToKeychain(none, text, q));
    EXPECT_FALSE(getFromKeychain(none, ann, got, q));
    EXPECT_FALSE(getFromKeychain(none, got, q));
    EXPECT_FALSE(editKeychain(none, ann, text, q));
    EXPECT_FALSE(editKeychain(none, text, q));
    EXPECT_FALSE(deleteKeychain(none, ann, q));
    EXPECT_FALSE(deleteKeychain(none, q));
    EXPECT_THAT(spy.take(), IsEmpty());
    EXPECT_EQ(got, "as it was");
}

TEST_F(SecureDataStepsTest, NamesGoWithTheirLengthsZerosIncluded) {
    const FastString name("a\0b", 3), account("c\0d", 3), secret("e\0f", 3);
    EXPECT_TRUE(addToKeychain(name, account, secret, FastString()));
    EXPECT_THAT(spy.take(), ElementsAre(std::string("find Password:a\0b_|c\0d", 22),
                                        std::string("add Password:a\0b_|c\0d=e\0f", 25)));
}

TEST_F(SecureDataStepsTest, AFailedLookIsReportedAndCountsAsMissing) {
    spy.found = {errSecNotAvailable};
    EXPECT_FALSE(editKeychain(mail, ann, text, q));
    EXPECT_THAT(spy.take(), ElementsAre(kFindPassword));
    EXPECT_EQ(log.lines(),
              report(-25291, "No keychain is available. You may need to restart your computer."));
    EXPECT_TRUE(addToKeychain(mail, ann, text, q));
    EXPECT_THAT(spy.take(), ElementsAre(kFindPassword, "add Password:Mail_q|ann=text"));
}

TEST_F(SecureDataStepsTest, WhatIsNotRemovedIsNotReplaced) {
    spy.found = {errSecSuccess};
    spy.deleted = errSecUserCanceled;
    EXPECT_FALSE(addToKeychain(mail, ann, text, q));
    EXPECT_THAT(spy.take(), ElementsAre(kFindPassword, "find Password:Mail_q|ann, item", "delete"));
    EXPECT_EQ(log.lines(), report(-128, "User canceled the operation."));
    log.clear();
    // It has gone between the two.
    spy.found = {errSecSuccess, errSecItemNotFound};
    EXPECT_FALSE(editKeychain(mail, text, q));
    EXPECT_THAT(spy.take(), ElementsAre(kFindNote, "find Secure Note:Mail_q|, item"));
    EXPECT_EQ(log.lines(),
              report(-25300, "The specified item could not be found in the keychain."));
}

TEST_F(SecureDataStepsTest, AFailedStoreIsReportedAndTheOldItemIsGone) {
    spy.found = {errSecSuccess};
    spy.added = errSecDiskFull;
    EXPECT_FALSE(editKeychain(mail, ann, text, q));
    EXPECT_THAT(spy.take(), ElementsAre(kFindPassword, "find Password:Mail_q|ann, item", "delete",
                                        "add Password:Mail_q|ann=text"));
    EXPECT_EQ(log.lines(), report(-34, "The disk is full."));
}

TEST_F(SecureDataStepsTest, AFailedReadIsReportedAndLeavesTheTextAsItWas) {
    spy.found = {errSecSuccess, errSecInteractionNotAllowed};
    FastString got("as it was");
    EXPECT_FALSE(getFromKeychain(mail, ann, got, q));
    EXPECT_THAT(spy.take(), ElementsAre(kFindPassword, "find Password:Mail_q|ann, length, data"));
    EXPECT_EQ(log.lines(), report(-25308, "User interaction is not allowed."));
    EXPECT_EQ(got, "as it was");
}

TEST_F(SecureDataStepsTest, ASecretWithoutDataIsReportedAsNoError) {
    spy.found = {errSecSuccess};
    FastString got("as it was");
    EXPECT_FALSE(getFromKeychain(mail, ann, got, q));
    EXPECT_EQ(spy.take().back(), "free");
    spy.data = "secret";
    spy.hasNoData = true;
    log.clear();
    EXPECT_FALSE(getFromKeychain(mail, ann, got, q));
    EXPECT_EQ(spy.take().back(), "find Password:Mail_q|ann, length, data");
    EXPECT_EQ(log.lines(), report(0, "No error."));
    EXPECT_EQ(got, "as it was");
}

}  // namespace
}  // namespace tav::ula
