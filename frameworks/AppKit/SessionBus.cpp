// SPDX-License-Identifier: MIT
#include "AppKit/SessionBus.h"

#include "CoreServices/Patience.h"

#include <gio/gio.h>

namespace appkit {

namespace {

constexpr char kConnecting[] = "session bus";
constexpr char kSending[] = "session bus: sending";

}  // namespace

coreservices::BusConnection connectToSessionBus() {
    return coreservices::askPatiently<coreservices::BusConnection>(
               kConnecting, kBusPatience, [] { return coreservices::connectToSessionBus(); })
        .value_or(nullptr);
}

void flush(GDBusConnection* connection) {
    const std::shared_ptr<GDBusConnection> held(
        static_cast<GDBusConnection*>(g_object_ref(connection)),
        coreservices::ReleaseBusConnection());
    coreservices::runPatiently(kSending, kBusPatience, [held] {
        g_dbus_connection_flush_sync(held.get(), nullptr, nullptr);
    });
}

}  // namespace appkit
