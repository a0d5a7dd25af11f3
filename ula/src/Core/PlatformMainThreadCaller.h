// SPDX-License-Identifier: MIT
#pragma once

namespace tav::ula {

class MainThreadCaller;

/// The caller of the platform, for the calling thread's run loop. Owner: the caller.
MainThreadCaller* createPlatformMainThreadCaller();

}  // namespace tav::ula
