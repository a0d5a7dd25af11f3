// SPDX-License-Identifier: MIT
// The encrypted file on disks that fail and among processes that die. Needs root.
#include "tests/frameworks/Security/KeychainFixture.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Mounts.h"

#include <atomic>
#include <fcntl.h>
#include <memory>
#include <random>
#include <sys/mount.h>
#include <time.h>

namespace tav::test {
namespace {

/// In memory, where nothing waits for a disk.
class KeychainFaultsTest : public KeychainFixture {
protected:
    KeychainFaultsTest() : KeychainFixture("/dev/shm") {}
};

void waitUntilClosed(int pipeEnd) {
    char none = 0;
    while (read(pipeEnd, &none, 1) != 0)
        continue;
    close(pipeEnd);
}

TEST_F(KeychainFaultsTest, NothingIsLostAmongEightProcesses) {
    constexpr int kItems = 500 / ULA_ROUNDS_DIVISOR;
    std::vector<std::unique_ptr<ChildProcess>> children;
    for (int child = 0; child < 8; ++child)
        children.push_back(std::make_unique<ChildProcess>([child] {
            for (int item = 0; item < kItems; ++item) {
                const std::string name = std::to_string(child) + "-" + std::to_string(item);
                if (addPassword(name, "secret of " + name) != errSecSuccess)
                    _exit(1);
            }
            _exit(0);
        }));
    for (const auto& child : children)
        EXPECT_EQ(child->wait(), 0);
    for (int child = 0; child < 8; ++child) {
        for (int item = 0; item < kItems; ++item) {
            const std::string name = std::to_string(child) + "-" + std::to_string(item);
            ASSERT_EQ(readPassword(name), "secret of " + name);
        }
    }
}

TEST_F(KeychainFaultsTest, OneOfManyAddsAName) {
    Shared<std::atomic<int>> added;
    std::vector<std::unique_ptr<ChildProcess>> children;
    for (int child = 0; child < 8; ++child)
        children.push_back(std::make_unique<ChildProcess>([&] {
            for (int item = 0; item < 50; ++item)
                *added += addPassword(std::to_string(item), "x") == errSecSuccess;
            _exit(0);
        }));
    for (const auto& child : children)
        EXPECT_EQ(child->wait(), 0);
    EXPECT_EQ(added->load(), 50);
}

struct Progress {
    std::atomic<int> begun{0};
    std::atomic<int> done{0};
    std::atomic<int> failed{0};
};

/// Adds items, takes away those before, until it is killed.
void changeForEver(Progress& progress, int ready) {
    for (int item = progress.begun + 1;; ++item) {
        progress.begun = item;
        if (addPassword(std::to_string(item), "secret " + std::to_string(item)) != errSecSuccess)
            ++progress.failed;
        progress.done = item;
        if (ready >= 0)
            close(std::exchange(ready, -1));
        removePassword(std::to_string(item - 3));
    }
}

TEST_F(KeychainFaultsTest, AKilledProcessLeavesTheOldOrTheNew) {
    Shared<Progress> progress;
    std::mt19937 random(7);
    constexpr int kRounds = 400 / ULA_ROUNDS_DIVISOR;
    int inside = 0;
    for (int round = 0; round < kRounds || (inside == 0 && round < kRounds + 1000); ++round) {
        int ends[2];
        ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
        ChildProcess child([&] {
            close(ends[0]);
            changeForEver(*progress, ends[1]);
        });
        close(ends[1]);
        waitUntilClosed(ends[0]);
        const timespec delay{0, std::uniform_int_distribution<long>(0, 1'000'000)(random)};
        nanosleep(&delay, nullptr);
        child.kill();
        const std::string last = std::to_string(progress->done.load());
        ASSERT_EQ(readPassword(last), "secret " + last) << round;
        if (progress->begun > progress->done) {
            ++inside;
            const std::string next = std::to_string(progress->begun.load());
            const std::string secret = readPassword(next);
            ASSERT_TRUE(secret == "secret " + next ||
                        secret == "status " + std::to_string(errSecItemNotFound))
                << secret;
        }
    }
    EXPECT_GT(inside, 0);
    EXPECT_EQ(progress->failed.load(), 0);
    for (const std::string& name : names())
        EXPECT_EQ(readFile(file(name)).find("secret"), std::string::npos) << name;
}

/// A small disk in memory for the keychain's folder.
class SmallDisk : public Mounted {
public:
    explicit SmallDisk(const std::string& point) : Mounted(point) {
        _isMounted = mount("tmpfs", point.c_str(), "tmpfs", 0, "size=64k,mode=0700") == 0;
        EXPECT_TRUE(_isMounted);
    }
    void makeReadOnly() const {
        EXPECT_EQ(mount("tmpfs", point().c_str(), "tmpfs", MS_REMOUNT | MS_RDONLY, ""), 0);
    }
};

TEST_F(KeychainFaultsTest, AFullDiskLeavesWhatWasThere) {
    std::filesystem::create_directories(file(""));
    const SmallDisk disk(file(""));
    ASSERT_EQ(addPassword("ann", "secret"), errSecSuccess);
    EXPECT_EQ(addPassword("bob", std::string(100'000, 'x')), errSecDiskFull);
    EXPECT_EQ(readPassword("ann"), "secret");
    EXPECT_EQ(findPassword("bob"), errSecItemNotFound);
    EXPECT_FALSE(std::filesystem::exists(file("items.new")));
    EXPECT_EQ(addPassword("bob", "short"), errSecSuccess);
}

TEST_F(KeychainFaultsTest, AReadOnlyDiskIsReadAndNotChanged) {
    std::filesystem::create_directories(file(""));
    const SmallDisk disk(file(""));
    ASSERT_EQ(addPassword("ann", "secret"), errSecSuccess);
    disk.makeReadOnly();
    EXPECT_EQ(readPassword("ann"), "secret");
    EXPECT_EQ(addPassword("bob", "secret"), errSecReadOnly);
    EXPECT_EQ(removePassword("ann"), errSecReadOnly);
    EXPECT_EQ(readPassword("ann"), "secret");
}

}  // namespace
}  // namespace tav::test
