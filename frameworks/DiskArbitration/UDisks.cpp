// SPDX-License-Identifier: MIT
#include "DiskArbitration/Sources.h"

#include "CoreServices/BusConnection.h"
#include "CoreServices/Patience.h"
#include "CoreServices/UDisksObject.h"

#include <gio/gio.h>
#include <memory>

namespace diskarbitration {

namespace {

constexpr char kService[] = "org.freedesktop.UDisks2";
constexpr char kBlock[] = "org.freedesktop.UDisks2.Block";

struct Release {
    void operator()(GVariant* variant) const { g_variant_unref(variant); }
};
using Variant = std::unique_ptr<GVariant, Release>;

std::string valueOf(const Variant& properties, const char* name) {
    const char* value = "";
    g_variant_lookup(properties.get(), name, "&s", &value);
    return value;
}

VolumeLabel ask(const std::string& name, std::chrono::milliseconds patience) {
    const coreservices::BusConnection bus = coreservices::connectToSystemBus();
    if (!bus)
        return {};
    Variant answer(g_dbus_connection_call_sync(
        bus.get(), kService, coreservices::uDisksObject(name).c_str(),
        "org.freedesktop.DBus.Properties", "GetAll", g_variant_new("(s)", kBlock),
        G_VARIANT_TYPE("(a{sv})"), G_DBUS_CALL_FLAGS_NO_AUTO_START,
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
