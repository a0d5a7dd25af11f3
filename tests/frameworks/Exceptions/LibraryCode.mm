// SPDX-License-Identifier: MIT
#import <Foundation/Foundation.h>

#include <stdexcept>

#include "ThrowingCode.h"

void InLibrary::throwRuntimeError() {
    throw std::runtime_error("from a library");
}

void InLibrary::raise() {
    [NSException raise:@"LibraryException" format:@"from a library"];
}

std::string InLibrary::caught(Action action) {
    try {
        action();
    } catch (const std::runtime_error& error) {
        return error.what();
    } catch (...) {
        return "unknown";
    }
    return "nothing";
}
