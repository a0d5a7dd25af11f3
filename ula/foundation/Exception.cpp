// SPDX-License-Identifier: MIT
#include "ula/foundation/Exception.h"

namespace tav {

Exception::~Exception() = default;

const char* Exception::what() const {
    return _message.c_str();
}

Exception* Exception::clone() const {
    return new Exception(*this);
}

void Exception::raise() const {
    throw Exception(*this);
}

}  // namespace tav
