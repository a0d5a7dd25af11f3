// SPDX-License-Identifier: MIT
#include "CoreServices/UDisksMount.h"

#include "CoreServices/BusConnection.h"

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

// Null when there is no answer. `arguments` is consumed.
Variant call(const BusConnection& bus, const char* object, const char* interface,
             const char* method, GVariant* arguments, std::chrono::milliseconds patience) {
    return Variant(g_dbus_connection_call_sync(
        bus.get(), kService, object, interface, method, arguments, nullptr, G_DBUS_CALL_FLAGS_NONE,
        static_cast<int>(patience.count()), nullptr, nullptr));
}

struct Disk {
    std::string object;
    std::string mountedAt;
};

std::string firstMountPoint(GVariant* filesystem) {
    Variant points(
        g_variant_lookup_value(filesystem, "MountPoints", G_VARIANT_TYPE_BYTESTRING_ARRAY));
    if (!points || g_variant_n_children(points.get()) == 0)
        return {};
    Variant first(g_variant_get_child_value(points.get(), 0));
    return g_variant_get_bytestring(first.get());
}

// By the interfaces of the object. False for another label and for what is no file system.
bool isLabelled(GVariant* interfaces, const std::string& label, Disk* disk) {
    Variant filesystem(g_variant_lookup_value(interfaces, kFilesystem, G_VARIANT_TYPE_VARDICT));
    Variant block(g_variant_lookup_value(interfaces, kBlock, G_VARIANT_TYPE_VARDICT));
    const char* found = nullptr;
    if (!filesystem || !block || !g_variant_lookup(block.get(), "IdLabel", "&s", &found) ||
        label != found)
        return false;
    disk->mountedAt = firstMountPoint(filesystem.get());
    return true;
}

Disk diskOf(GVariant* objects, const std::string& label) {
    GVariantIter iterator;
    g_variant_iter_init(&iterator, objects);
    const char* path = nullptr;
    GVariant* interfaces = nullptr;
    Disk disk;
    while (disk.object.empty() &&
           g_variant_iter_next(&iterator, "{&o@a{sa{sv}}}", &path, &interfaces)) {
        Variant owned(interfaces);
        if (isLabelled(interfaces, label, &disk))
            disk.object = path;
    }
    return disk;
}

std::string mount(const BusConnection& bus, const std::string& object,
                  std::chrono::milliseconds patience) {
    GVariantBuilder options;
    g_variant_builder_init(&options, G_VARIANT_TYPE_VARDICT);
    Variant answer = call(bus, object.c_str(), kFilesystem, "Mount",
                          g_variant_new("(a{sv})", &options), patience);
    if (!answer || !g_variant_is_of_type(answer.get(), G_VARIANT_TYPE("(s)")))
        return {};
    const char* path = nullptr;
    g_variant_get(answer.get(), "(&s)", &path);
    return path;
}

}  // namespace

std::string udisksMount(const std::string& label, std::chrono::milliseconds patience) {
    const BusConnection bus = connectToSystemBus();
    if (!bus)
        return {};
    Variant answer = call(bus, "/org/freedesktop/UDisks2", "org.freedesktop.DBus.ObjectManager",
                          "GetManagedObjects", nullptr, patience);
    if (!answer || !g_variant_is_of_type(answer.get(), G_VARIANT_TYPE("(a{oa{sa{sv}}})")))
        return {};
    Variant objects(g_variant_get_child_value(answer.get(), 0));
    Disk disk = diskOf(objects.get(), label);
    if (disk.object.empty() || !disk.mountedAt.empty())
        return disk.mountedAt;
    return mount(bus, disk.object, patience);
}

}  // namespace coreservices
