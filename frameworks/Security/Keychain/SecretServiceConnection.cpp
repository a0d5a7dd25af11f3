// SPDX-License-Identifier: MIT
#include "Security/Keychain/SecretServiceConnection.h"

#include "Security/SecBase.h"

#include <cstdlib>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace security {

namespace {

constexpr char kName[] = "org.freedesktop.secrets";
constexpr char kPath[] = "/org/freedesktop/secrets";
constexpr char kInterface[] = "org.freedesktop.Secret.Service";

// Asked beforehand: GLib would start a bus where there is a display and none runs, and wait for it.
bool hasSessionBus() {
    if (std::getenv("DBUS_SESSION_BUS_ADDRESS") != nullptr)
        return true;
    const char* const folder = std::getenv("XDG_RUNTIME_DIR");
    const std::string path = std::string(folder != nullptr ? folder : "") + "/bus";
    struct stat facts {};
    return stat(path.c_str(), &facts) == 0 && S_ISSOCK(facts.st_mode) && facts.st_uid == geteuid();
}

// What comes for the objects made meanwhile goes to nobody, rather than to the program's loop.
class QuietContext {
public:
    QuietContext() { g_main_context_push_thread_default(_context); }
    ~QuietContext() {
        g_main_context_pop_thread_default(_context);
        g_main_context_unref(_context);
    }
    QuietContext(const QuietContext&) = delete;
    QuietContext& operator=(const QuietContext&) = delete;

private:
    GMainContext* _context = g_main_context_new();
};

SecretService* openService() {
    const auto flags = static_cast<GDBusProxyFlags>(G_DBUS_PROXY_FLAGS_DO_NOT_CONNECT_SIGNALS |
                                                    G_DBUS_PROXY_FLAGS_DO_NOT_LOAD_PROPERTIES);
    return SECRET_SERVICE(g_initable_new(SECRET_TYPE_SERVICE, nullptr, nullptr, "g-bus-type",
                                         G_BUS_TYPE_SESSION, "g-flags", flags, "g-name", kName,
                                         "g-object-path", kPath, "g-interface-name", kInterface,
                                         "flags", SECRET_SERVICE_OPEN_SESSION, nullptr));
}

}  // namespace

bool SecretServiceConnection::openBus() {
    if (!hasSessionBus())
        return false;
    _bus.reset(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
    if (_bus == nullptr || g_dbus_connection_is_closed(_bus.get()))
        return false;
    // A bus that ends is no reason for the program to end.
    g_dbus_connection_set_exit_on_close(_bus.get(), FALSE);
    return true;
}

OSStatus SecretServiceConnection::connect(SecretService*& service) {
    if (_process != 0 && _process != getpid())
        return errSecNotAvailable;
    if (_bus != nullptr && g_dbus_connection_is_closed(_bus.get()))
        disconnect();
    const QuietContext context;
    if (_bus == nullptr && !openBus()) {
        _bus.reset();
        return errSecNotAvailable;
    }
    _process = getpid();
    if (_service == nullptr)
        _service.reset(openService());
    service = _service.get();
    return service != nullptr ? errSecSuccess : errSecNotAvailable;
}

void SecretServiceConnection::disconnect() {
    _service.reset();
    _bus.reset();
}

}  // namespace security
