// SPDX-License-Identifier: MIT
#include "tests/support/OwnVolumes.h"

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    tav::test::makeOwnVolumes();
    return RUN_ALL_TESTS();
}
