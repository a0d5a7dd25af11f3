// SPDX-License-Identifier: MIT
#include "ula/foundation/util/Function0.h"

#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>

namespace tav::util {
namespace {

int freeCalls = 0;
void freeFunction() {
    ++freeCalls;
}

struct Object {
    void member() { ++calls; }
    int constant() const { return calls; }
    int calls = 0;
};

TEST(Function0Test, CallsAFreeFunctionAMemberAndALambda) {
    freeCalls = 0;
    Function0<void>{freeFunction}();
    EXPECT_EQ(freeCalls, 1);
    Object object;
    Function0<void>(&object, &Object::member)();
    EXPECT_EQ(object.calls, 1);
    EXPECT_EQ(Function0<int>(static_cast<const Object*>(&object), &Object::constant)(), 1);
    int seen = 0;
    Function0<void>([&] { seen = 5; })();
    EXPECT_EQ(seen, 5);
}

TEST(Function0Test, IsEmptyWhenDefaultMade) {
    EXPECT_TRUE(Function0<void>().empty());
    EXPECT_FALSE(Function0<void>());
    EXPECT_TRUE(Function0<void>(freeFunction));
}

TEST(Function0Test, ACloneIsACopyOfItsOwn) {
    auto state = std::make_shared<int>(0);
    std::unique_ptr<Function0<void>> clone;
    {
        const Function0<void> original([state] { ++*state; });
        clone.reset(original.clone());
    }
    (*clone)();
    EXPECT_EQ(*state, 1);
}

struct Counted {
    explicit Counted(int& theAlive) : alive(theAlive) { ++alive; }
    Counted(const Counted& other) : alive(other.alive) { ++alive; }
    ~Counted() { --alive; }
    int& alive;
};

/// Does not fit into the object itself.
struct Large {
    int operator()() { return ++calls; }
    int calls = 0;
    void* words[20] = {};
};

TEST(Function0Test, NullPointersAndEmptyFunctionsAreEmpty) {
    int (*const none)() = nullptr;
    EXPECT_TRUE(Function0<int>(none).empty());
    EXPECT_TRUE(Function0<int>(std::function<int()>()).empty());
    EXPECT_TRUE(Function0<int>(nullptr).empty());
    EXPECT_FALSE(Function0<int>(std::function<int()>([] { return 1; })).empty());
}

TEST(Function0Test, CallingAnEmptyOneThrows) {
    EXPECT_THROW(Function0<void>()(), std::bad_function_call);
}

TEST(Function0Test, CopiesHaveAStateOfTheirOwnWhateverTheirSize) {
    const Function0<int> large{Large()};
    const Function0<int> small([calls = 0]() mutable { return ++calls; });
    for (const Function0<int>& original : {large, small}) {
        EXPECT_EQ(original(), 1);
        const Function0<int> copy(original);
        EXPECT_EQ(original(), 2);
        EXPECT_EQ(copy(), 2);
    }
}

TEST(Function0Test, MovingLeavesAnEmptyOneBehind) {
    for (Function0<int> original : {Function0<int>(Large()), Function0<int>([] { return 1; })}) {
        Function0<int> moved(std::move(original));
        EXPECT_TRUE(original.empty());
        original = std::move(moved);
        EXPECT_TRUE(moved.empty());
        EXPECT_EQ(original(), 1);
    }
}

TEST(Function0Test, WhatItHoldsIsDestroyedOnce) {
    int alive = 0;
    {
        Function0<void> first([counted = Counted(alive)] {});
        Function0<void> second([counted = Counted(alive), words = Large()] {});
        EXPECT_EQ(alive, 2);
        Function0<void> third(first);
        first.swap(second);
        third = second;
        Function0<void>& self = third;
        third = self;
        EXPECT_EQ(alive, 3);
        first = Function0<void>();
        EXPECT_EQ(alive, 2);
    }
    EXPECT_EQ(alive, 0);
}

TEST(Function0Test, SwapExchangesFullAndEmptyOnes) {
    Function0<int> full([] { return 1; });
    Function0<int> empty;
    full.swap(empty);
    EXPECT_TRUE(full.empty());
    EXPECT_EQ(empty(), 1);
}

TEST(Function0Test, ResultOfAVoidFunctionIsDropped) {
    int calls = 0;
    const Function0<void> function([&] { return ++calls; });
    function();
    EXPECT_EQ(calls, 1);
}

TEST(Function0Test, CopyThatThrowsLeavesTheTargetAsItWas) {
    struct Refusing {
        Refusing() = default;
        Refusing(const Refusing& other) : refuses(other.refuses) {
            if (refuses)
                throw std::runtime_error("no copies");
        }
        int operator()() { return refuses = true; }
        bool refuses = false;
    };
    const Function0<int> refusing{Refusing()};
    refusing();
    Function0<int> target([] { return 7; });
    EXPECT_THROW(target = refusing, std::runtime_error);
    EXPECT_EQ(target(), 7);
}

}  // namespace
}  // namespace tav::util
