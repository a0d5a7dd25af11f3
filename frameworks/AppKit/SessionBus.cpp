// SPDX-License-Identifier: MIT
#include "AppKit/SessionBus.h"

#include <cstdlib>
#include <gio/gio.h>

namespace appkit {

GDBusConnection* connectToSessionBus() {
    // Without it a bus would be started, or be looked for through the display.
    const char* address = std::getenv("DBUS_SESSION_BUS_ADDRESS");
    if (address == nullptr || !g_dbus_is_supported_address(address, nullptr))
        return nullptr;
    return g_dbus_connection_new_for_address_sync(
        address,
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, nullptr);
}

}  // namespace appkit
