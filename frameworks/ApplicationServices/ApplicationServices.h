// SPDX-License-Identifier: MIT
// Umbrella header: what this system needs of the platform's ApplicationServices, under the
// platform's own names.
#pragma once

#include <ApplicationServices/CGDirectDisplay.h>
#include <ApplicationServices/CGDisplayConfiguration.h>
