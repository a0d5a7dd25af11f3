// SPDX-License-Identifier: MIT
// Functions that throw, and that catch what another one throws, in each kind of source file.
#pragma once

#include <string>

using Action = void (*)();

struct InObjectiveCpp {
    static void throwRuntimeError();
    static void raise();
    static std::string caught(Action action);
    static void throwThroughNoexcept() noexcept;
};

struct InCpp {
    static void throwRuntimeError();
    static std::string caught(Action action);
    static void throwThroughNoexcept() noexcept;
};

struct __attribute__((visibility("default"))) InLibrary {
    static void throwRuntimeError();
    static void raise();
    static std::string caught(Action action);
};

/// Inline, with a handler: the linker keeps one copy, of a .cpp file or of a .mm file.
inline std::string caughtInline(Action action) {
    try {
        action();
    } catch (const std::exception& error) {
        return error.what();
    }
    return "nothing";
}

/// What caught() answers: the text of a std::runtime_error, "unknown" for anything else.
template <class Error>
std::string describe(Action action) {
    try {
        action();
    } catch (const Error& error) {
        return error.what();
    } catch (...) {
        return "unknown";
    }
    return "nothing";
}
