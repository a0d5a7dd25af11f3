// SPDX-License-Identifier: MIT
#include "ula/foundation/util/Signal.h"

#include "ula/foundation/util/Function0.h"

#include <atomic>
#include <barrier>
#include <gmock/gmock.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

namespace tav::util {
namespace {

using testing::ElementsAre;

TEST(SignalTest, CallsEverySlotInTheOrderOfConnection) {
    Signal0 signal;
    std::vector<int> calls;
    signal.connect([&] { calls.push_back(1); });
    signal.connect(Function0<void>([&] { calls.push_back(2); }));
    const Signal0& constant = signal;
    constant.emit();
    EXPECT_THAT(calls, ElementsAre(1, 2));
}

TEST(SignalTest, WithoutSlotsEmittingDoesNothing) {
    const Signal0 signal;
    signal.emit();
    EXPECT_EQ(signal.slotCount(), 0U);
}

TEST(SignalTest, ArgumentsReachEverySlot) {
    Signal<const std::string&, int> signal;
    std::string seen;
    for (int i = 0; i < 2; ++i)
        signal.connect(
            [&](const std::string& text, int number) { seen += text + std::to_string(number); });
    signal.emit("a", 1);
    EXPECT_EQ(seen, "a1a1");
}

TEST(SignalTest, ADisconnectedSlotIsNotCalled) {
    Signal0 signal;
    int calls = 0;
    Connection connection = signal.connect([&] { ++calls; });
    EXPECT_TRUE(connection.isConnected());
    connection.disconnect();
    connection.disconnect();
    signal.emit();
    EXPECT_EQ(calls, 0);
    EXPECT_FALSE(connection.isConnected());
    EXPECT_EQ(signal.slotCount(), 0U);
}

TEST(SignalTest, ASlotMayDisconnectItselfAndLaterSlots) {
    Signal0 signal;
    std::vector<int> calls;
    Connection own, later;
    own = signal.connect([&] {
        calls.push_back(1);
        own.disconnect();
        later.disconnect();
    });
    later = signal.connect([&] { calls.push_back(2); });
    signal.connect([&] { calls.push_back(3); });
    signal.emit();
    signal.emit();
    EXPECT_THAT(calls, ElementsAre(1, 3, 3));
}

TEST(SignalTest, ASlotConnectedDuringAnEmissionIsCalledByTheNext) {
    Signal0 signal;
    int calls = 0;
    Connection first;
    first = signal.connect([&] {
        first.disconnect();
        signal.connect([&] { ++calls; });
    });
    signal.emit();
    EXPECT_EQ(calls, 0);
    signal.emit();
    EXPECT_EQ(calls, 1);
}

TEST(SignalTest, ASlotMayEmitAgain) {
    Signal<int> signal;
    std::vector<int> calls;
    signal.connect([&](int depth) {
        calls.push_back(depth);
        if (depth < 3)
            signal.emit(depth + 1);
    });
    signal.emit(1);
    EXPECT_THAT(calls, ElementsAre(1, 2, 3));
}

TEST(SignalTest, ASlotMayDestroyTheSignalAndTheSlotsAfterItAreNotCalled) {
    auto signal = std::make_unique<Signal0>();
    auto state = std::make_shared<int>(0);
    int later = 0;
    signal->connect([&, state] {
        signal.reset();
        ++*state;  // the slot's own state is still there
    });
    signal->connect([&] { ++later; });
    signal->emit();
    EXPECT_EQ(*state, 1);
    EXPECT_EQ(later, 0);
    EXPECT_EQ(state.use_count(), 1);
}

TEST(SignalTest, AnExceptionLeavesEmitAndTheSignalGoesOn) {
    Signal0 signal;
    bool isThrowing = true;
    int later = 0;
    signal.connect([&] {
        if (isThrowing)
            throw std::runtime_error("slot");
    });
    signal.connect([&] { ++later; });
    EXPECT_THROW(signal.emit(), std::runtime_error);
    EXPECT_EQ(later, 0);
    isThrowing = false;
    signal.emit();
    EXPECT_EQ(later, 1);
}

TEST(SignalTest, AConnectionOutlivesItsSignal) {
    Connection connection;
    auto state = std::make_shared<int>(0);
    {
        Signal0 signal;
        connection = signal.connect([state] {});
    }
    EXPECT_FALSE(connection.isConnected());
    connection.disconnect();
    connection = Connection();
    EXPECT_EQ(state.use_count(), 1);
}

TEST(SignalTest, ADisconnectedSlotIsDestroyedWhenNobodyEmits) {
    Signal0 signal;
    auto state = std::make_shared<int>(0);
    signal.connect([state] {}).disconnect();
    EXPECT_EQ(state.use_count(), 1);
}

TEST(SignalTest, AnEmptyFunctionDoesNothing) {
    Signal0 signal;
    signal.connect(Signal0::Slot());
    signal.emit();
    EXPECT_EQ(signal.slotCount(), 1U);
}

TEST(SignalTest, ThreadsMayEmitConnectAndDisconnectAtOnce) {
    Signal0 signal;
    std::atomic<int> calls = 0;
    signal.connect([&] { ++calls; });
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&, i] {
            for (int round = 0; round < 3000; ++round) {
                if (i % 2 == 0) {
                    signal.emit();
                } else {
                    Connection connection = signal.connect([&] { ++calls; });
                    connection.disconnect();
                }
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_GE(calls, 6000);
    EXPECT_EQ(signal.slotCount(), 1U);
}

// The thread sanitizer sees whether connect() looks at the signal after the slot can be called.
TEST(SignalTest, ASlotMayDestroyTheSignalWhileConnectReturnsOnAnotherThread) {
    for (int round = 0; round < 200; ++round) {
        auto signal = std::make_unique<Signal0>();
        Signal0* const shared = signal.get();
        std::atomic<bool> isOver = false;
        std::thread emitter([&] {
            while (!isOver) {
                shared->emit();
                std::this_thread::yield();
            }
        });
        shared->connect([&] {
            isOver = true;
            signal.reset();
        });
        emitter.join();
        ASSERT_EQ(signal, nullptr);
    }
}

// What a connection frees at this moment is not read any more.
TEST(SignalTest, AConnectionMayEndOnAnotherThreadWhileTheSignalIsDestroyed) {
    for (int round = 0; round < 200; ++round) {
        auto signal = std::make_unique<Signal0>();
        std::vector<Connection> connections;
        for (int i = 0; i < 200; ++i)
            connections.push_back(signal->connect([] {}));
        std::barrier start(2);
        std::thread other([&] {
            start.arrive_and_wait();
            for (Connection& connection : connections)
                connection.disconnect();
        });
        start.arrive_and_wait();
        signal.reset();
        other.join();
        for (const Connection& connection : connections)
            ASSERT_FALSE(connection.isConnected());
    }
}

}  // namespace
}  // namespace tav::util
