// SPDX-License-Identifier: MIT
#pragma once

#include <unistd.h>
#include <utility>

namespace appkit {

// Owns a descriptor; negative is none.
class FileDescriptor {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int descriptor) : _descriptor(descriptor) {}
    FileDescriptor(FileDescriptor&& other) noexcept
        : _descriptor(std::exchange(other._descriptor, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(_descriptor, other._descriptor);
        return *this;
    }
    ~FileDescriptor() {
        if (_descriptor >= 0)
            ::close(_descriptor);
    }

    int get() const { return _descriptor; }
    bool valid() const { return _descriptor >= 0; }
    int release() { return std::exchange(_descriptor, -1); }

private:
    int _descriptor = -1;
};

}  // namespace appkit
