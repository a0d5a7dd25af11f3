// SPDX-License-Identifier: MIT
#include "ula/src/Core/ExceptionCopy.h"

#include <exception>

namespace tav::ula {

namespace {

Exception* tryToCopyCurrentException() {
    try {
        throw;
    } catch (const Exception& exception) {
        return exception.clone();
    } catch (const std::exception& exception) {
        return new Exception(exception.what());
    } catch (...) {
        return new Exception;
    }
}

}  // namespace

Exception* copyOfCurrentException() noexcept {
    try {
        return tryToCopyCurrentException();
    } catch (...) {
        // Its copying throws, or memory is gone.
        return nullptr;
    }
}

void raise(util::ScopedPtr<Exception>& exception) {
    util::ScopedPtr<Exception> taken;
    taken.swap(exception);
    if (taken)
        taken->raise();
}

}  // namespace tav::ula
