// SPDX-License-Identifier: MIT
// The encrypted file: what it keeps, and what becomes of one that is not as it was written.
#include "tests/frameworks/Security/KeychainFixture.h"
#include "tests/support/ChildProcess.h"

#include <functional>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tav::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class KeychainFileTest : public KeychainFixture {
protected:
    // A file with one item, as bytes.
    std::string makeItems() {
        EXPECT_EQ(addPassword("ann", "secret"), errSecSuccess);
        return readFile(file("items"));
    }
    std::string damagedStatus(const std::string& bytes) {
        writeFile(file("items"), bytes);
        const std::string status = readPassword("ann");
        std::filesystem::remove(file("items.damaged-1"));
        return status;
    }
};

constexpr uid_t kNobody = 65534;

/// In a process of a user who is not root.
std::string asNobody(const std::function<std::string()>& work) {
    return runInChild([&] {
        return setresgid(kNobody, kNobody, kNobody) == 0 &&
                       setresuid(kNobody, kNobody, kNobody) == 0
                   ? work()
                   : "not another user";
    });
}

const std::string kInvalid = "status " + std::to_string(errSecInvalidKeychain);
const std::string kRefused = "status " + std::to_string(errSecAuthFailed);

TEST_F(KeychainFileTest, GivesBackWhatWasPutIn) {
    EXPECT_EQ(findPassword("ann"), errSecItemNotFound);
    EXPECT_EQ(addPassword("ann", std::string("a\0b", 3)), errSecSuccess);
    EXPECT_EQ(addPassword("", "of nobody"), errSecSuccess);
    EXPECT_EQ(addPassword("bob", ""), errSecSuccess);
    EXPECT_EQ(readPassword("ann"), std::string("a\0b", 3));
    EXPECT_EQ(readPassword(""), "of nobody");
    EXPECT_EQ(readPassword("bob"), "");
    EXPECT_EQ(removePassword("ann"), errSecSuccess);
    EXPECT_EQ(findPassword("ann"), errSecItemNotFound);
    EXPECT_EQ(readPassword(""), "of nobody");
}

TEST_F(KeychainFileTest, RefusesASecondItemOfAName) {
    EXPECT_EQ(addPassword("ann", "one"), errSecSuccess);
    EXPECT_EQ(addPassword("ann", "two"), errSecDuplicateItem);
    EXPECT_EQ(readPassword("ann"), "one");
}

TEST_F(KeychainFileTest, TellsThatAnItemHasGone) {
    ASSERT_EQ(addPassword("ann", "one"), errSecSuccess);
    SecKeychainItemRef item = nullptr;
    ASSERT_EQ(SecKeychainFindGenericPassword(nullptr, lengthOf(kService), kService, 3, "ann",
                                             nullptr, nullptr, &item),
              errSecSuccess);
    EXPECT_EQ(SecKeychainItemDelete(item), errSecSuccess);
    EXPECT_EQ(SecKeychainItemDelete(item), errSecInvalidItemRef);
    CFRelease(item);
}

TEST_F(KeychainFileTest, IsTheUsersAlone) {
    makeItems();
    struct stat facts {};
    for (const char* name : {"items", "key", "store", "lock"}) {
        ASSERT_EQ(stat(file(name).c_str(), &facts), 0) << name;
        EXPECT_EQ(facts.st_mode & 07777, 0600U) << name;
    }
    ASSERT_EQ(stat(file("").c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 07777, 0700U);
}

TEST_F(KeychainFileTest, IsKeptAsideWhereverItIsCut) {
    const std::string whole = makeItems();
    for (std::size_t length = 0; length < whole.size(); ++length)
        ASSERT_EQ(damagedStatus(whole.substr(0, length)), kInvalid) << length;
    EXPECT_EQ(damagedStatus(whole + "x"), kInvalid);
    writeFile(file("items"), whole);
    EXPECT_EQ(readPassword("ann"), "secret");
}

TEST_F(KeychainFileTest, IsKeptAsideWhicheverBitIsTurned) {
    const std::string whole = makeItems();
    for (std::size_t bit = 0; bit < whole.size() * 8; ++bit) {
        std::string damaged = whole;
        damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << (bit % 8)));
        ASSERT_EQ(damagedStatus(damaged), kInvalid) << bit;
    }
}

TEST_F(KeychainFileTest, IsMissedOnceAndThenBegunAnew) {
    const std::string whole = makeItems();
    writeFile(file("items"), whole.substr(1));
    EXPECT_EQ(addPassword("bob", "new"), errSecInvalidKeychain);
    EXPECT_EQ(readFile(file("items.damaged-1")), whole.substr(1));
    EXPECT_EQ(addPassword("bob", "new"), errSecSuccess);
    writeFile(file("items"), "x");
    EXPECT_EQ(readPassword("bob"), kInvalid);
    EXPECT_EQ(readFile(file("items.damaged-2")), "x");
    EXPECT_EQ(readFile(file("items.damaged-1")), whole.substr(1));
}

TEST_F(KeychainFileTest, IsNotOpenedWithADamagedKey) {
    const std::string whole = makeItems();
    const std::string key = readFile(file("key"));
    for (std::size_t length = 0; length < key.size(); ++length) {
        writeFile(file("key"), key.substr(0, length));
        ASSERT_EQ(readPassword("ann"), kRefused) << length;
    }
    for (std::size_t bit = 0; bit < key.size() * 8; ++bit) {
        std::string damaged = key;
        damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << (bit % 8)));
        writeFile(file("key"), damaged);
        ASSERT_EQ(readPassword("ann"), kRefused) << bit;
    }
    EXPECT_EQ(addPassword("bob", "new"), errSecAuthFailed);
    writeFile(file("key"), key);
    EXPECT_EQ(readPassword("ann"), "secret");
}

TEST_F(KeychainFileTest, StaysWhereItIsWithoutItsKey) {
    const std::string whole = makeItems();
    std::filesystem::rename(file("key"), file("elsewhere"));
    EXPECT_EQ(readPassword("ann"), kRefused);
    EXPECT_EQ(addPassword("bob", "new"), errSecAuthFailed);
    EXPECT_EQ(readFile(file("items")), whole);
    EXPECT_FALSE(std::filesystem::exists(file("key")));
}

TEST_F(KeychainFileTest, StaysWhereItIsBesideAnotherKey) {
    const std::string whole = makeItems();
    std::filesystem::rename(file(""), home / "first");
    makeItems();
    writeFile(file("items"), whole);
    EXPECT_EQ(readPassword("ann"), kRefused);
    EXPECT_EQ(removePassword("ann"), errSecAuthFailed);
    EXPECT_EQ(readFile(file("items")), whole);
}

TEST_F(KeychainFileTest, IsRefusedWhenOthersMayUseItsKey) {
    makeItems();
    for (const int mode : {0640, 0604, 0620, 0601}) {
        std::filesystem::permissions(file("key"), std::filesystem::perms(mode));
        EXPECT_EQ(readPassword("ann"), kRefused) << mode;
    }
    std::filesystem::permissions(file("key"), std::filesystem::perms(0600));
    EXPECT_EQ(readPassword("ann"), "secret");
    ASSERT_EQ(chown(file("key").c_str(), 65534, 65534), 0);
    EXPECT_EQ(readPassword("ann"), kRefused);
}

TEST_F(KeychainFileTest, IsRefusedWhenOthersMayWriteInItsFolder) {
    makeItems();
    std::filesystem::permissions(file(""), std::filesystem::perms(0720));
    EXPECT_EQ(addPassword("bob", "new"), errSecAuthFailed);
}

TEST_F(KeychainFileTest, IsRefusedWhenItsUserMayNotReadIt) {
    makeItems();
    std::filesystem::permissions(home.path(), std::filesystem::perms(0711));
    for (const auto& entry : std::filesystem::recursive_directory_iterator(home.path()))
        ASSERT_EQ(chown(entry.path().c_str(), kNobody, kNobody), 0);
    EXPECT_EQ(asNobody([] { return readPassword("ann"); }), "secret");
    for (const char* name : {"items", "key"}) {
        ASSERT_EQ(chown(file(name).c_str(), 0, 0), 0);
        EXPECT_EQ(asNobody([] { return readPassword("ann"); }), kRefused) << name;
        ASSERT_EQ(chown(file(name).c_str(), kNobody, kNobody), 0);
    }
    // Where new items go is not decided anew then.
    ASSERT_EQ(chown(file("store").c_str(), 0, 0), 0);
    EXPECT_EQ(asNobody([] { return "status " + std::to_string(addPassword("bob", "new")); }),
              kRefused);
    EXPECT_EQ(asNobody([] { return readPassword("ann"); }), "secret");
}

TEST_F(KeychainFileTest, IsRefusedWhenItIsNoFile) {
    makeItems();
    for (const char* name : {"items", "key"}) {
        std::filesystem::rename(file(name), file("elsewhere"));
        ASSERT_EQ(mkfifo(file(name).c_str(), 0600), 0);
        EXPECT_EQ(readPassword("ann"), kRefused) << name;
        std::filesystem::rename(file("elsewhere"), file(name));
    }
    EXPECT_EQ(readPassword("ann"), "secret");
}

TEST_F(KeychainFileTest, TheServiceIsMissedWhenTheChoiceIsUnreadable) {
    makeItems();
    EXPECT_EQ(findPassword("bob"), errSecItemNotFound);
    writeFile(file("store"), "x");
    EXPECT_EQ(findPassword("bob"), errSecNotAvailable);
    EXPECT_EQ(readPassword("ann"), "secret");
}

// GLib would start a bus where there is a display, or the address says so.
TEST_F(KeychainFileTest, NoBusIsStarted) {
    std::filesystem::create_directory(home / "bin");
    writeFile(home / "bin/dbus-launch", "#!/bin/sh\ntouch " + (home / "started") + "\n");
    std::filesystem::permissions(home / "bin/dbus-launch", std::filesystem::perms(0755));
    setenv("PATH", ((home / "bin") + ":" + std::getenv("PATH")).c_str(), 1);
    setenv("DISPLAY", ":987", 1);
    EXPECT_EQ(findPassword("ann"), errSecItemNotFound);
    setenv("DBUS_SESSION_BUS_ADDRESS", "autolaunch:", 1);
    EXPECT_EQ(addPassword("ann", "secret"), errSecSuccess);
    EXPECT_FALSE(std::filesystem::exists(home / "started"));
    EXPECT_TRUE(std::filesystem::exists(file("items")));
}

TEST_F(KeychainFileTest, FollowsNoLinkToItsKey) {
    makeItems();
    std::filesystem::rename(file("key"), home / "key");
    std::filesystem::create_symlink(home / "key", file("key"));
    EXPECT_EQ(readPassword("ann"), kRefused);
}

TEST_F(KeychainFileTest, HoldsNoPlainText) {
    makeItems();
    for (const std::string& name : names()) {
        EXPECT_THAT(readFile(file(name)), Not(HasSubstr("secret"))) << name;
        EXPECT_THAT(readFile(file(name)), Not(HasSubstr("Mail"))) << name;
    }
    EXPECT_THAT(names(), ElementsAre("adding", "items", "key", "lock", "store"));
}

TEST_F(KeychainFileTest, IsWrittenAnewWithAnotherNonce) {
    const std::string first = makeItems();
    ASSERT_EQ(removePassword("ann"), errSecSuccess);
    const std::string second = makeItems();
    EXPECT_EQ(first.size(), second.size());
    EXPECT_NE(first.substr(32, 24), second.substr(32, 24));
    EXPECT_NE(first.substr(72), second.substr(72));
}

TEST_F(KeychainFileTest, TakesItemsUpToItsLimit) {
    const std::string big(std::size_t(9) << 20, 'x');
    EXPECT_EQ(addPassword("ann", big), errSecSuccess);
    EXPECT_EQ(readPassword("ann"), big);
    EXPECT_EQ(addPassword("bob", big), errSecDataTooLarge);
    EXPECT_EQ(addPassword("bob", "small"), errSecSuccess);
}

}  // namespace
}  // namespace tav::test
