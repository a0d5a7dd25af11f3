// SPDX-License-Identifier: MIT
// An application that was started from a disk image, from the downloads or from the desktop offers
// to move to where applications belong.
#pragma once

#include "ula/Export.h"

namespace tav::ula {

/// Asks whether the application's bundle shall move into an Applications folder, unless it lies in
/// one or the user does not want to be asked again. If so it is copied, with an administrator's
/// rights where they are needed, the old copy goes to the trash, and the new one is started.
/// Returns when nothing was moved; the user has been told when that is a failure. Otherwise the
/// process ends with `exit(0)`, also when the user cancels the question whether to replace an
/// application. To be called early at the start, when the application can show windows.
/// Thread: main. It runs modal alerts. Fails: with a line in the platform's log.
ULA_API void moveToApplicationsFolder();

}  // namespace tav::ula
