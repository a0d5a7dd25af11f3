// SPDX-License-Identifier: MIT
#include "ula/foundation/util/Function0.h"

#include <gtest/gtest.h>
#include <memory>

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

}  // namespace
}  // namespace tav::util
