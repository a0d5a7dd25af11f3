// SPDX-License-Identifier: MIT
#pragma once

#include "tests/frameworks/Security/CoreMemory.h"
#include "tests/frameworks/Security/KeychainFixture.h"

namespace tav::test {

/// A secret that would be recognised wherever it is.
class CanaryFixture : public KeychainFixture {
protected:
    // Longer than any buffer on a stack that the names would overwrite.
    CanaryFixture() : canary(masked()) {}

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

    bool isIn(const std::string& bytes) const { return canary.isIn(bytes.data(), bytes.size()); }

    void expectNoTraceOnDisk() const {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(home.path())) {
            if (entry.is_regular_file())
                EXPECT_FALSE(isIn(readFile(entry.path()))) << entry.path();
        }
    }

    const HiddenText canary;
};

}  // namespace tav::test
