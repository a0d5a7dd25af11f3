// SPDX-License-Identifier: MIT
// The list of displays with a server of the test's own.
#include "ApplicationServices/DisplayList.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <sys/eventfd.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace displays {
namespace {

/// What the server has, and what it does.
struct Machine {
    Machine() : descriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}
    ~Machine() { close(descriptor); }

    void tell(Server::News what) {
        news.push_back(what);
        eventfd_write(descriptor, 1);
    }

    int descriptor;
    bool isReachable = true;
    Displays displays;
    std::deque<Server::News> news;
    std::function<void()> whileReading;
    int connections = 0;
    int reads = 0;
    int abandoned = 0;
};

class FakeServer : public Server {
public:
    explicit FakeServer(Machine& machine) : _machine(machine) { ++machine.connections; }
    int descriptor() const override { return _machine.descriptor; }
    News takeNews() override {
        eventfd_t count;
        eventfd_read(_machine.descriptor, &count);
        News most = News::None;
        for (const News news : _machine.news)
            most = std::max(most, news);
        _machine.news.clear();
        return most;
    }
    Displays read() override {
        ++_machine.reads;
        const Displays answer = _machine.displays;
        if (const auto hook = std::exchange(_machine.whileReading, nullptr))
            hook();
        return answer;
    }
    void abandon() override { ++_machine.abandoned; }

private:
    Machine& _machine;
};

Display display(std::uint32_t id, int x) {
    Display made;
    made.id = id;
    made.frame = {x, 0, 100, 50};
    return made;
}

struct Told {
    std::vector<Change> changes;
    std::function<void()> also;

    static void note(CGDirectDisplayID id, CGDisplayChangeSummaryFlags flags, void* self) {
        auto* const told = static_cast<Told*>(self);
        told->changes.push_back({id, flags});
        if (told->also)
            told->also();
    }
};

class DisplayListTest : public testing::Test {
protected:
    DisplayListTest() { machine.displays = {display(1, 0)}; }

    void plugIn(std::uint32_t id) {
        machine.displays.push_back(display(id, static_cast<int>(id) * 100));
        machine.tell(Server::News::Arrangement);
    }
    /// Serves what is ready now.
    void runOnce() { CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, false); }

    Machine machine;
    DisplayList list{[this]() -> std::unique_ptr<Server> {
        if (!machine.isReachable)
            return nullptr;
        return std::make_unique<FakeServer>(machine);
    }};
    Told told;
};

TEST_F(DisplayListTest, ServerIsAskedOnceUntilItHasNews) {
    const DisplayList::Snapshot first = list.current();
    ASSERT_EQ(first->size(), 1u);
    EXPECT_EQ(list.current(), first);
    EXPECT_EQ(machine.reads, 1);
    plugIn(2);
    EXPECT_EQ(list.current()->size(), 2u);
    EXPECT_EQ(machine.reads, 2);
    EXPECT_EQ(machine.connections, 1);
}

TEST_F(DisplayListTest, NewsThatChangesNothingKeepsTheSnapshot) {
    const DisplayList::Snapshot first = list.current();
    machine.tell(Server::News::UsableAreas);
    EXPECT_EQ(list.current(), first);
    EXPECT_EQ(machine.reads, 2);
}

TEST_F(DisplayListTest, NewsThatComesDuringAReadIsNotMissed) {
    list.current();
    machine.whileReading = [this] { plugIn(3); };
    plugIn(2);
    EXPECT_EQ(list.current()->size(), 3u);
}

TEST_F(DisplayListTest, ListenersAreToldOnTheRunLoop) {
    list.add(Told::note, &told);
    plugIn(2);
    list.current();
    EXPECT_TRUE(told.changes.empty());
    runOnce();
    ASSERT_EQ(told.changes.size(), 1u);
    EXPECT_EQ(told.changes[0].id, 2u);
    EXPECT_TRUE(told.changes[0].flags & kCGDisplayAddFlag);
    EXPECT_TRUE(list.remove(Told::note, &told));
}

TEST_F(DisplayListTest, RunLoopTakesTheNewsByItself) {
    list.add(Told::note, &told);
    plugIn(2);
    while (told.changes.empty())
        CFRunLoopRunInMode(kCFRunLoopDefaultMode, 60, true);
    EXPECT_EQ(told.changes[0].id, 2u);
    list.remove(Told::note, &told);
}

TEST_F(DisplayListTest, LookupOfAnotherThreadIsToldOnTheMainOne) {
    list.add(Told::note, &told);
    std::thread::id teller;
    told.also = [&] { teller = std::this_thread::get_id(); };
    plugIn(2);
    std::thread([this] { list.current(); }).join();
    EXPECT_TRUE(told.changes.empty());
    runOnce();
    EXPECT_EQ(teller, std::this_thread::get_id());
    list.remove(Told::note, &told);
}

TEST_F(DisplayListTest, WhatWasBeforeTheRegistrationIsNotTold) {
    list.current();
    plugIn(2);
    list.add(Told::note, &told);
    runOnce();
    EXPECT_TRUE(told.changes.empty());
    list.remove(Told::note, &told);
}

TEST_F(DisplayListTest, RegisteredTwiceIsToldTwiceAndRemovedOneByOne) {
    list.add(Told::note, &told);
    list.add(Told::note, &told);
    plugIn(2);
    list.current();
    runOnce();
    EXPECT_EQ(told.changes.size(), 2u);
    EXPECT_TRUE(list.remove(Told::note, &told));
    EXPECT_TRUE(list.remove(Told::note, &told));
    EXPECT_FALSE(list.remove(Told::note, &told));
}

TEST_F(DisplayListTest, ListenerRemovedByAnotherIsNotTold) {
    Told other;
    list.add(Told::note, &told);
    list.add(Told::note, &other);
    told.also = [&] { list.remove(Told::note, &other); };
    plugIn(2);
    list.current();
    runOnce();
    EXPECT_EQ(told.changes.size(), 1u);
    EXPECT_TRUE(other.changes.empty());
    list.remove(Told::note, &told);
}

TEST_F(DisplayListTest, RunLoopHasNothingToDoOnceNobodyListens) {
    list.add(Told::note, &told);
    plugIn(2);
    list.current();
    list.remove(Told::note, &told);
    EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 60, false), kCFRunLoopRunFinished);
    EXPECT_TRUE(told.changes.empty());
}

TEST_F(DisplayListTest, ChangeIsToldAlsoAfterOneWhoseListenerThrew) {
    list.add(Told::note, &told);
    told.also = [this] {
        told.also = nullptr;
        throw std::runtime_error("no");
    };
    machine.displays = {display(1, 0), display(2, 100), display(3, 200)};
    machine.tell(Server::News::Arrangement);
    list.current();
    EXPECT_THROW(runOnce(), std::runtime_error);
    runOnce();
    EXPECT_EQ(told.changes.size(), 2u);
    list.remove(Told::note, &told);
}

TEST_F(DisplayListTest, LostServerTakesItsDisplaysAlong) {
    list.add(Told::note, &told);
    machine.isReachable = false;
    machine.tell(Server::News::Lost);
    while (told.changes.empty())
        CFRunLoopRunInMode(kCFRunLoopDefaultMode, 60, true);
    EXPECT_TRUE(told.changes[0].flags & kCGDisplayRemoveFlag);
    EXPECT_TRUE(list.current()->empty());
    list.remove(Told::note, &told);
}

TEST_F(DisplayListTest, ServerThatIsNotThereIsNotAskedForAtEachLook) {
    int attempts = 0;
    DisplayList none([&]() -> std::unique_ptr<Server> {
        ++attempts;
        return nullptr;
    });
    for (int i = 0; i < 100; ++i)
        EXPECT_TRUE(none.current()->empty());
    EXPECT_LE(attempts, 2);
}

TEST_F(DisplayListTest, ForkedChildMakesAConnectionOfItsOwn) {
    list.current();
    list.prepareFork();
    const pid_t child = fork();
    list.finishFork(child == 0);
    if (child == 0) {
        const bool isNew = list.current()->size() == 1 && machine.connections == 2;
        _exit(isNew && machine.abandoned == 1 ? 0 : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(list.current()->size(), 1u);
    EXPECT_EQ(machine.connections, 1);
}

}  // namespace
}  // namespace displays
