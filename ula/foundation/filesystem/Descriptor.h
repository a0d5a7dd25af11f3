// SPDX-License-Identifier: MIT
#pragma once

#include <cerrno>
#include <unistd.h>
#include <utility>

namespace tav::filesystem {

/// Owns a file descriptor; internal to the foundation.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int descriptor) : _descriptor(descriptor) {}
    Descriptor(Descriptor&& other) noexcept : _descriptor(std::exchange(other._descriptor, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(_descriptor, other._descriptor);
        return *this;
    }
    ~Descriptor() {
        if (_descriptor >= 0)
            ::close(_descriptor);
    }

    int get() const { return _descriptor; }
    explicit operator bool() const { return _descriptor >= 0; }

private:
    int _descriptor = -1;
};

/// Repeats a system call that a signal cut short.
template <class Call>
auto retryInterrupted(Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

}  // namespace tav::filesystem
