// SPDX-License-Identifier: MIT
// The workspace's notifications of volumes that come and go, for what else the workspace tells of
// volumes.
#pragma once

#include "AppKit/VolumeFacts.h"

namespace appkit {

// To be called with what a listing gives out. Changes are told from the last list on that was given
// out before somebody asked to be told, so that none is missed in between.
// Thread: any.
void volumesWereListed(const std::vector<Volume>& volumes);

// What is to be listed while a notification is being handled on this thread, without the start-up
// disk. Null when none is. Owner: the notification.
const std::vector<std::string>* volumesBeingTold();

}  // namespace appkit
