// SPDX-License-Identifier: MIT
#pragma once

#include <CoreServices/MacTypes.h>
#include <gio/gio.h>

namespace security {

// The status for an error of the Secret Service or of the bus. Null is success.
OSStatus statusOf(const GError* error);

}  // namespace security
