// SPDX-License-Identifier: MIT
// With a session bus and a keyring of its own.
#include "ula/SecureData.h"

#include "tests/support/LogCapture.h"
#include "tests/support/SecretSession.h"
#include "tests/support/TemporaryFolder.h"

#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>
#include <memory>

namespace tav::ula {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

class SecureDataServiceTest : public testing::Test {
protected:
    SecureDataServiceTest() {
        setenv("HOME", home.path().c_str(), 1);
        setenv("XDG_DATA_HOME", home.path().c_str(), 1);
        setenv("XDG_RUNTIME_DIR", home.path().c_str(), 1);
        unsetenv("DBUS_SESSION_BUS_ADDRESS");
        unsetenv("DISPLAY");
    }
    void startSession() { session = std::make_unique<test::SecretSession>(); }
    FastString password(const char* account) const {
        FastString text;
        return getFromKeychain("Mail", FastString(account), text, q) ? text : "failed";
    }
    static FastString pathOf(bool isFile) {
        for (const KeychainStore& store : keychainStores()) {
            if (store.path.view().ends_with("/items") == isFile)
                return store.path;
        }
        return {};
    }

    test::TemporaryFolder home;
    test::LogCapture log;
    const FastString q{"org.example"};
    std::unique_ptr<test::SecretSession> session;
};

TEST_F(SecureDataServiceTest, SecretsGoThereAndBack) {
    startSession();
    EXPECT_TRUE(addToKeychain("Mail", "ann", "one", q));
    EXPECT_TRUE(addToKeychain("Mail", "ann", "two", q));
    EXPECT_TRUE(editKeychain("Mail", "ann", "three", q));
    EXPECT_EQ(password("ann"), "three");
    EXPECT_TRUE(addToKeychain("Mail", FastString("note"), q));
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_FALSE(addToKeychain("Mail", FastString("other"), q));
    EXPECT_THAT(log.lines(), SizeIs(3));
    std::vector<KeychainItemName> names;
    EXPECT_TRUE(listKeychain(q, names));
    EXPECT_THAT(names, SizeIs(2));
    EXPECT_TRUE(deleteKeychain("Mail", "ann", q));
    EXPECT_EQ(password("ann"), "failed");
    EXPECT_FALSE(std::filesystem::exists(home / "ula/keychain/items"));
}

TEST_F(SecureDataServiceTest, ItemsMoveBetweenTheStores) {
    EXPECT_TRUE(addToKeychain("Mail", "ann", "secret", q));
    EXPECT_TRUE(addToKeychain("Mail", FastString("note"), q));
    startSession();
    KeychainMove move = moveKeychain(pathOf(false));
    EXPECT_EQ(move.error, "");
    EXPECT_EQ(move.moved, 2);
    EXPECT_EQ(move.left, 0);
    EXPECT_EQ(password("ann"), "secret");
    EXPECT_TRUE(keychainStores()[0].path.view().starts_with("/org/"));
    EXPECT_TRUE(addToKeychain("Mail", "bob", "secret", q));
    move = moveKeychain(pathOf(true));
    EXPECT_EQ(move.moved, 3);
    EXPECT_TRUE(keychainStores()[0].path.view().ends_with("/items"));
    session.reset();
    EXPECT_EQ(password("ann"), "secret");
    EXPECT_EQ(password("bob"), "secret");
    EXPECT_EQ(password("eve"), "failed");
    EXPECT_THAT(log.lines(), IsEmpty());
}

}  // namespace
}  // namespace tav::ula
