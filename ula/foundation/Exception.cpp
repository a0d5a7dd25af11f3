// SPDX-License-Identifier: MIT
#include "ula/foundation/Exception.h"

#include <exception>

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

std::string describeCurrentException() {
    try {
        throw;
    } catch (const Exception& exception) {
        return exception.what();
    } catch (const std::exception& exception) {
        return exception.what();
    } catch (...) {
        return "of unknown type";
    }
}

}  // namespace tav
