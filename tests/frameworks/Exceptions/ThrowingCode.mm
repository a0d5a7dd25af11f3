// SPDX-License-Identifier: MIT
#import <Foundation/Foundation.h>

#include <stdexcept>

#include "ThrowingCode.h"

void InObjectiveCpp::throwRuntimeError() {
    throw std::runtime_error("from Objective-C++");
}

void InObjectiveCpp::raise() {
    [NSException raise:@"TestException" format:@"from Objective-C"];
}

std::string InObjectiveCpp::caught(Action action) {
    try {
        action();
    } catch (const std::runtime_error& error) {
        return error.what();
    } catch (...) {
        return "unknown";
    }
    return "nothing";
}

void InObjectiveCpp::throwThroughNoexcept() noexcept {
    InCpp::throwRuntimeError();
}
