// SPDX-License-Identifier: MIT
#include "ula/foundation/debug/Assertion.h"

#include "ula/foundation/debug/Log.h"

#include <string>

namespace tav::debug {

void assertionFailed(const char* source, int line, const char* condition) {
    const std::string message = std::string("assertion failed ") + source + ":" +
                                std::to_string(line) + "\"" + condition + "\"";
    log_with_stacktrace(message.c_str());
}

}  // namespace tav::debug
