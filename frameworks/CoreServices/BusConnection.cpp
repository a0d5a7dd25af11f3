// SPDX-License-Identifier: MIT
#include "CoreServices/BusConnection.h"

#include <cstdlib>
#include <gio/gio.h>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace coreservices {

namespace {

BusConnection connectTo(GBusType bus) {
    const std::unique_ptr<char, decltype(&g_free)> address(
        g_dbus_address_get_for_bus_sync(bus, nullptr, nullptr), g_free);
    if (!address)
        return nullptr;
    const auto flags =
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    return BusConnection(
        g_dbus_connection_new_for_address_sync(address.get(), flags, nullptr, nullptr, nullptr));
}

}  // namespace

void ReleaseBusConnection::operator()(GDBusConnection* connection) const {
    g_object_unref(connection);
}

bool hasSessionBus() {
    if (const char* const address = std::getenv("DBUS_SESSION_BUS_ADDRESS"))
        return !std::string_view(address).starts_with("autolaunch:");
    const char* const folder = std::getenv("XDG_RUNTIME_DIR");
    const std::string path = std::string(folder != nullptr ? folder : "") + "/bus";
    struct stat facts {};
    return stat(path.c_str(), &facts) == 0 && S_ISSOCK(facts.st_mode) && facts.st_uid == geteuid();
}

BusConnection connectToSessionBus() {
    return hasSessionBus() ? connectTo(G_BUS_TYPE_SESSION) : nullptr;
}

BusConnection connectToSystemBus() {
    return connectTo(G_BUS_TYPE_SYSTEM);
}

}  // namespace coreservices
