// SPDX-License-Identifier: MIT
#pragma once

#include "HostLoop.h"

#include <memory>

namespace cf {

class RunLoop;

/// The calling thread's NSRunLoop as the host of its run loop.
std::unique_ptr<HostLoop> makeRunLoopHost(RunLoop& loop);

}  // namespace cf
