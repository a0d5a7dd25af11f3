// SPDX-License-Identifier: MIT
#pragma once

#include "CoreServices/BusConnection.h"

#include <chrono>

namespace appkit {

// How long the session's bus is waited for: many times what one that is well takes.
constexpr std::chrono::milliseconds kBusPatience(1000);

// Fails: null, where the session has no bus or it does not answer in time.
coreservices::BusConnection connectToSessionBus();

// Waits until what was sent has left, or the bus shows that it takes nothing. Returns at once where
// an earlier call waits still.
void flush(GDBusConnection* connection);

}  // namespace appkit
