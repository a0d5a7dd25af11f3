// SPDX-License-Identifier: MIT
// A bus and a service of the test's own.
#include "DiskArbitration/Machine.h"

#include "tests/support/Patience.h"
#include "tests/support/TemporaryFolder.h"

#include <gio/gio.h>
#include <gtest/gtest.h>
#include <thread>

namespace {

using diskarbitration::Machine;
using diskarbitration::VolumeLabel;

constexpr char kInterfaces[] =
    "<node><interface name='org.freedesktop.UDisks2.Block'>"
    "<property name='IdLabel' type='s' access='read'/>"
    "<property name='IdUUID' type='s' access='read'/></interface></node>";

GVariant* property(GDBusConnection*, const char*, const char*, const char*, const char* name,
                   GError**, gpointer) {
    return g_variant_new_string(std::string(name) == "IdLabel" ? "Ann's disk" : "12-AB");
}

// Serves one block device, from a thread of its own, until its end.
class Service {
public:
    explicit Service(const char* address) {
        g_autoptr(GDBusNodeInfo) node = g_dbus_node_info_new_for_xml(kInterfaces, nullptr);
        g_main_context_push_thread_default(_context);
        auto flags =
            static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                              G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
        _bus = g_dbus_connection_new_for_address_sync(address, flags, nullptr, nullptr, nullptr);
        const GDBusInterfaceVTable table = {nullptr, property, nullptr, {}};
        g_dbus_connection_register_object(_bus, "/org/freedesktop/UDisks2/block_devices/dm_2d0",
                                          node->interfaces[0], &table, nullptr, nullptr, nullptr);
        g_variant_unref(g_dbus_connection_call_sync(
            _bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
            "RequestName", g_variant_new("(su)", "org.freedesktop.UDisks2", 0u), nullptr,
            G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr));
        g_main_context_pop_thread_default(_context);
    }
    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;
    ~Service() {
        if (_thread.joinable()) {
            g_main_loop_quit(_loop);
            _thread.join();
        }
        g_object_unref(_bus);
        g_main_loop_unref(_loop);
        g_main_context_unref(_context);
    }

    // Until then it has its name on the bus and does not answer.
    void answer() {
        _thread = std::thread([this] {
            g_main_context_push_thread_default(_context);
            g_main_loop_run(_loop);
            g_main_context_pop_thread_default(_context);
        });
    }

private:
    GMainContext* _context = g_main_context_new();
    GMainLoop* _loop = g_main_loop_new(_context, FALSE);
    GDBusConnection* _bus = nullptr;
    std::thread _thread;
};

class UDisks : public testing::Test {
protected:
    void SetUp() override {
        // The bus would start it so.
        tav::test::writeFile(folder / "udisks.service",
                             "[D-BUS Service]\nName=org.freedesktop.UDisks2\n"
                             "Exec=/bin/touch " +
                                 (folder / "started") + "\n");
        g_test_dbus_add_service_dir(bus, folder.path().c_str());
        g_test_dbus_up(bus);
        setenv("DBUS_SYSTEM_BUS_ADDRESS", g_test_dbus_get_bus_address(bus), 1);
    }
    void TearDown() override {
        g_test_dbus_stop(bus);
        g_object_unref(bus);
    }
    VolumeLabel ask(const std::string& name) { return Machine::ofProcess().askedLabel(name); }

    tav::test::TemporaryFolder folder;
    GTestDBus* bus = g_test_dbus_new(G_TEST_DBUS_NONE);
};

TEST_F(UDisks, TellsLabelAndUuid) {
    Service service(g_test_dbus_get_bus_address(bus));
    service.answer();
    // The answer has to come within a fraction of a second.
    const VolumeLabel label = tav::test::askUntil(
        [&] { return ask("dm-0"); }, [](const VolumeLabel& answer) { return !answer.empty(); });
    EXPECT_EQ(label.label, "Ann's disk");
    EXPECT_EQ(label.uuid, "12-AB");
    EXPECT_TRUE(ask("sdb1").empty());
}

TEST_F(UDisks, IsNotStartedWhereItDoesNotRun) {
    EXPECT_TRUE(ask("dm-0").empty());
    EXPECT_FALSE(std::filesystem::exists(folder / "started"));
}

TEST_F(UDisks, ThatDoesNotAnswerIsGivenUp) {
    Service service(g_test_dbus_get_bus_address(bus));
    EXPECT_TRUE(ask("dm-0").empty());
}

TEST_F(UDisks, WithoutABusThereIsNone) {
    setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent", 1);
    EXPECT_TRUE(ask("dm-0").empty());
}

}  // namespace
