// SPDX-License-Identifier: MIT
#pragma once

#include "fuzz/Expect.h"

#include <cstdlib>
#include <string>

/// A folder of this process in memory, so that the fuzzer does not wait for a disk. It stays when
/// the process ends; TMPDIR says where it is made, so that whoever starts the fuzzer can clear up.
inline const std::string& fuzzFolder() {
    static const std::string path = [] {
        const char* const place = std::getenv("TMPDIR");
        std::string name = std::string(place != nullptr ? place : "/dev/shm") + "/ula-fuzz-XXXXXX";
        expect(mkdtemp(name.data()) != nullptr);
        return name;
    }();
    return path;
}
