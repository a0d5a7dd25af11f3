// SPDX-License-Identifier: MIT
#pragma once

#include <cstdlib>

/// What has to hold for every input: the fuzzer keeps the one for which it does not.
inline void expect(bool condition) {
    if (!condition)
        std::abort();
}
