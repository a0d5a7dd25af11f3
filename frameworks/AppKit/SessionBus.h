// SPDX-License-Identifier: MIT
#pragma once

typedef struct _GDBusConnection GDBusConnection;

namespace appkit {

// A connection of its own: the one that GIO's users share ends the process when the bus goes.
// Owner: the caller. Fails: null, where the session has no bus or it does not answer.
GDBusConnection* connectToSessionBus();

}  // namespace appkit
