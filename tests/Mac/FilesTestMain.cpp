// SPDX-License-Identifier: MIT
#include "tests/support/Mounts.h"

#include <cstdio>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const std::string problem = tav::test::isolateMounts();
    if (!problem.empty()) {
        std::fprintf(stderr, "%s\n", problem.c_str());
        return 1;
    }
    return RUN_ALL_TESTS();
}
