// SPDX-License-Identifier: MIT
// Progress on the application's icon in the desktop's dock, by the signal that the docks of GNOME,
// KDE and others take over D-Bus.
#pragma once

#include <optional>

namespace appkit {

// Nothing for no progress. Does nothing without a session bus, or where the program has no desktop
// entry. Thread: any; does not wait for the dock, and a second at most for a bus that is stuck.
void showLauncherProgress(std::optional<double> fraction);

// Docks take away what is shown for a program when that leaves the bus, or should. To be called at
// the start: takes away what was shown when this program's last run ended without saying so.
void clearLeftLauncherProgress();

}  // namespace appkit
