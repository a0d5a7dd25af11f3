// SPDX-License-Identifier: MIT
#pragma once

#include "ula/foundation/debug/Assertion.h"
#include "ula/foundation/thread/ReferenceCount.h"

#include <compare>
#include <cstddef>
#include <utility>

namespace tav::util {

/// The two counts behind a shared object. All strong references together hold one weak one, so
/// the block lives until the last reference of either kind is gone.
/// Thread: any.
class CountBlock {
public:
    CountBlock() = default;
    CountBlock(const CountBlock&) = delete;
    CountBlock& operator=(const CountBlock&) = delete;
    ~CountBlock() {
        if (_refCount)
            debug::assertionFailed("util/SharedPtr", 93, "!_refCount");
    }

    /// Who learns here that the object is gone also sees what its last owners did.
    bool isReferenced() const { return __atomic_load_n(&_refCount, __ATOMIC_ACQUIRE) > 0; }

    void retain() { thread::retainReference(&_refCount); }
    /// True when this was the last strong reference: the object is to be deleted.
    bool release() { return thread::releaseReference(&_refCount); }

    /// Turns a weak reference into a strong one; false when the object is gone.
    bool retainIfReferenced() {
        int count = __atomic_load_n(&_refCount, __ATOMIC_ACQUIRE);
        while (count != 0) {
            const int previous = thread::atomicCompareAndExchange(&_refCount, count, count + 1);
            if (previous == count)
                return true;
            count = previous;
        }
        return false;
    }

    void retainWeak() { thread::retainReference(&_weakCount); }
    /// Deletes the block with the last reference.
    inline void releaseWeak();

private:
    friend class EmbeddedCountBlock;

    /// Stays in the weak count of a block that is part of something else.
    static constexpr int kEmbedded = 1 << 30;
    explicit CountBlock(int weakCount) : _weakCount(weakCount) {}

    int volatile _refCount = 1;
    int volatile _weakCount = 1;
};

/// Counts that stand in one piece of memory with the object they count, for objects that are made
/// too often for an allocation each. The object's `operator delete` must leave the memory alone;
/// `dispose` is called with the last reference of either kind to give it back.
class EmbeddedCountBlock : public CountBlock {
public:
    using Dispose = void (*)(EmbeddedCountBlock*);

    explicit EmbeddedCountBlock(Dispose dispose) : CountBlock(kEmbedded + 1), _dispose(dispose) {}

private:
    friend class CountBlock;
    /// Apart, or compilers look at it for plain blocks, too, and find these too small for it.
    [[gnu::noinline]] static void end(CountBlock* block) {
        auto* const embedded = static_cast<EmbeddedCountBlock*>(block);
        embedded->_dispose(embedded);
    }

    Dispose _dispose;
};

void CountBlock::releaseWeak() {
    const int left = thread::dropReference(&_weakCount);
    if (left == 0)
        delete this;
    else if (left == kEmbedded)
        EmbeddedCountBlock::end(this);
}

template <class T>
class WeakPtr;

/// Shared ownership: copies share the object, the last one to go deletes it. Empty when it was
/// given nothing.
/// Thread: different copies may be used in different threads; one copy in one thread at a time.
template <class T>
class SharedPtr {
public:
    SharedPtr() noexcept = default;
    SharedPtr(std::nullptr_t) noexcept {}
    /// Takes ownership of `object`; null gives an empty pointer.
    explicit SharedPtr(T* object) : _object(object), _count(object ? new CountBlock : nullptr) {}
    /// Takes over one strong reference that `count` already holds for `object`. For code that
    /// manages counts itself.
    SharedPtr(T* object, CountBlock* count) : _object(object), _count(count) { checkConsistency(); }

    SharedPtr(const SharedPtr& other) noexcept : _object(other._object), _count(other._count) {
        retain();
    }
    template <class Derived>
    SharedPtr(const SharedPtr<Derived>& other) noexcept
        : _object(other._object), _count(other._count) {
        retain();
    }
    SharedPtr(SharedPtr&& other) noexcept
        : _object(std::exchange(other._object, nullptr)),
          _count(std::exchange(other._count, nullptr)) {}
    ~SharedPtr() { release(); }

    SharedPtr& operator=(SharedPtr other) noexcept {
        swap(other);
        return *this;
    }

    void reset() { SharedPtr().swap(*this); }
    void reset(T* object) { SharedPtr(object).swap(*this); }
    void swap(SharedPtr& other) noexcept {
        std::swap(_object, other._object);
        std::swap(_count, other._count);
    }

    T* get() const noexcept { return _object; }
    T& operator*() const noexcept { return *_object; }
    T* operator->() const noexcept { return _object; }
    explicit operator bool() const noexcept { return _object != nullptr; }

    friend bool operator==(const SharedPtr& left, const SharedPtr& right) noexcept {
        return left._object == right._object;
    }
    friend std::strong_ordering operator<=>(const SharedPtr& left,
                                            const SharedPtr& right) noexcept {
        return std::compare_three_way()(left._object, right._object);
    }

private:
    template <class Other>
    friend class SharedPtr;
    template <class Other>
    friend class WeakPtr;

    void checkConsistency() const {
        if (_count && !_object)
            debug::assertionFailed("util/SharedPtr", 164, "!_count || obj");
        if (_count && !_count->isReferenced())
            debug::assertionFailed("util/SharedPtr", 165, "!_count || _count->isReferenced()");
    }
    void retain() const {
        if (_count)
            _count->retain();
    }
    void release() {
        if (!_count || !_count->release())
            return;
        delete _object;
        _count->releaseWeak();
    }

    T* _object = nullptr;
    CountBlock* _count = nullptr;
};

/// Refers to a shared object without keeping it alive.
/// Thread: as `SharedPtr`; `lock` may race with the object's last release.
template <class T>
class WeakPtr {
public:
    WeakPtr() noexcept = default;
    WeakPtr(const SharedPtr<T>& shared) noexcept : _object(shared._object), _count(shared._count) {
        retain();
    }
    WeakPtr(const WeakPtr& other) noexcept : _object(other._object), _count(other._count) {
        retain();
    }
    WeakPtr(WeakPtr&& other) noexcept
        : _object(std::exchange(other._object, nullptr)),
          _count(std::exchange(other._count, nullptr)) {}
    ~WeakPtr() {
        if (_count)
            _count->releaseWeak();
    }
    WeakPtr& operator=(WeakPtr other) noexcept {
        std::swap(_object, other._object);
        std::swap(_count, other._count);
        return *this;
    }

    /// A strong reference, or an empty pointer when the object is gone.
    SharedPtr<T> lock() const {
        if (!_count || !_count->retainIfReferenced())
            return SharedPtr<T>();
        return SharedPtr<T>(_object, _count);
    }
    /// True when the object is gone (or there never was one).
    bool expired() const noexcept { return !_count || !_count->isReferenced(); }

private:
    void retain() const {
        if (_count)
            _count->retainWeak();
    }

    T* _object = nullptr;
    CountBlock* _count = nullptr;
};

}  // namespace tav::util
