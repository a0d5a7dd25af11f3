// SPDX-License-Identifier: MIT
#pragma once

#include "ula/foundation/debug/Assertion.h"

#include <utility>

namespace tav::util {

/// Sole ownership: deletes the object on destruction and on reset.
template <class T>
class ScopedPtr {
public:
    explicit ScopedPtr(T* object = nullptr) noexcept : px(object) {}
    ScopedPtr(const ScopedPtr&) = delete;
    ScopedPtr& operator=(const ScopedPtr&) = delete;
    ~ScopedPtr() { delete px; }

    /// Deletes the object and takes ownership of `p`. Fails: given the very object that is held,
    /// logs the assertion and keeps it.
    void reset(T* p = nullptr) {
        if (p && p == px) {
            debug::assertionFailed("util/ScopedPtr", 56, "p != px");
            return;
        }
        delete std::exchange(px, p);
    }
    /// Gives the object up. Owner: the caller.
    T* release() noexcept { return std::exchange(px, nullptr); }

    T* get() const noexcept { return px; }
    T& operator*() const noexcept { return *px; }
    T* operator->() const noexcept { return px; }
    explicit operator bool() const noexcept { return px != nullptr; }
    void swap(ScopedPtr& other) noexcept { std::swap(px, other.px); }

private:
    T* px;
};

}  // namespace tav::util
