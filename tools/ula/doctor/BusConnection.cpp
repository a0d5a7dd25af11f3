// SPDX-License-Identifier: MIT
#include "tools/ula/doctor/BusConnection.h"

#include "tools/ula/doctor/Host.h"

#include <gio/gio.h>
#include <sys/stat.h>
#include <utility>

namespace tav::tool::doctor {

namespace {

/// The error's words, without the name of its kind on the bus.
std::string wordsOf(GError* error) {
    if (error == nullptr)
        return {};
    g_dbus_error_strip_remote_error(error);
    std::string words = error->message;
    g_error_free(error);
    return words;
}

}  // namespace

std::string sessionBusAddress(const Host& host) {
    const std::string address = host.variable("DBUS_SESSION_BUS_ADDRESS");
    // GLib would start a bus.
    if (address.starts_with("autolaunch:"))
        return {};
    if (!address.empty())
        return address;
    const std::string path = host.variable("XDG_RUNTIME_DIR") + "/bus";
    struct stat facts {};
    const bool isThere = stat(path.c_str(), &facts) == 0 && S_ISSOCK(facts.st_mode);
    return isThere ? "unix:path=" + path : "";
}

BusConnection::BusConnection(const std::string& address) {
    GError* error = nullptr;
    _connection = g_dbus_connection_new_for_address_sync(
        address.c_str(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, &error);
    _error = wordsOf(error);
}

BusConnection::~BusConnection() {
    if (_connection != nullptr)
        g_object_unref(_connection);
}

std::optional<std::string> BusConnection::askForPath(const BusCall& call) {
    GError* error = nullptr;
    GVariant* const answer = g_dbus_connection_call_sync(
        _connection, call.destination, call.path, call.interface, call.method,
        g_variant_new("(s)", call.argument), G_VARIANT_TYPE("(o)"), G_DBUS_CALL_FLAGS_NONE, -1,
        nullptr, &error);
    const bool isUnknown = g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_SERVICE_UNKNOWN);
    _error = wordsOf(error);
    if (isUnknown)
        _error.clear();
    if (answer == nullptr)
        return std::nullopt;
    const char* path = nullptr;
    g_variant_get(answer, "(&o)", &path);
    std::string text = path;
    g_variant_unref(answer);
    return text;
}

bool BusConnection::isSet(const std::string& path, const BusProperty& property) {
    GVariant* const answer = g_dbus_connection_call_sync(
        _connection, property.destination, path.c_str(), "org.freedesktop.DBus.Properties", "Get",
        g_variant_new("(ss)", property.interface, property.name), G_VARIANT_TYPE("(v)"),
        G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
    if (answer == nullptr)
        return false;
    GVariant* value = nullptr;
    g_variant_get(answer, "(v)", &value);
    const bool isSet =
        g_variant_is_of_type(value, G_VARIANT_TYPE_BOOLEAN) && g_variant_get_boolean(value);
    g_variant_unref(value);
    g_variant_unref(answer);
    return isSet;
}

}  // namespace tav::tool::doctor
