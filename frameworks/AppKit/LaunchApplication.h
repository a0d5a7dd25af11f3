// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

namespace appkit {

struct RunningApplication;

// Brings an application to the front: over D-Bus where it is said to listen there, and by its
// windows. Fails: false when nobody took the request.
bool activate(const RunningApplication& application);

// Starts a program in "/", in a session of its own, with none of this process's descriptors but the
// standard ones, its signals as they are at a start. Nobody waits for it.
// Thread: any. Fails: false when it cannot be started.
bool startProgram(const std::vector<std::string>& words);

// The application at this path, a bundle's or a program's: brought to the front where it runs in
// another process than this one and the given one, else started.
// Fails: false when nothing can be started there.
bool openApplication(const std::string& path, pid_t except = 0);

}  // namespace appkit
