// SPDX-License-Identifier: MIT
#pragma once

#include <DiskArbitration/DADisk.h>
#include <DiskArbitration/DASession.h>
