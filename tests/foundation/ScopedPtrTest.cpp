// SPDX-License-Identifier: MIT
#include "ula/foundation/util/ScopedPtr.h"

#include "tests/support/LogCapture.h"

#include <gmock/gmock.h>

namespace tav::util {
namespace {

struct Counted {
    explicit Counted(int& alive) : _alive(alive) { ++_alive; }
    ~Counted() { --_alive; }
    int& _alive;
};

TEST(ScopedPtrTest, DeletesOnDestructionAndOnReset) {
    int alive = 0;
    {
        ScopedPtr<Counted> pointer(new Counted(alive));
        pointer.reset(new Counted(alive));
        EXPECT_EQ(alive, 1);
    }
    EXPECT_EQ(alive, 0);
}

TEST(ScopedPtrTest, ReleaseGivesTheObjectUp) {
    int alive = 0;
    ScopedPtr<Counted> pointer(new Counted(alive));
    Counted* object = pointer.release();
    pointer.reset();
    EXPECT_EQ(alive, 1);
    delete object;
}

TEST(ScopedPtrTest, ResettingToThePointerHeldIsAssertedAndKeepsIt) {
    int alive = 0;
    test::LogCapture log;
    {
        ScopedPtr<Counted> pointer(new Counted(alive));
        pointer.reset(pointer.get());
        EXPECT_EQ(alive, 1);
        EXPECT_TRUE(pointer);
    }
    EXPECT_EQ(alive, 0);
    EXPECT_THAT(log.lines(),
                testing::ElementsAre(test::assertionLine("util/ScopedPtr", 56, "p != px")));
}

TEST(ScopedPtrTest, ResettingAnEmptyOneIsSilent) {
    test::LogCapture log;
    ScopedPtr<int> pointer;
    pointer.reset();
    EXPECT_THAT(log.lines(), testing::IsEmpty());
}

}  // namespace
}  // namespace tav::util
