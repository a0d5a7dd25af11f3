// SPDX-License-Identifier: MIT
#pragma once

#include "ula/foundation/Exception.h"
#include "ula/foundation/util/ScopedPtr.h"

namespace tav::ula {

/// A copy of the exception that is being handled, to be thrown in another thread: with its type
/// where it is one of ours, with its text where it is a standard one. Null when it could not be
/// copied. Owner: the caller.
Exception* copyOfCurrentException() noexcept;

/// Takes the exception out, if there is one, and throws it with the type that it has.
void raise(util::ScopedPtr<Exception>& exception);

}  // namespace tav::ula
