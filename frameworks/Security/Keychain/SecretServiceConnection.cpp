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

// What GLib would do, but for starting a bus where there is a display and none runs.
std::string sessionBusAddress() {
    if (const char* const address = std::getenv("DBUS_SESSION_BUS_ADDRESS"))
        return address;
    const char* const folder = std::getenv("XDG_RUNTIME_DIR");
    const std::string path = std::string(folder != nullptr ? folder : "") + "/bus";
    struct stat facts {};
    if (stat(path.c_str(), &facts) != 0 || !S_ISSOCK(facts.st_mode) || facts.st_uid != geteuid())
        return {};
    Owned<gchar> escaped(g_dbus_address_escape_value(path.c_str()));
    return std::string("unix:path=") + escaped.get();
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

SecretService* openService(GDBusConnection* bus) {
    const auto flags = static_cast<GDBusProxyFlags>(G_DBUS_PROXY_FLAGS_DO_NOT_CONNECT_SIGNALS |
                                                    G_DBUS_PROXY_FLAGS_DO_NOT_LOAD_PROPERTIES);
    return SECRET_SERVICE(g_initable_new(SECRET_TYPE_SERVICE, nullptr, nullptr, "g-connection", bus,
                                         "g-flags", flags, "g-name", kName, "g-object-path", kPath,
                                         "g-interface-name", kInterface, "flags",
                                         SECRET_SERVICE_OPEN_SESSION, nullptr));
}

}  // namespace

bool SecretServiceConnection::openBus() {
    const std::string address = sessionBusAddress();
    if (address.empty())
        return false;
    const auto flags =
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    _bus.reset(
        g_dbus_connection_new_for_address_sync(address.c_str(), flags, nullptr, nullptr, nullptr));
    return _bus != nullptr;
}

OSStatus SecretServiceConnection::connect(SecretService*& service) {
    if (_process != 0 && _process != getpid())
        return errSecNotAvailable;
    if (_bus != nullptr && g_dbus_connection_is_closed(_bus.get()))
        disconnect();
    const QuietContext context;
    if (_bus == nullptr && !openBus())
        return errSecNotAvailable;
    _process = getpid();
    if (_service == nullptr)
        _service.reset(openService(_bus.get()));
    service = _service.get();
    return service != nullptr ? errSecSuccess : errSecNotAvailable;
}

void SecretServiceConnection::disconnect() {
    _service.reset();
    _bus.reset();
}

}  // namespace security
