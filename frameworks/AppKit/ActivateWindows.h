// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

namespace appkit {

// Brings a process's windows of the X display to the front, the uppermost one with the keyboard: by
// asking the window manager or, where none runs, itself.
// Thread: any. Fails: false where there is no display or the process has no windows on it.
bool activateWindows(pid_t process);

}  // namespace appkit
