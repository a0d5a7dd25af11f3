// SPDX-License-Identifier: MIT
#include "CoreServices/UdisksMount.h"

#include <gio/gio.h>
#include <memory>

namespace coreservices {

namespace {

constexpr char kService[] = "org.freedesktop.UDisks2";
constexpr char kBlock[] = "org.freedesktop.UDisks2.Block";
constexpr char kFilesystem[] = "org.freedesktop.UDisks2.Filesystem";

struct UnrefVariant {
    void operator()(GVariant* variant) const { g_variant_unref(variant); }
};
using Variant = std::unique_ptr<GVariant, UnrefVariant>;

struct UnrefConnection {
    void operator()(GDBusConnection* bus) const { g_object_unref(bus); }
};
using Bus = std::unique_ptr<GDBusConnection, UnrefConnection>;

// Null when there is no answer. `arguments` is consumed.
Variant call(const Bus& bus, const char* object, const char* interface, const char* method,
             GVariant* arguments, std::chrono::milliseconds patience) {
    return Variant(g_dbus_connection_call_sync(
        bus.get(), kService, object, interface, method, arguments, nullptr, G_DBUS_CALL_FLAGS_NONE,
        static_cast<int>(patience.count()), nullptr, nullptr));
}

// The interfaces of an object by their names.
bool isLabelled(GVariant* interfaces, const std::string& label) {
    Variant filesystem(g_variant_lookup_value(interfaces, kFilesystem, nullptr));
    Variant block(g_variant_lookup_value(interfaces, kBlock, G_VARIANT_TYPE_VARDICT));
    const char* found = nullptr;
    return filesystem && block && g_variant_lookup(block.get(), "IdLabel", "&s", &found) &&
           label == found;
}

std::string objectOf(GVariant* objects, const std::string& label) {
    GVariantIter iterator;
    g_variant_iter_init(&iterator, objects);
    const char* path = nullptr;
    GVariant* interfaces = nullptr;
    std::string found;
    while (found.empty() && g_variant_iter_next(&iterator, "{&o@a{sa{sv}}}", &path, &interfaces)) {
        Variant owned(interfaces);
        if (isLabelled(interfaces, label))
            found = path;
    }
    return found;
}

}  // namespace

bool udisksMount(const std::string& label, std::chrono::milliseconds patience) {
    Bus bus(g_bus_get_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr));
    if (!bus)
        return false;
    Variant answer = call(bus, "/org/freedesktop/UDisks2", "org.freedesktop.DBus.ObjectManager",
                          "GetManagedObjects", nullptr, patience);
    if (!answer || !g_variant_is_of_type(answer.get(), G_VARIANT_TYPE("(a{oa{sa{sv}}})")))
        return false;
    Variant objects(g_variant_get_child_value(answer.get(), 0));
    std::string object = objectOf(objects.get(), label);
    if (object.empty())
        return false;
    GVariantBuilder options;
    g_variant_builder_init(&options, G_VARIANT_TYPE_VARDICT);
    return call(bus, object.c_str(), kFilesystem, "Mount", g_variant_new("(a{sv})", &options),
                patience) != nullptr;
}

}  // namespace coreservices
