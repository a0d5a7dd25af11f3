// SPDX-License-Identifier: MIT
// A secret that would be recognised is nowhere: not in memory that a core file has, in no file, in
// no log.
#include "tests/frameworks/Security/CanaryFixture.h"

#include <gmock/gmock.h>

namespace tav::test {
namespace {

using testing::HasSubstr;

using KeychainCanaryTest = CanaryFixture;

TEST_F(KeychainCanaryTest, IsFoundWhereItIs) {
    EXPECT_FALSE(isInCoreMemory(canary));
    std::string text = canary.reveal();
    EXPECT_TRUE(isInCoreMemory(canary));
    wipe(text);
    EXPECT_FALSE(isInCoreMemory(canary));
}

TEST_F(KeychainCanaryTest, LeavesNoTraceInMemory) {
    ASSERT_EQ(add("ann"), errSecSuccess);
    EXPECT_FALSE(isInCoreMemory(canary)) << "after adding";
    EXPECT_EQ(add("ann"), errSecDuplicateItem);
    readAndForget("ann");
    EXPECT_EQ(addPassword("bob", "other"), errSecSuccess);
    EXPECT_EQ(removePassword("ann"), errSecSuccess);
    EXPECT_FALSE(isInCoreMemory(canary)) << "at the end";
}

// Of a note that is added the existence is asked for with itself as the account.
TEST_F(KeychainCanaryTest, LeavesNoTraceOfAnAccountThatIsLookedFor) {
    ASSERT_EQ(addPassword("ann", "secret"), errSecSuccess);
    std::string account = canary.reveal();
    EXPECT_EQ(findPassword(account), errSecItemNotFound);
    wipe(account);
    EXPECT_FALSE(isInCoreMemory(canary));
}

TEST_F(KeychainCanaryTest, LeavesNoTraceOnDiskOrInTheLog) {
    testing::internal::CaptureStderr();
    ASSERT_EQ(add("ann"), errSecSuccess);
    expectNoTraceOnDisk();
    readAndForget("ann");
    writeFile(file("items"), readFile(file("items")).substr(1));
    EXPECT_EQ(findPassword("ann"), errSecInvalidKeychain);
    expectNoTraceOnDisk();
    const std::string log = testing::internal::GetCapturedStderr();
    EXPECT_THAT(log, HasSubstr("as no Secret Service answers"));
    EXPECT_THAT(log, HasSubstr("kept aside as"));
    EXPECT_FALSE(isIn(log));
    std::string said = "it says " + canary.reveal();
    EXPECT_TRUE(isIn(said));
    wipe(said);
}

}  // namespace
}  // namespace tav::test
