// SPDX-License-Identifier: MIT
#include "ula/InstanceGuard.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <mutex>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace tav::test {

namespace {

using namespace tav::ula;
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
        _changed.wait_for(lock, std::chrono::seconds(20), [&] { return _told.size() >= count; });
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

TEST_F(Guard, OtherApplicationsAreFree) {
    const InstanceClaim first = claim();
    EXPECT_EQ(claim({}, {}, "com.maker.Photo").state, InstanceState::First);
    EXPECT_EQ(claim({}, {}, "com/maker/photo").state, InstanceState::First);
    EXPECT_EQ(claim({}, {}, "../../photo").state, InstanceState::First);
    EXPECT_EQ(claim({}, {}, "").state, InstanceState::First);
    for (const std::string& name : folder.names())
        EXPECT_EQ(name.find('/'), std::string::npos);
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

TEST_F(Guard, APathThatIsTooLongForASocketIsAnError) {
    const std::string deep = folder / std::string(120, 'd');
    const InstanceClaim refused =
        InstanceGuard::claim("com.maker.photo", {}, {}, {InstanceScope::User, deep});
    EXPECT_EQ(refused.state, InstanceState::Failed);
    EXPECT_NE(refused.error.find("long"), std::string::npos);
}

TEST_F(Guard, AStoppedInstanceIsStillTheOne) {
    const auto other = otherInstance();
    other->signal(SIGSTOP);
    const InstanceClaim second = claim({"a"});
    EXPECT_EQ(second.state, InstanceState::Running);
    EXPECT_NE(second.error, "");
}

/// Root's, and one of a user who can be told nothing.
TEST_F(Guard, OneForTheMachineHoldsAgainstOtherUsers) {
    setenv("XDG_DATA_HOME", folder.path().c_str(), 1);
    const std::string shared = folder / "shared";
    std::filesystem::create_directory(shared);
    chmod(folder.path().c_str(), 0755);
    chmod(shared.c_str(), 01777);
    const InstanceGuardOptions options = {InstanceScope::Machine, shared};
    auto stateForNobody = [&] {
        ChildProcess child([&] {
            if (setgid(65534) != 0 || setuid(65534) != 0)
                _exit(1);
            begun.put(letterOf(InstanceGuard::claim("com.maker.photo", {}, {}, options).state));
        });
        return begun.get();
    };
    EXPECT_EQ(stateForNobody(), 'F');
    const InstanceClaim first = InstanceGuard::claim("com.maker.photo", {}, {}, options);
    EXPECT_EQ(first.state, InstanceState::First);
    EXPECT_EQ(stateForNobody(), 'R');
}

}  // namespace

}  // namespace tav::test
