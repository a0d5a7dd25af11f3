// SPDX-License-Identifier: MIT
#pragma once

#include "ula/foundation/Export.h"
#include "ula/foundation/thread/ThreadInterruptedException.h"
#include "ula/foundation/util/Function0.h"

#include <cstdint>
#include <memory>
#include <thread>

namespace tav::thread {

/// A thread that runs one function. What the function throws ends the thread: quietly when it is
/// `ThreadInterruptedException`, with a line of level 4 in the log otherwise.
/// Thread: one thread at a time uses the object, but `interrupt` may be called from any.
class TAV_FOUNDATION_API Thread {
public:
    /// Starts the thread. Fails: throws std::system_error when the system has no more threads.
    explicit Thread(const util::Function0<void>& function);
    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;
    /// Interrupts and joins when `join` was not called.
    ~Thread();

    /// Waits until the function has returned. A second call returns at once.
    void join();
    /// Leaves the thread to end by itself: neither `join` nor the destructor waits for it from now
    /// on.
    void detach();
    /// Makes a pending or the next `sleep` of the thread throw `ThreadInterruptedException`.
    void interrupt();

    /// Sleeps the calling thread. An interruption point in threads of this class.
    /// Units: seconds; zero, negative and not-a-number only look for an interruption.
    static void sleep(double seconds);

private:
    struct Interruption;

    std::shared_ptr<Interruption> _interruption;
    std::thread _thread;
};

/// The system's identifier of the calling thread, unique among the threads that live.
TAV_FOUNDATION_API std::uint32_t getThreadId();
/// Lets another thread have the processor.
TAV_FOUNDATION_API void yield();

}  // namespace tav::thread
