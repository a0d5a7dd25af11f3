// SPDX-License-Identifier: MIT
#include "DiskArbitration/Sources.h"

#include "CoreServices/Patience.h"

#include <gio/gio.h>
#include <memory>

namespace diskarbitration {

namespace {

constexpr char kService[] = "org.freedesktop.UDisks2";
constexpr char kBlock[] = "org.freedesktop.UDisks2.Block";
constexpr char kBlockFolder[] = "/org/freedesktop/UDisks2/block_devices/";

struct Release {
    void operator()(GDBusConnection* bus) const { g_object_unref(bus); }
    void operator()(GVariant* variant) const { g_variant_unref(variant); }
    void operator()(char* text) const { g_free(text); }
};
using Bus = std::unique_ptr<GDBusConnection, Release>;
using Variant = std::unique_ptr<GVariant, Release>;

// A connection of our own: the shared one would end the program with the bus.
Bus systemBus() {
    std::unique_ptr<char, Release> address(
        g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr));
    if (!address)
        return nullptr;
    auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                   G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    return Bus(
        g_dbus_connection_new_for_address_sync(address.get(), flags, nullptr, nullptr, nullptr));
}

// udisks writes in the names of its objects what is neither letter nor digit as "_2d".
std::string objectOf(const std::string& name) {
    std::string object = kBlockFolder;
    for (char c : name) {
        char escape[4];
        g_snprintf(escape, sizeof escape, "_%02x", static_cast<unsigned char>(c));
        object += g_ascii_isalnum(c) ? std::string(1, c) : std::string(escape);
    }
    return object;
}

std::string valueOf(const Variant& properties, const char* name) {
    const char* value = "";
    g_variant_lookup(properties.get(), name, "&s", &value);
    return value;
}

VolumeLabel ask(const std::string& name, std::chrono::milliseconds patience) {
    Bus bus = systemBus();
    if (!bus)
        return {};
    Variant answer(g_dbus_connection_call_sync(
        bus.get(), kService, objectOf(name).c_str(), "org.freedesktop.DBus.Properties", "GetAll",
        g_variant_new("(s)", kBlock), G_VARIANT_TYPE("(a{sv})"), G_DBUS_CALL_FLAGS_NO_AUTO_START,
        static_cast<int>(patience.count()), nullptr, nullptr));
    if (!answer)
        return {};
    Variant properties(g_variant_get_child_value(answer.get(), 0));
    return {valueOf(properties, "IdLabel"), valueOf(properties, "IdUUID")};
}

}  // namespace

VolumeLabel askUDisks(const std::string& name, std::chrono::milliseconds patience) {
    return coreservices::askPatiently<VolumeLabel>(kService, patience,
                                                   [name, patience] { return ask(name, patience); })
        .value_or(VolumeLabel());
}

}  // namespace diskarbitration
