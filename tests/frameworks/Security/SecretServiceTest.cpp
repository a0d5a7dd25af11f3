// SPDX-License-Identifier: MIT
// With a session bus and a keyring of each test's own.
#include "tests/frameworks/Security/KeychainFixture.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/SecretSession.h"

#include <atomic>
#include <gmock/gmock.h>
#include <memory>
#include <thread>
#include <unistd.h>

namespace tav::test {
namespace {

using testing::HasSubstr;

const std::string kServicePath = "/org/freedesktop/secrets/aliases/default";

class SecretServiceTest : public KeychainFixture {
protected:
    SecretServiceTest() { startSession(); }

    void startSession() { session = std::make_unique<SecretSession>(); }
    void endSession() { session.reset(); }

    static std::string defaultPath() {
        SecKeychainRef keychain = nullptr;
        if (SecKeychainCopyDefault(&keychain) != errSecSuccess)
            return "none";
        const std::string path = pathOf(keychain);
        CFRelease(keychain);
        return path;
    }

    std::unique_ptr<SecretSession> session;
};

TEST_F(SecretServiceTest, TakesItemsWhereItAnswers) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(addPassword("ann", std::string("a\0b", 3)), errSecSuccess);
    EXPECT_EQ(addPassword("ann", "other"), errSecDuplicateItem);
    EXPECT_EQ(readPassword("ann"), std::string("a\0b", 3));
    EXPECT_EQ(defaultPath(), kServicePath);
    EXPECT_FALSE(std::filesystem::exists(file("items")));
    EXPECT_EQ(removePassword("ann"), errSecSuccess);
    EXPECT_EQ(findPassword("ann"), errSecItemNotFound);
    const std::string log = testing::internal::GetCapturedStderr();
    EXPECT_THAT(log, HasSubstr("new items go to the Secret Service, which answers"));
    EXPECT_EQ(log.find("keychain:"), log.rfind("keychain:")) << log;
}

TEST_F(SecretServiceTest, TakesNamesThatAreNoText) {
    const std::string account("\xff%00\0", 5);
    EXPECT_EQ(addPassword(account, "secret"), errSecSuccess);
    EXPECT_EQ(readPassword(account), "secret");
    EXPECT_EQ(findPassword(std::string("\xff\0\0", 3)), errSecItemNotFound);
}

TEST_F(SecretServiceTest, TellsOfALockedItemAndAsksForIt) {
    ASSERT_EQ(addPassword("ann", "secret"), errSecSuccess);
    session->lock();
    EXPECT_EQ(findPassword("ann"), errSecSuccess);
    // Nobody can be asked here: the prompt goes away by itself.
    EXPECT_EQ(readPassword("ann"), "status " + std::to_string(errSecUserCanceled));
    EXPECT_EQ(removePassword("ann"), errSecUserCanceled);
    EXPECT_EQ(addPassword("bob", "secret"), errSecUserCanceled);
    EXPECT_FALSE(std::filesystem::exists(file("items")));
}

TEST_F(SecretServiceTest, IsMissedWithoutItsBus) {
    ASSERT_EQ(addPassword("ann", "secret"), errSecSuccess);
    endSession();
    EXPECT_EQ(findPassword("ann"), errSecNotAvailable);
    EXPECT_EQ(addPassword("bob", "secret"), errSecNotAvailable);
    EXPECT_FALSE(std::filesystem::exists(file("items")));
    startSession();
    EXPECT_EQ(readPassword("ann"), "secret");
}

TEST_F(SecretServiceTest, ABusThatIsKilledMidwayTakesNothingWithIt) {
    std::atomic<int> added = 0;
    OSStatus last = errSecSuccess;
    std::thread adder([&] {
        for (;;) {
            const std::string name = std::to_string(added);
            last = addPassword(name, "secret of " + name);
            if (last != errSecSuccess)
                return;
            ++added;
            added.notify_one();
        }
    });
    for (int count = 0; count < 10; count = added)
        added.wait(count);
    session->killBus();
    adder.join();
    EXPECT_EQ(last, errSecNotAvailable);
    EXPECT_EQ(readPassword("0"), "status " + std::to_string(errSecNotAvailable));
    EXPECT_FALSE(std::filesystem::exists(file("items")));
    endSession();
    startSession();
    for (int item = 0; item < added; ++item)
        EXPECT_EQ(readPassword(std::to_string(item)), "secret of " + std::to_string(item));
}

TEST_F(SecretServiceTest, HasOneConnectionWhateverTheNumberOfThreads) {
    ASSERT_EQ(addPassword("ann", "secret"), errSecSuccess);
    std::vector<std::thread> readers;
    for (int reader = 0; reader < 8; ++reader)
        readers.emplace_back([] {
            for (int i = 0; i < 20; ++i)
                EXPECT_EQ(readPassword("ann"), "secret");
        });
    for (std::thread& reader : readers)
        reader.join();
    EXPECT_EQ(SecretSession::connectionsOf(getpid()), 1);
}

TEST_F(SecretServiceTest, IsFoundAgainAfterItsOwnEnd) {
    ASSERT_EQ(addPassword("ann", "secret"), errSecSuccess);
    session->restartKeyring();
    EXPECT_EQ(readPassword("ann"), "secret");
    EXPECT_EQ(addPassword("bob", "secret"), errSecSuccess);
}

TEST_F(SecretServiceTest, AForkedProcessIsToldThatItHasNone) {
    ASSERT_EQ(addPassword("ann", "secret"), errSecSuccess);
    EXPECT_EQ(runInChild([] { return readPassword("ann"); }),
              "status " + std::to_string(errSecNotAvailable));
    EXPECT_EQ(readPassword("ann"), "secret");
}

/// ULA_SECRETS=100 takes two minutes: the service writes all of them with each.
int secretsOfAProcess() {
    const char* const wanted = std::getenv("ULA_SECRETS");
    return wanted != nullptr ? std::atoi(wanted) : 10;
}

TEST_F(SecretServiceTest, NothingIsLostAmongEightProcesses) {
    const int items = secretsOfAProcess();
    std::vector<std::unique_ptr<ChildProcess>> children;
    for (int child = 0; child < 8; ++child)
        children.push_back(std::make_unique<ChildProcess>([child, items] {
            for (int item = 0; item < items; ++item) {
                // One name of the process's own, one for which they compete.
                const std::string own = std::to_string(child) + "-" + std::to_string(item);
                const OSStatus shared = addPassword(std::to_string(item), "shared");
                if (addPassword(own, own) != errSecSuccess ||
                    (shared != errSecSuccess && shared != errSecDuplicateItem))
                    _exit(1);
            }
            _exit(0);
        }));
    for (const auto& child : children)
        EXPECT_EQ(child->wait(), 0);
    for (int item = 0; item < items; ++item) {
        EXPECT_EQ(removePassword(std::to_string(item)), errSecSuccess);
        EXPECT_EQ(findPassword(std::to_string(item)), errSecItemNotFound);
        for (int child = 0; child < 8; ++child) {
            const std::string own = std::to_string(child) + "-" + std::to_string(item);
            EXPECT_EQ(readPassword(own), own);
        }
    }
}

TEST_F(SecretServiceTest, AnItemOfTheFileIsFoundThere) {
    endSession();
    ASSERT_EQ(addPassword("ann", "secret"), errSecSuccess);
    startSession();
    EXPECT_EQ(readPassword("ann"), "secret");
    EXPECT_EQ(addPassword("ann", "other"), errSecDuplicateItem);
    EXPECT_EQ(addPassword("bob", "secret"), errSecSuccess);
    EXPECT_EQ(defaultPath(), file("items"));
}

TEST_F(SecretServiceTest, TheOtherStoreRefusesTheSameName) {
    ASSERT_EQ(addPassword("ann", "secret"), errSecSuccess);
    CFArrayRef list = nullptr;
    ASSERT_EQ(SecKeychainCopySearchList(&list), errSecSuccess);
    ASSERT_EQ(CFArrayGetCount(list), 2);
    const auto other =
        static_cast<SecKeychainRef>(const_cast<void*>(CFArrayGetValueAtIndex(list, 1)));
    ASSERT_EQ(SecKeychainSetDefault(other), errSecSuccess);
    EXPECT_EQ(defaultPath(), file("items"));
    EXPECT_EQ(addPassword("ann", "other"), errSecDuplicateItem);
    EXPECT_EQ(addPassword("bob", "other"), errSecSuccess);
    EXPECT_TRUE(std::filesystem::exists(file("items")));
    EXPECT_EQ(readPassword("ann"), "secret");
    CFRelease(list);
}

TEST(WithoutASecretService, ABusAloneIsNoKeychain) {
    const TemporaryFolder home;
    setenv("XDG_DATA_HOME", home.path().c_str(), 1);
    unsetenv("XDG_RUNTIME_DIR");
    writeFile(home / "bus.conf",
              "<busconfig><type>session</type><listen>unix:tmpdir=/tmp</listen>"
              "<policy context=\"default\"><allow send_destination=\"*\" eavesdrop=\"true\"/>"
              "<allow eavesdrop=\"true\"/><allow own=\"*\"/></policy></busconfig>");
    const SessionBus bus(home / "bus.conf");
    EXPECT_EQ(findPassword("ann"), errSecItemNotFound);
    EXPECT_EQ(addPassword("ann", "secret"), errSecSuccess);
    EXPECT_EQ(readPassword("ann"), "secret");
    EXPECT_TRUE(std::filesystem::exists(home / "ula/keychain/items"));
}

}  // namespace
}  // namespace tav::test
