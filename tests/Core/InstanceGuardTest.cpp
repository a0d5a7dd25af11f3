// SPDX-License-Identifier: MIT
#include "ula/InstanceGuard.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/Patience.h"
#include "tests/support/TemporaryFolder.h"

#include <algorithm>
#include <chrono>
#include <clocale>
#include <condition_variable>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <mutex>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace tav::test {

namespace {

using namespace tav::ula;
namespace fs = std::filesystem;
using Arguments = InstanceGuard::Arguments;

/// What a listener was told, for a test to wait for.
class Told {
public:
    InstanceGuard::Listener listener() {
        return [this](const Arguments& arguments) {
            const std::lock_guard lock(_mutex);
            _told.push_back(arguments);
            _changed.notify_all();
        };
    }
    std::vector<Arguments> waitFor(std::size_t count) {
        std::unique_lock lock(_mutex);
        _changed.wait_for(lock, kPatience, [&] { return _told.size() >= count; });
        return _told;
    }

private:
    std::mutex _mutex;
    std::condition_variable _changed;
    std::vector<Arguments> _told;
};

/// One line of processes that wait for each other.
class Pipe {
public:
    Pipe() {
        if (pipe(_ends) != 0)
            throw std::runtime_error("cannot make a pipe");
    }
    ~Pipe() {
        close(_ends[0]);
        close(_ends[1]);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    void put(char byte) const { ASSERT_EQ(write(_ends[1], &byte, 1), 1); }
    char get() const {
        char byte = 0;
        return read(_ends[0], &byte, 1) == 1 ? byte : '\0';
    }

private:
    int _ends[2];
};

char letterOf(InstanceState state) {
    return "FDRX"[static_cast<int>(state)];
}

class Guard : public testing::Test {
protected:
    InstanceClaim claim(const Arguments& arguments = {}, InstanceGuard::Listener listener = {},
                        const char* identifier = "com.maker.photo") {
        return InstanceGuard::claim(identifier, arguments, std::move(listener),
                                    {InstanceScope::User, folder.path().string()});
    }
    /// A first instance in a process of its own, which stays until it is killed.
    std::unique_ptr<ChildProcess> otherInstance() {
        auto process = std::make_unique<ChildProcess>([this] {
            const InstanceClaim own = claim();
            begun.put(letterOf(own.state));
            never.get();
        });
        EXPECT_EQ(begun.get(), 'F');
        return process;
    }

    TemporaryFolder folder;
    Pipe begun;
    Pipe never;
};

TEST_F(Guard, TheFirstClaimIsTheFirstInstance) {
    const InstanceClaim first = claim();
    EXPECT_EQ(first.state, InstanceState::First);
    EXPECT_NE(first.guard, nullptr);
    EXPECT_EQ(first.error, "");
}

TEST_F(Guard, TheSecondHandsItsArgumentsOver) {
    Told told;
    const InstanceClaim first = claim({"unused"}, told.listener());
    const Arguments arguments = {"--open", "a file.jpg", "", "new\nline", "Gr\u00fcn"};
    const InstanceClaim second = claim(arguments);
    EXPECT_EQ(second.state, InstanceState::Forwarded);
    EXPECT_EQ(second.guard, nullptr);
    EXPECT_EQ(told.waitFor(1), (std::vector<Arguments>{arguments}));
}

TEST_F(Guard, NoArgumentsAndManyArriveInOrder) {
    Told told;
    const InstanceClaim first = claim({}, told.listener());
    const Arguments many(20000, std::string(100, 'x'));
    EXPECT_EQ(claim({}).state, InstanceState::Forwarded);
    EXPECT_EQ(claim(many).state, InstanceState::Forwarded);
    EXPECT_EQ(told.waitFor(2), (std::vector<Arguments>{{}, many}));
}

TEST_F(Guard, WhatAListenerThrowsDoesNotEndTheGuard) {
    Told told;
    const InstanceClaim first = claim({}, [&](const Arguments& arguments) {
        told.listener()(arguments);
        throw std::runtime_error("listener");
    });
    EXPECT_EQ(claim({"1"}).state, InstanceState::Forwarded);
    EXPECT_EQ(claim({"2"}).state, InstanceState::Forwarded);
    EXPECT_EQ(told.waitFor(2), (std::vector<Arguments>{{"1"}, {"2"}}));
}

TEST_F(Guard, WhenTheFirstEndsTheNextIsTheFirst) {
    InstanceClaim first = claim();
    first.guard.reset();
    EXPECT_EQ(claim().state, InstanceState::First);
}

TEST_F(Guard, ACrashLeavesNothingBehind) {
    for (int round = 0; round < 50; ++round) {
        const auto other = otherInstance();
        EXPECT_EQ(claim().state, InstanceState::Forwarded);
        other->kill();
        EXPECT_EQ(claim().state, InstanceState::First);
    }
}

TEST_F(Guard, OfManyThatStartTogetherOneIsTheFirst) {
    constexpr int kInstances = 16;
    for (int round = 0; round < 10; ++round) {
        const Pipe go, end;
        std::vector<std::unique_ptr<ChildProcess>> instances;
        for (int i = 0; i < kInstances; ++i)
            instances.push_back(std::make_unique<ChildProcess>([&] {
                go.get();
                const InstanceClaim own = claim({std::to_string(i)});
                begun.put(letterOf(own.state));
                end.get();
            }));
        for (int i = 0; i < kInstances; ++i)
            go.put('g');
        std::string states;
        for (int i = 0; i < kInstances; ++i)
            states += begun.get();
        EXPECT_EQ(std::count(states.begin(), states.end(), 'F'), 1) << states;
        EXPECT_EQ(std::count(states.begin(), states.end(), 'D'), kInstances - 1) << states;
    }
}

TEST_F(Guard, AForkedChildDoesNotHoldItOn) {
    InstanceClaim first = claim();
    const ChildProcess child([this] {
        begun.put('b');
        never.get();
    });
    EXPECT_EQ(begun.get(), 'b');
    first.guard.reset();
    EXPECT_EQ(claim().state, InstanceState::First);
}

/// As one does that could not run a program, and leaves the function that made it.
TEST_F(Guard, AForkedChildThatDestroysItTakesNothingDown) {
    Told told;
    InstanceClaim first = claim({}, told.listener());
    ChildProcess child([&first] { first.guard.reset(); });
    EXPECT_EQ(child.wait(), 0);
    EXPECT_EQ(claim({"a"}).state, InstanceState::Forwarded);
    EXPECT_EQ(told.waitFor(1), (std::vector<Arguments>{{"a"}}));
}

TEST_F(Guard, OtherApplicationsAreFree) {
    const InstanceClaim first = claim();
    EXPECT_EQ(claim({}, {}, "com.maker.Photo").state, InstanceState::First);
    EXPECT_EQ(claim({}, {}, "com/maker/photo").state, InstanceState::First);
    EXPECT_EQ(claim({}, {}, "../../photo").state, InstanceState::First);
    EXPECT_EQ(claim({}, {}, "").state, InstanceState::First);
    for (const std::string& name : folder.names())
        EXPECT_EQ(name.find('/'), std::string::npos);
}

// In it a byte beyond ASCII may be a letter.
TEST_F(Guard, TheFirstIsFoundByWhomeverSetsALocale) {
    const TemporaryFolder locales;
    ASSERT_EQ(
        std::system(("localedef -i de_DE -f ISO-8859-1 " + (locales / "de_DE.ISO-8859-1")).c_str()),
        0);
    setenv("LOCPATH", locales.path().c_str(), 1);
    const char* const identifier = "com.maker.b\xfc"
                                   "cher";
    const InstanceClaim first = claim({}, {}, identifier);
    EXPECT_EQ(first.state, InstanceState::First);
    ASSERT_NE(std::setlocale(LC_ALL, "de_DE.ISO-8859-1"), nullptr);
    EXPECT_EQ(claim({}, {}, identifier).state, InstanceState::Forwarded);
    std::setlocale(LC_ALL, "C");
}

TEST_F(Guard, AFolderThatOthersMayWriteToIsRefused) {
    chmod(folder.path().c_str(), 0777);
    const InstanceClaim refused = claim();
    EXPECT_EQ(refused.state, InstanceState::Failed);
    EXPECT_NE(refused.error.find(folder.path().string()), std::string::npos);
}

TEST_F(Guard, AFolderThatCannotBeMadeIsAnError) {
    writeFile(folder / "file", "");
    const InstanceClaim refused = InstanceGuard::claim(
        "com.maker.photo", {}, {}, {InstanceScope::User, folder / "file/below"});
    EXPECT_EQ(refused.state, InstanceState::Failed);
    EXPECT_NE(refused.error, "");
}

TEST_F(Guard, AFolderIsMadeForItsOwnerAloneWhateverTheUmask) {
    const std::string fresh = folder / "data/instances";
    const mode_t before = umask(002);
    const InstanceClaim first =
        InstanceGuard::claim("com.maker.photo", {}, {}, {InstanceScope::User, fresh});
    umask(before);
    EXPECT_EQ(first.state, InstanceState::First) << first.error;
    EXPECT_EQ(fs::status(fresh).permissions(), fs::perms::owner_all);
}

TEST_F(Guard, APathThatIsTooLongForASocketReachesTheFirst) {
    const InstanceGuardOptions options = {InstanceScope::User, folder / std::string(120, 'd')};
    Told told;
    const InstanceClaim first =
        InstanceGuard::claim("com.maker.photo", {}, told.listener(), options);
    EXPECT_EQ(first.state, InstanceState::First) << first.error;
    const InstanceClaim second = InstanceGuard::claim("com.maker.photo", {"a"}, {}, options);
    EXPECT_EQ(second.state, InstanceState::Forwarded) << second.error;
    EXPECT_EQ(told.waitFor(1), (std::vector<Arguments>{{"a"}}));
}

TEST_F(Guard, ArgumentsBeyondMeasureAreAnErrorAndNoEnd) {
    Told told;
    const InstanceClaim first = claim({}, told.listener());
    const InstanceClaim second = claim(Arguments(9, std::string(1 << 20, 'x')));
    EXPECT_EQ(second.state, InstanceState::Running);
    EXPECT_NE(second.error.find("too long"), std::string::npos) << second.error;
    EXPECT_EQ(claim({"b"}).state, InstanceState::Forwarded);
    EXPECT_EQ(told.waitFor(1), (std::vector<Arguments>{{"b"}}));
}

/// Opened as any file, it would keep the claim until somebody writes to it.
TEST_F(Guard, APipeInTheLocksPlaceIsAnError) {
    EXPECT_EQ(claim().state, InstanceState::First);
    for (const std::string& name : folder.names()) {
        fs::remove(folder / name);
        ASSERT_EQ(mkfifo((folder / name).c_str(), 0600), 0);
    }
    const InstanceClaim refused = claim();
    EXPECT_EQ(refused.state, InstanceState::Failed);
    EXPECT_NE(refused.error, "");
}

TEST_F(Guard, ALinkInTheLocksPlaceIsNotFollowed) {
    EXPECT_EQ(claim().state, InstanceState::First);
    writeFile(folder / "target", "");
    for (const std::string& name : folder.names())
        if (name != "target") {
            fs::remove(folder / name);
            fs::create_symlink(folder / "target", folder / name);
        }
    EXPECT_EQ(claim().state, InstanceState::Failed);
}

TEST_F(Guard, AStoppedInstanceIsStillTheOne) {
    const auto other = otherInstance();
    other->signal(SIGSTOP);
    int status = 0;
    ASSERT_EQ(waitpid(other->id(), &status, WUNTRACED), other->id());
    const InstanceClaim second = claim({"a"});
    EXPECT_EQ(second.state, InstanceState::Running);
    EXPECT_NE(second.error, "");
}

/// Root's, and one of a user who can be told nothing.
class GuardOfTheMachine : public Guard {
protected:
    GuardOfTheMachine() : shared(folder / "shared") {
        setenv("XDG_DATA_HOME", (folder / "data").c_str(), 1);
        fs::create_directory(shared);
        chmod(folder.path().c_str(), 0755);
        chmod(shared.c_str(), 01777);
    }
    ~GuardOfTheMachine() override { unsetenv("XDG_DATA_HOME"); }

    InstanceClaim claimForAll() const {
        return InstanceGuard::claim("com.maker.photo", {"a"}, {}, {InstanceScope::Machine, shared});
    }
    char stateForNobody() {
        const ChildProcess child([&] {
            if (setgid(65534) != 0 || setuid(65534) != 0)
                _exit(1);
            begun.put(letterOf(claimForAll().state));
        });
        return begun.get();
    }

    const std::string shared;
};

TEST_F(GuardOfTheMachine, HoldsAgainstOtherUsers) {
    EXPECT_EQ(stateForNobody(), 'F');
    const InstanceClaim first = claimForAll();
    EXPECT_EQ(first.state, InstanceState::First);
    EXPECT_EQ(stateForNobody(), 'R');
    EXPECT_EQ(claimForAll().state, InstanceState::Forwarded);
}

TEST_F(GuardOfTheMachine, HoldsWhateverTheUmask) {
    const mode_t before = umask(077);
    const InstanceClaim first = claimForAll();
    umask(before);
    EXPECT_EQ(first.state, InstanceState::First) << first.error;
    EXPECT_EQ(stateForNobody(), 'R');
}

/// What all may open, anybody may lock for as long as he likes: only the lock itself is there.
TEST_F(GuardOfTheMachine, NobodyCanKeepOthersWaiting) {
    const InstanceClaim first = claimForAll();
    std::vector<std::string> names;
    for (const auto& item : fs::directory_iterator(shared))
        names.push_back(item.path().extension());
    EXPECT_EQ(names, std::vector<std::string>{".lock"});
}

}  // namespace

}  // namespace tav::test
