// SPDX-License-Identifier: MIT
// Connections to the message buses of the user's session and of the system, each of them its
// owner's alone: the ones that GIO's users share end the process when the bus goes.
#pragma once

#include <memory>

typedef struct _GDBusConnection GDBusConnection;

namespace coreservices {

struct ReleaseBusConnection {
    __attribute__((visibility("default"))) void operator()(GDBusConnection* connection) const;
};
using BusConnection = std::unique_ptr<GDBusConnection, ReleaseBusConnection>;

// Whether the session says that it has a bus. Asked beforehand: GLib would start one where there is
// a display and none runs, and wait for it.
__attribute__((visibility("default"))) bool hasSessionBus();

// Wait for the bus for as long as it takes: to be called where somebody has patience.
// Fails: null, where there is no bus.
__attribute__((visibility("default"))) BusConnection connectToSessionBus();
__attribute__((visibility("default"))) BusConnection connectToSystemBus();

}  // namespace coreservices
