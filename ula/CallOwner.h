// SPDX-License-Identifier: MIT
#pragma once

#include "ula/Export.h"
#include "ula/foundation/util/SharedPtr.h"

namespace tav::ula {

/// A member of an object whose functions are called with `MainThreadCaller::callAsyncOwned`. When
/// it is destroyed, calls that have not begun are dropped: they leave the queue without having run
/// when their turn comes. Declared last in its class it goes first.
/// Thread: any. Destroyed elsewhere than on the main thread it waits for a call that is running.
class ULA_API CallOwner {
public:
    CallOwner();
    CallOwner(const CallOwner&) = delete;
    CallOwner& operator=(const CallOwner&) = delete;
    ~CallOwner();

private:
    friend class MainThreadCaller;
    class ULA_LOCAL Life;

    util::SharedPtr<Life> _life;
};

}  // namespace tav::ula
