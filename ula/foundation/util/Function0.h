// SPDX-License-Identifier: MIT
#pragma once

#include <concepts>
#include <cstddef>
#include <functional>
#include <new>
#include <type_traits>
#include <utility>

namespace tav::util {

namespace detail {

/// How a callable of one type is held in the room of a `Function0`: itself where it fits and moves
/// without throwing, else by a pointer to a copy of its own.
template <class Callable>
struct HeldInside {
    template <class Source>
    static void make(void* room, Source&& callable) {
        new (room) Callable(std::forward<Source>(callable));
    }
    static Callable& get(void* room) { return *std::launder(static_cast<Callable*>(room)); }
    static void move(void* from, void* to) noexcept {
        new (to) Callable(std::move(get(from)));
        destroy(from);
    }
    static void destroy(void* room) noexcept { get(room).~Callable(); }
};

template <class Callable>
struct HeldByPointer {
    template <class Source>
    static void make(void* room, Source&& callable) {
        *static_cast<Callable**>(room) = new Callable(std::forward<Source>(callable));
    }
    static Callable& get(void* room) { return **static_cast<Callable**>(room); }
    static void move(void* from, void* to) noexcept {
        *static_cast<Callable**>(to) = *static_cast<Callable**>(from);
    }
    static void destroy(void* room) noexcept { delete *static_cast<Callable**>(room); }
};

}  // namespace detail

/// A copyable function object without arguments: a free function, a member function bound to an
/// object, or anything else that can be copied and called. Empty when default-made, or made of a
/// null pointer or an empty function. Up to six words need no memory of their own.
/// Thread: as its callable; different copies may be used in different threads.
template <class Result>
class Function0 {
public:
    Function0() noexcept = default;
    Function0(std::nullptr_t) noexcept {}
    template <class Callable>
    requires(!std::same_as<std::remove_cvref_t<Callable>, Function0> &&
             std::constructible_from<std::function<Result()>, Callable>)
        Function0(Callable&& callable) {
        using Held = std::decay_t<Callable>;
        if (isNull<Held>(callable))
            return;
        Holder<Held>::make(_room, std::forward<Callable>(callable));
        _operations = &kOperations<Held>;
    }
    /// The object is not owned and must outlive the calls.
    template <class Object, class Class>
    Function0(Object* object, Result (Class::*member)())
        : Function0([object, member] { return (object->*member)(); }) {}
    template <class Object, class Class>
    Function0(const Object* object, Result (Class::*member)() const)
        : Function0([object, member] { return (object->*member)(); }) {}

    Function0(const Function0& other) {
        if (other._operations)
            other._operations->copy(other._room, _room);
        _operations = other._operations;
    }
    Function0(Function0&& other) noexcept { takeFrom(other); }
    ~Function0() { clear(); }

    Function0& operator=(const Function0& other) {
        Function0 copy(other);
        swap(copy);
        return *this;
    }
    Function0& operator=(Function0&& other) noexcept {
        if (this != &other) {
            clear();
            takeFrom(other);
        }
        return *this;
    }

    bool empty() const noexcept { return !_operations; }
    explicit operator bool() const noexcept { return !empty(); }

    /// Calls the function. Fails: throws std::bad_function_call when empty.
    Result operator()() const {
        if (!_operations)
            throw std::bad_function_call();
        return _operations->call(_room);
    }

    /// A copy on the heap. Owner: the caller.
    Function0* clone() const { return new Function0(*this); }
    void swap(Function0& other) noexcept {
        Function0 mine(std::move(*this));
        takeFrom(other);
        other.takeFrom(mine);
    }

private:
    static constexpr std::size_t kRoom = 6 * sizeof(void*);

    template <class Callable>
    static constexpr bool isStandardFunction = std::same_as<Callable, std::function<Result()>>;

    template <class Callable>
    static bool isNull(const Callable& callable) {
        if constexpr (std::is_pointer_v<Callable> || isStandardFunction<Callable>)
            return !callable;
        else
            return false;
    }

    template <class Callable>
    using Holder =
        std::conditional_t<sizeof(Callable) <= kRoom && alignof(Callable) <= alignof(void*) &&
                               std::is_nothrow_move_constructible_v<Callable>,
                           detail::HeldInside<Callable>, detail::HeldByPointer<Callable>>;

    struct Operations {
        Result (*call)(void* room);
        void (*copy)(void* from, void* to);
        void (*move)(void* from, void* to) noexcept;
        void (*destroy)(void* room) noexcept;
    };

    template <class Callable>
    static constexpr Operations kOperations = {
        [](void* room) -> Result {
            return static_cast<Result>(std::invoke(Holder<Callable>::get(room)));
        },
        [](void* from, void* to) {
            Holder<Callable>::make(to, std::as_const(Holder<Callable>::get(from)));
        },
        &Holder<Callable>::move, &Holder<Callable>::destroy};

    /// Of an empty one.
    void takeFrom(Function0& other) noexcept {
        if (other._operations)
            other._operations->move(other._room, _room);
        _operations = std::exchange(other._operations, nullptr);
    }
    void clear() noexcept {
        if (const Operations* const operations = std::exchange(_operations, nullptr))
            operations->destroy(_room);
    }

    const Operations* _operations = nullptr;
    /// Calling may change what is in it, as with any function object.
    alignas(void*) mutable std::byte _room[kRoom];
};

}  // namespace tav::util
