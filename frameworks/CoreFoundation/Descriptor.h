// SPDX-License-Identifier: MIT
#pragma once

#include <cerrno>
#include <unistd.h>
#include <utility>

namespace cf {

// Owns a descriptor; negative is none.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int number) : _number(number) {}
    Descriptor(Descriptor&& other) noexcept : _number(std::exchange(other._number, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(_number, other._number);
        return *this;
    }
    ~Descriptor() {
        if (_number >= 0)
            ::close(_number);
    }

    int get() const { return _number; }
    explicit operator bool() const { return _number >= 0; }
    int release() { return std::exchange(_number, -1); }

private:
    int _number = -1;
};

// Repeats a system call that a signal cut short.
template <class Call>
auto retryInterrupted(Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

}  // namespace cf
