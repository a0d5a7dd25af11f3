// SPDX-License-Identifier: MIT
#include "Security/Keychain/SecretServiceConnection.h"

#include "CoreServices/BusConnection.h"
#include "Security/SecBase.h"

#include <unistd.h>

namespace security {

namespace {

// The names are libsecret's own: it sets them itself, and loses what was set before.
SecretService* makeService() {
    const auto flags = static_cast<GDBusProxyFlags>(G_DBUS_PROXY_FLAGS_DO_NOT_CONNECT_SIGNALS |
                                                    G_DBUS_PROXY_FLAGS_DO_NOT_LOAD_PROPERTIES);
    return SECRET_SERVICE(g_initable_new(SECRET_TYPE_SERVICE, nullptr, nullptr, "g-bus-type",
                                         G_BUS_TYPE_SESSION, "g-flags", flags, "flags",
                                         SECRET_SERVICE_OPEN_SESSION, nullptr));
}

}  // namespace

bool SecretServiceConnection::openBus() {
    if (!coreservices::hasSessionBus())
        return false;
    _bus.reset(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
    if (_bus == nullptr)
        return false;
    // A bus that ends is no reason for the program to end.
    g_dbus_connection_set_exit_on_close(_bus.get(), FALSE);
    return true;
}

void SecretServiceConnection::openService() {
    if (_context == nullptr)
        _context.reset(g_main_context_new());
    g_main_context_push_thread_default(_context.get());
    if (_bus != nullptr || openBus())
        _service.reset(makeService());
    g_main_context_pop_thread_default(_context.get());
}

OSStatus SecretServiceConnection::connect(SecretService*& service) {
    giveUpClosedBus();
    _process = getpid();
    if (_service == nullptr)
        openService();
    service = _service.get();
    return service != nullptr ? errSecSuccess : errSecNotAvailable;
}

void SecretServiceConnection::disconnect() {
    _service.reset();
    giveUpClosedBus();
}

// As long as anyone holds it, GLib gives no other one.
void SecretServiceConnection::giveUpClosedBus() {
    if (_bus == nullptr || !g_dbus_connection_is_closed(_bus.get()))
        return;
    _service.reset();
    // Comes back after the thread that has found it closed is done with it.
    g_dbus_connection_close_sync(_bus.get(), nullptr, nullptr);
    _bus.reset();
    // What waits there holds the connection, which holds the place where it waits.
    while (g_main_context_iteration(_context.get(), FALSE))
        continue;
    _context.reset();
}

bool SecretServiceConnection::isOfParent() const {
    const int process = _process;
    return process != 0 && process != getpid();
}

}  // namespace security
