// SPDX-License-Identifier: MIT
#pragma once

#include "ula/foundation/Exception.h"

namespace tav::thread {

/// Thrown by `Thread::sleep` in a thread that was interrupted.
class TAV_FOUNDATION_API ThreadInterruptedException
    : public CloneableException<ThreadInterruptedException> {
public:
    ThreadInterruptedException() : CloneableException("the thread was interrupted") {}
    ~ThreadInterruptedException() override;
};

}  // namespace tav::thread
