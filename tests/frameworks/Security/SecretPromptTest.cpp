// SPDX-License-Identifier: MIT
// Where the user is asked to unlock the keyring.
#include "tests/frameworks/Security/KeychainFixture.h"
#include "tests/frameworks/Security/SecretPrompter.h"
#include "tests/support/SecretSession.h"

#include <ctime>
#include <thread>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#include <sanitizer/lsan_interface.h>
using LeaksAllowed = __lsan::ScopedDisabler;
#define ULA_LEAKS_ARE_LOOKED_FOR
#endif
#endif
#if !defined(ULA_LEAKS_ARE_LOOKED_FOR)
struct [[maybe_unused]] LeaksAllowed {
    LeaksAllowed() {}
};
#endif

namespace tav::test {
namespace {

class SecretPromptTest : public KeychainFixture {
protected:
    SecretPromptTest() {
        session.restartKeyring();
        EXPECT_EQ(addPassword("ann", "secret"), errSecSuccess);
        session.lock();
    }

    SecretSession session;
    SecretPrompter prompter;
};

const std::string kCanceled = "status " + std::to_string(errSecUserCanceled);

TEST_F(SecretPromptTest, APromptThatIsAnsweredUnlocksForReading) {
    prompter.answer("pw");
    EXPECT_EQ(readPassword("ann"), "secret");
    EXPECT_TRUE(prompter.isDone());
    EXPECT_EQ(addPassword("bob", "secret"), errSecSuccess);
}

TEST_F(SecretPromptTest, APromptThatIsAnsweredUnlocksForAdding) {
    prompter.answer("pw");
    EXPECT_EQ(addPassword("bob", "other"), errSecSuccess);
    EXPECT_TRUE(prompter.isDone());
    EXPECT_EQ(readPassword("bob"), "other");
    EXPECT_EQ(removePassword("ann"), errSecSuccess);
}

TEST_F(SecretPromptTest, APromptThatIsDismissedIsAnErrorOfItsOwn) {
    prompter.dismiss();
    EXPECT_EQ(readPassword("ann"), kCanceled);
    EXPECT_TRUE(prompter.isDone());
    prompter.dismiss();
    EXPECT_EQ(removePassword("ann"), errSecUserCanceled);
    EXPECT_TRUE(prompter.isDone());
    prompter.dismiss();
    EXPECT_EQ(addPassword("bob", "secret"), errSecUserCanceled);
    EXPECT_TRUE(prompter.isDone());
    EXPECT_FALSE(std::filesystem::exists(file("items")));
}

TEST_F(SecretPromptTest, AKeyringIsMadeWhereThereIsNone) {
    session.beginWithoutKeyring();
    // As for the first item of all.
    std::filesystem::remove(file("store"));
    prompter.dismiss();
    EXPECT_EQ(addPassword("bob", "secret"), errSecUserCanceled);
    prompter.answer("new");
    EXPECT_EQ(addPassword("bob", "secret"), errSecSuccess);
    EXPECT_TRUE(prompter.isDone());
    EXPECT_EQ(readPassword("bob"), "secret");
}

TEST_F(SecretPromptTest, ABusThatEndsDuringAPromptEndsTheCall) {
    prompter.hesitate();
    std::thread killer([this] {
        // Nobody tells when a prompt shows.
        const timespec pause{0, 1'000'000};
        while (!prompter.isShown())
            nanosleep(&pause, nullptr);
        session.killBus();
    });
    {
        // libsecret loses a prompt whose bus has ended.
        const LeaksAllowed allowed;
        EXPECT_EQ(readPassword("ann"), "status " + std::to_string(errSecNotAvailable));
    }
    killer.join();
    EXPECT_EQ(removePassword("ann"), errSecNotAvailable);
}

TEST_F(SecretPromptTest, AfterAPromptThatWasDismissedTheNextOneCounts) {
    prompter.dismiss();
    EXPECT_EQ(readPassword("ann"), kCanceled);
    prompter.answer("pw");
    EXPECT_EQ(readPassword("ann"), "secret");
    EXPECT_EQ(findPassword("bob"), errSecItemNotFound);
}

}  // namespace
}  // namespace tav::test
