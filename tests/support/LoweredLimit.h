// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace tav::test {

/// A limit of the kernel for the whole system, as a file of /proc/sys has it, while this object
/// lives; restored also when the test is killed. Of what is there already, queues for instance, the
/// limit stays. Needs root. Fails: throws.
class LoweredLimit {
public:
    LoweredLimit(const std::string& file, const std::string& value);
    ~LoweredLimit();
    LoweredLimit(const LoweredLimit&) = delete;
    LoweredLimit& operator=(const LoweredLimit&) = delete;

private:
    /// The end of this one is the restorer's sign to begin, the end of the other its sign that it
    /// is done.
    int _life = -1;
    int _restored = -1;
};

}  // namespace tav::test
