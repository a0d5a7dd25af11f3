// SPDX-License-Identifier: MIT
#pragma once

#include <concepts>
#include <functional>
#include <type_traits>
#include <utility>

namespace tav::util {

/// A copyable function object without arguments: a free function, a member function bound to an
/// object, or anything else that can be copied and called. Empty when default-made.
template <class Result>
class Function0 {
public:
    Function0() noexcept = default;
    Function0(std::nullptr_t) noexcept {}
    template <class Callable>
    requires(!std::same_as<std::remove_cvref_t<Callable>, Function0> &&
             std::constructible_from<std::function<Result()>, Callable>)
        Function0(Callable&& callable)
        : _function(std::forward<Callable>(callable)) {}
    /// The object is not owned and must outlive the calls.
    template <class Object, class Class>
    Function0(Object* object, Result (Class::*member)())
        : _function([object, member] { return (object->*member)(); }) {}
    template <class Object, class Class>
    Function0(const Object* object, Result (Class::*member)() const)
        : _function([object, member] { return (object->*member)(); }) {}

    bool empty() const noexcept { return !_function; }
    explicit operator bool() const noexcept { return !empty(); }

    /// Calls the function. Fails: throws std::bad_function_call when empty.
    Result operator()() const { return _function(); }

    /// A copy on the heap. Owner: the caller.
    Function0* clone() const { return new Function0(*this); }
    void swap(Function0& other) noexcept { _function.swap(other._function); }

private:
    std::function<Result()> _function;
};

}  // namespace tav::util
