// SPDX-License-Identifier: MIT
#pragma once

#include <utility>

namespace cf {

/// Holds one reference to an object that counts its own, through its retain() and release().
template <class T>
class Retained {
public:
    Retained() = default;
    explicit Retained(T& object) : _object(&object) { object.retain(); }
    Retained(const Retained& other) : _object(other._object) {
        if (_object != nullptr)
            _object->retain();
    }
    Retained(Retained&& other) noexcept : _object(std::exchange(other._object, nullptr)) {}
    Retained& operator=(Retained other) noexcept {
        std::swap(_object, other._object);
        return *this;
    }
    ~Retained() {
        if (_object != nullptr)
            _object->release();
    }

    T* get() const { return _object; }
    T& operator*() const { return *_object; }
    T* operator->() const { return _object; }

private:
    T* _object = nullptr;
};

}  // namespace cf
