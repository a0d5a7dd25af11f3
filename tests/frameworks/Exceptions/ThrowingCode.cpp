// SPDX-License-Identifier: MIT
#include <stdexcept>

#include "ThrowingCode.h"

void InCpp::throwRuntimeError() {
    throw std::runtime_error("from C++");
}

std::string InCpp::caught(Action action) {
    return describe<std::runtime_error>(action);
}

void InCpp::throwThroughNoexcept() noexcept {
    InObjectiveCpp::throwRuntimeError();
}
