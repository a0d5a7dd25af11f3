// SPDX-License-Identifier: MIT
#pragma once

#include <CoreServices/MacTypes.h>
#include <gio/gio.h>

namespace security {

// The status for an error of the Secret Service or of the bus. Null is success.
OSStatus statusOf(const GError* error);
// Whether the service no longer knows the session: it was started anew.
bool isOfEndedSession(const GError* error);

}  // namespace security
