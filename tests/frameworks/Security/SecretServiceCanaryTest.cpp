// SPDX-License-Identifier: MIT
// A secret that would be recognised goes to the Secret Service and back without a trace.
#include "tests/frameworks/Security/CanaryFixture.h"
#include "tests/support/SecretSession.h"

#include <gmock/gmock.h>

namespace tav::test {
namespace {

using testing::HasSubstr;

class SecretServiceCanaryTest : public CanaryFixture {
protected:
    SecretSession session;
};

TEST_F(SecretServiceCanaryTest, LeavesNoTraceInMemory) {
    ASSERT_EQ(add("ann"), errSecSuccess);
    EXPECT_FALSE(isInCoreMemory(canary)) << "after adding";
    EXPECT_EQ(add("ann"), errSecDuplicateItem);
    readAndForget("ann");
    EXPECT_FALSE(isInCoreMemory(canary)) << "at the end";
}

TEST_F(SecretServiceCanaryTest, LeavesNoTraceOfAnAccountThatIsLookedFor) {
    ASSERT_EQ(addPassword("ann", "secret"), errSecSuccess);
    std::string account = canary.reveal();
    EXPECT_EQ(findPassword(account), errSecItemNotFound);
    wipe(account);
    EXPECT_FALSE(isInCoreMemory(canary));
}

TEST_F(SecretServiceCanaryTest, LeavesNoTraceOnDiskOrInTheLog) {
    testing::internal::CaptureStderr();
    ASSERT_EQ(add("ann"), errSecSuccess);
    readAndForget("ann");
    session.lock();
    EXPECT_NE(add("bob"), errSecSuccess);
    expectNoTraceOnDisk();
    const std::string log = testing::internal::GetCapturedStderr();
    EXPECT_THAT(log, HasSubstr("new items go to the Secret Service"));
    EXPECT_FALSE(isIn(log));
}

}  // namespace
}  // namespace tav::test
