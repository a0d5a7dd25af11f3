// SPDX-License-Identifier: MIT
#include "ula/foundation/util/SharedPtr.h"

#include "tests/support/LogCapture.h"

#include <atomic>
#include <gmock/gmock.h>
#include <thread>
#include <vector>

namespace tav::util {
namespace {

using test::assertionLine;
using test::LogCapture;
using testing::ElementsAre;

struct Counted {
    explicit Counted(std::atomic<int>& alive) : _alive(alive) { ++_alive; }
    virtual ~Counted() { --_alive; }
    std::atomic<int>& _alive;
};
struct Derived : Counted {
    using Counted::Counted;
};

class SharedPtrTest : public testing::Test {
protected:
    std::atomic<int> alive = 0;
};

TEST_F(SharedPtrTest, TheLastCopyDeletesTheObject) {
    SharedPtr<Counted> first(new Counted(alive));
    {
        const SharedPtr<Counted> second = first;
        first.reset();
        EXPECT_EQ(alive, 1);
        EXPECT_TRUE(second);
    }
    EXPECT_EQ(alive, 0);
    EXPECT_FALSE(first);
}

TEST_F(SharedPtrTest, AnEmptyOneStandsForNoObject) {
    LogCapture log;
    const SharedPtr<Counted> empty;
    const SharedPtr<Counted> null(static_cast<Counted*>(nullptr));
    EXPECT_TRUE(empty == null);
    EXPECT_EQ(SharedPtr<Counted>(empty).get(), nullptr);
    EXPECT_THAT(log.lines(), testing::IsEmpty());
}

TEST_F(SharedPtrTest, ConvertsToItsBase) {
    const SharedPtr<Derived> derived(new Derived(alive));
    SharedPtr<Counted> base = derived;
    EXPECT_EQ(base.get(), derived.get());
    base.reset(new Counted(alive));
    EXPECT_EQ(alive, 2);
}

TEST_F(SharedPtrTest, AssigningToItselfKeepsTheObject) {
    SharedPtr<Counted> pointer(new Counted(alive));
    const SharedPtr<Counted>& same = pointer;
    pointer = same;
    EXPECT_EQ(alive, 1);
}

TEST_F(SharedPtrTest, AWeakReferenceDoesNotKeepTheObject) {
    SharedPtr<Counted> pointer(new Counted(alive));
    const WeakPtr<Counted> weak(pointer);
    EXPECT_EQ(weak.lock().get(), pointer.get());
    EXPECT_FALSE(weak.expired());
    pointer.reset();
    EXPECT_EQ(alive, 0);
    EXPECT_TRUE(weak.expired());
    EXPECT_FALSE(weak.lock());
    EXPECT_FALSE(WeakPtr<Counted>().lock());
}

TEST_F(SharedPtrTest, LockRacesWithTheLastReleaseWithoutHarm) {
    for (int round = 0; round < 2000; ++round) {
        SharedPtr<Counted> pointer(new Counted(alive));
        const WeakPtr<Counted> weak(pointer);
        std::thread locker([&weak, this] {
            if (const SharedPtr<Counted> strong = weak.lock()) {
                EXPECT_GT(strong->_alive, 0);
            }
            static_cast<void>(this);
        });
        pointer.reset();
        locker.join();
        ASSERT_EQ(alive, 0);
    }
}

TEST_F(SharedPtrTest, CopiesInManyThreadsDeleteOnce) {
    SharedPtr<Counted> pointer(new Counted(alive));
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i)
        threads.emplace_back([copy = pointer] {
            for (int round = 0; round < 10'000; ++round)
                SharedPtr<Counted>(copy).get();
        });
    pointer.reset();
    for (std::thread& thread : threads)
        thread.join();
    threads.clear();
    EXPECT_EQ(alive, 0);
}

TEST_F(SharedPtrTest, ACountBlockThatGoesWhileReferencedIsAsserted) {
    LogCapture log;
    { const CountBlock block; }
    EXPECT_THAT(log.lines(), ElementsAre(assertionLine("util/SharedPtr", 93, "!_refCount")));
}

TEST_F(SharedPtrTest, ACountBlockWithoutAnObjectIsAsserted) {
    LogCapture log;
    { const SharedPtr<Counted> pointer(nullptr, new CountBlock); }
    EXPECT_THAT(log.lines(), ElementsAre(assertionLine("util/SharedPtr", 164, "!_count || obj")));
}

TEST_F(SharedPtrTest, ACountBlockWithoutAReferenceIsAsserted) {
    auto* block = new CountBlock;
    ASSERT_TRUE(block->release());
    LogCapture log;
    {
        Counted object(alive);
        // Takes a reference that was never given: the mistake that the assertion is for.
        const SharedPtr<Counted> pointer(&object, block);
        block->retain();
        block->retain();
    }
    EXPECT_THAT(log.lines(), ElementsAre(assertionLine("util/SharedPtr", 165,
                                                       "!_count || _count->isReferenced()")));
    ASSERT_TRUE(block->release());
    block->releaseWeak();
}

}  // namespace
}  // namespace tav::util
