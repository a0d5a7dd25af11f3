// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

namespace tav::ula {

/// A file that one process at a time has locked. The file stays; the lock ends with the process. A
/// child made by fork(2) does not hold it.
class InstanceLock {
public:
    enum class Wait { No, Yes };

    InstanceLock() = default;
    ~InstanceLock() { release(); }
    InstanceLock(const InstanceLock&) = delete;
    InstanceLock& operator=(const InstanceLock&) = delete;

    /// Whether it was got. Fails: nothing, with errno.
    std::optional<bool> acquire(const std::string& path, Wait wait);
    void release();
    /// -1 while it is not held.
    int descriptor() const { return _file; }

private:
    int _file = -1;
};

/// Closes the descriptor in children made by fork(2), and forgets it again.
void closeInChildren(int descriptor);
void keepInChildren(int descriptor);

}  // namespace tav::ula
