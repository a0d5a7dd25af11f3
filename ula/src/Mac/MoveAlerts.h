// SPDX-License-Identifier: MIT
// What the user is asked and told while an application moves, in the user's language.
// Thread: main, as for all alerts.
#pragma once

#include "ula/src/Mac/MovePlan.h"

namespace tav::ula {

/// Whether to move. Remembers when the user does not want to be asked again.
bool askToMove(const MovePlan& plan);

/// Whether to go on although an application of that name is there, which goes to the trash.
bool askToReplace();

void tellThatMoveFailed();

/// Whether the user has said not to be asked.
bool isMoveSuppressed();

}  // namespace tav::ula
