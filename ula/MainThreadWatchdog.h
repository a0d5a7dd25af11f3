// SPDX-License-Identifier: MIT
#pragma once

#include "ula/Export.h"

#include <chrono>
#include <memory>

namespace tav::ula {

/// Logs when the main thread does not get to its calls for longer than a given time: once when
/// that time is over, with the stack of the main thread, and once when it is back. Those lines are
/// "main thread blocked for more than LIMIT ms" (`log_with_stacktrace`) and, at level 3 from
/// "src/Core/MainThreadWatchdog", line 1, "main thread was blocked for TIME ms".
///
/// While it lives it wakes the main thread up once in every limit, and has a thread of its own. It
/// takes the stack with a signal, see `debug::StackTrace::captureOf`. A run loop that is not
/// running, or runs in a mode that is not common, counts as blocked.
/// Thread: made and destroyed on the main thread, before `MainThreadCaller::destroyInstance`.
class ULA_API MainThreadWatchdog {
public:
    explicit MainThreadWatchdog(std::chrono::milliseconds limit);
    MainThreadWatchdog(const MainThreadWatchdog&) = delete;
    MainThreadWatchdog& operator=(const MainThreadWatchdog&) = delete;
    ~MainThreadWatchdog();

private:
    class Watch;
    std::unique_ptr<Watch> _watch;
};

}  // namespace tav::ula
