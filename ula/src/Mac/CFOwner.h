// SPDX-License-Identifier: MIT
#pragma once

#include <CoreFoundation/CoreFoundation.h>

namespace tav::ula {

/// Owns what a create or copy call of the platform gave, and releases it. May be empty.
template <typename Reference>
class CFOwner {
public:
    explicit CFOwner(Reference adopted = nullptr) : _reference(adopted) {}
    ~CFOwner() { reset(); }
    CFOwner(const CFOwner&) = delete;
    CFOwner& operator=(const CFOwner&) = delete;

    Reference get() const { return _reference; }
    explicit operator bool() const { return _reference != nullptr; }
    /// Where a call puts what it gives. What was owned is released first.
    Reference* receive() {
        reset();
        return &_reference;
    }

private:
    void reset() {
        if (_reference != nullptr)
            CFRelease(_reference);
        _reference = nullptr;
    }

    Reference _reference;
};

}  // namespace tav::ula
