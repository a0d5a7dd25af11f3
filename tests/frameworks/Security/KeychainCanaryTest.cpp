// SPDX-License-Identifier: MIT
// A secret that would be recognised is nowhere: not in memory that a core file has, in no file, in
// no log.
#include "tests/frameworks/Security/CoreMemory.h"
#include "tests/frameworks/Security/KeychainFixture.h"

#include <gmock/gmock.h>

namespace tav::test {
namespace {

using testing::HasSubstr;

class KeychainCanaryTest : public KeychainFixture {
protected:
    // Longer than any buffer on a stack that the names would overwrite.
    KeychainCanaryTest() : canary(masked()) {}

    static HiddenText masked() {
        std::string text;
        for (int i = 0; i < 64; ++i)
            text += static_cast<char>('a' + (i * 7 + 3) % 26);
        HiddenText hidden(text);
        wipe(text);
        return hidden;
    }

    OSStatus add(const std::string& account) const {
        std::string secret = canary.reveal();
        const OSStatus status = addPassword(account, secret);
        wipe(secret);
        return status;
    }

    void readAndForget(const std::string& account) const {
        UInt32 length = 0;
        void* data = nullptr;
        ASSERT_EQ(SecKeychainFindGenericPassword(nullptr, lengthOf(kService), kService,
                                                 lengthOf(account), account.data(), &length, &data,
                                                 nullptr),
                  errSecSuccess);
        EXPECT_TRUE(canary.isAt(static_cast<const char*>(data)));
        EXPECT_FALSE(isInCoreMemory(canary)) << "while it is held";
        SecKeychainItemFreeContent(nullptr, data);
    }

    bool isIn(const std::string& bytes) const {
        for (std::size_t at = 0; at + canary.size() <= bytes.size(); ++at) {
            if (canary.isAt(bytes.data() + at))
                return true;
        }
        return false;
    }

    void expectNoTraceOnDisk() const {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(home.path())) {
            if (entry.is_regular_file())
                EXPECT_FALSE(isIn(readFile(entry.path()))) << entry.path();
        }
    }

    const HiddenText canary;
};

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
