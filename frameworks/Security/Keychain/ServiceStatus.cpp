// SPDX-License-Identifier: MIT
#include "Security/Keychain/ServiceStatus.h"

#include "Security/SecBase.h"

#include <libsecret/secret.h>

namespace security {

namespace {

OSStatus statusOfService(int code) {
    switch (code) {
    case SECRET_ERROR_IS_LOCKED:
        return errSecInteractionNotAllowed;
    case SECRET_ERROR_NO_SUCH_OBJECT:
        return errSecItemNotFound;
    case SECRET_ERROR_ALREADY_EXISTS:
        return errSecDuplicateItem;
    default:
        return errSecInternalComponent;
    }
}

OSStatus statusOfBus(int code) {
    switch (code) {
    case G_DBUS_ERROR_SERVICE_UNKNOWN:
    case G_DBUS_ERROR_NAME_HAS_NO_OWNER:
    case G_DBUS_ERROR_NO_REPLY:
    case G_DBUS_ERROR_NO_SERVER:
    case G_DBUS_ERROR_TIMEOUT:
    case G_DBUS_ERROR_TIMED_OUT:
    case G_DBUS_ERROR_DISCONNECTED:
    case G_DBUS_ERROR_SPAWN_EXEC_FAILED:
    case G_DBUS_ERROR_SPAWN_CHILD_EXITED:
    case G_DBUS_ERROR_SPAWN_CHILD_SIGNALED:
        return errSecNotAvailable;
    case G_DBUS_ERROR_UNKNOWN_OBJECT:
        return errSecItemNotFound;
    case G_DBUS_ERROR_NO_MEMORY:
        return errSecAllocate;
    default:
        return errSecInternalComponent;
    }
}

}  // namespace

OSStatus statusOf(const GError* error) {
    if (error == nullptr)
        return errSecSuccess;
    if (error->domain == SECRET_ERROR)
        return statusOfService(error->code);
    if (error->domain == G_DBUS_ERROR)
        return statusOfBus(error->code);
    // A service that was started anew has an error without a name here for a session of the last
    // one.
    const bool isOfConnection =
        error->domain == G_IO_ERROR &&
        (error->code == G_IO_ERROR_DBUS_ERROR || error->code == G_IO_ERROR_CLOSED ||
         error->code == G_IO_ERROR_TIMED_OUT || error->code == G_IO_ERROR_BROKEN_PIPE ||
         error->code == G_IO_ERROR_CONNECTION_REFUSED);
    return isOfConnection ? errSecNotAvailable : errSecInternalComponent;
}

}  // namespace security
