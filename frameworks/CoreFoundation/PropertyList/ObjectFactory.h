// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace cf::plist {

/// An object of a property list. Whoever has got one from a factory owns it.
using Object = void*;

/// Makes the objects that the readers find. Texts are valid UTF-8.
class ObjectFactory {
public:
    virtual ~ObjectFactory() = default;

    virtual Object string(std::string_view text) = 0;
    /// The same for a name in a dictionary; those come again and again.
    virtual Object key(std::string_view text) = 0;
    virtual Object boolean(bool value) = 0;
    virtual Object integer(std::int64_t value) = 0;
    virtual Object unsignedInteger(std::uint64_t value) = 0;
    virtual Object real(double value) = 0;
    virtual Object shortReal(float value) = 0;
    /// Units: seconds since 2001-01-01 00:00:00 UTC.
    virtual Object date(double time) = 0;
    virtual Object data(std::string_view bytes) = 0;

    /// Take the references over.
    virtual Object array(std::span<const Object> members) = 0;
    /// Keys and values in turn. Of equal keys the last one's value stays.
    virtual Object dictionary(std::span<const Object> pairs) = 0;

    virtual Object retain(Object object) = 0;
    virtual void release(Object object) = 0;
};

}  // namespace cf::plist
