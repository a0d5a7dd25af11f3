// SPDX-License-Identifier: MIT
#pragma once

#include <CoreFoundation/CoreFoundation.h>

namespace tav::ula {

/// Owns what a create or copy call of the platform gave, and releases it. May be empty.
template <typename Reference>
class CFOwner {
public:
    explicit CFOwner(Reference adopted = nullptr) : _reference(adopted) {}
    ~CFOwner() {
        if (_reference != nullptr)
            CFRelease(_reference);
    }
    CFOwner(const CFOwner&) = delete;
    CFOwner& operator=(const CFOwner&) = delete;

    Reference get() const { return _reference; }
    explicit operator bool() const { return _reference != nullptr; }
    /// Where a call puts what it gives. The owner is empty before.
    Reference* receive() { return &_reference; }

private:
    Reference _reference;
};

}  // namespace tav::ula
