// SPDX-License-Identifier: MIT
// Of test programs that mount. They need root.
#include "Mounts.h"

#include <cstdio>
#include <gmock/gmock.h>

int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    const std::string problem = tav::test::isolateMounts();
    if (!problem.empty()) {
        std::fprintf(stderr, "these tests mount and need root: %s\n", problem.c_str());
        return 1;
    }
    return RUN_ALL_TESTS();
}
