// SPDX-License-Identifier: MIT
// Umbrella header: what this system needs of the platform's CoreServices, under the platform's
// own names.
#pragma once

#include <CoreServices/Aliases.h>
#include <CoreServices/FSEvents.h>
#include <CoreServices/Files.h>
#include <CoreServices/Finder.h>
#include <CoreServices/Gestalt.h>
#include <CoreServices/LaunchServices.h>
#include <CoreServices/MacTypes.h>
#include <CoreServices/UTType.h>
#include <CoreServices/UnicodeUtilities.h>
