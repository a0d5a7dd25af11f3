// SPDX-License-Identifier: MIT
// What a sanitizer is to do in a test program, however that is started: the runtimes ask the
// program for these. Environment variables go before.
#include <sanitizer/common_interface_defs.h>

extern "C" {

// Drivers stay loaded, so that their leaks are known by their names.
__attribute__((visibility("default"))) int dlclose(void*) noexcept {
    return 0;
}

__attribute__((used)) const char* __asan_default_options() {
    // The symbolizer takes longer than most tests, and is asked for every leak that is no fault.
    return "detect_leaks=1:symbolize=0";
}

__attribute__((used)) const char* __lsan_default_options() {
    return "suppressions=" ULA_SUPPRESSIONS "/leak.txt:print_suppressions=0";
}

__attribute__((used)) const char* __ubsan_default_options() {
    return "print_stacktrace=1";
}

__attribute__((used)) const char* __tsan_default_options() {
    return "suppressions=" ULA_SUPPRESSIONS "/thread.txt:second_deadlock_stack=1";
}
}
