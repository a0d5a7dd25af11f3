// SPDX-License-Identifier: MIT
#pragma once

#include "ula/foundation/Export.h"

#include <string>

namespace tav {

/// The base of the exceptions that carry a message and can be copied across threads.
class TAV_FOUNDATION_API Exception {
public:
    Exception() = default;
    explicit Exception(const std::string& message) : _message(message) {}
    Exception(const Exception&) = default;
    Exception& operator=(const Exception&) = default;
    virtual ~Exception();

    /// The message, zero-terminated. Owner: the exception.
    virtual const char* what() const;
    /// A copy on the heap that keeps the dynamic type. Owner: the caller.
    virtual Exception* clone() const;
    /// Throws a copy of this object that keeps the dynamic type.
    [[noreturn]] virtual void raise() const;

private:
    std::string _message;
};

/// Stands between `Exception` and a concrete exception `Concrete` and gives it `clone` and
/// `raise` with its own type:
/// `class Broken : public CloneableException<Broken> { using
/// CloneableException::CloneableException; };`
template <class Concrete>
class CloneableException : public Exception {
public:
    using Exception::Exception;

    Exception* clone() const override { return new Concrete(self()); }
    [[noreturn]] void raise() const override { throw Concrete(self()); }

private:
    const Concrete& self() const { return static_cast<const Concrete&>(*this); }
};

/// What the exception that is being handled says of itself. To be called in a `catch`.
TAV_FOUNDATION_API std::string describeCurrentException();

}  // namespace tav
