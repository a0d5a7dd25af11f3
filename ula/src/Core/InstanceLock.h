// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
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

/// Gives what the function opens, which children made by fork(2) do not have: none is made between
/// the opening and its being known. Fails: as the function does.
int openInThisProcess(const std::function<int()>& opener);
void closeInThisProcess(int descriptor);

}  // namespace tav::ula
