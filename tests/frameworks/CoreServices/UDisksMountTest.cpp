// SPDX-License-Identifier: MIT
// With a bus of its own, on which a stand-in for udisks answers.
#include "CoreServices/UDisksMount.h"

#include <cstdlib>
#include <gio/gio.h>
#include <memory>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace {

using namespace coreservices;

constexpr char kXml[] =
    "<node><interface name='org.freedesktop.DBus.ObjectManager'>"
    "<method name='GetManagedObjects'><arg type='a{oa{sa{sv}}}' direction='out'/></method>"
    "</interface><interface name='org.freedesktop.UDisks2.Filesystem'>"
    "<method name='Mount'><arg type='a{sv}' direction='in'/><arg type='s' direction='out'/>"
    "</method></interface></node>";
constexpr char kRoot[] = "/org/freedesktop/UDisks2";
constexpr char kDisk[] = "/org/freedesktop/UDisks2/block_devices/sdz1";

// A disk called "My Stick", a partition table of that name, which cannot be mounted, and a disk
// that is mounted.
GVariant* objects() {
    return g_variant_new_parsed(
        "({objectpath '/org/freedesktop/UDisks2/block_devices/sdz':"
        " {'org.freedesktop.UDisks2.Block': {'IdLabel': <'My Stick'>}},"
        " objectpath '/org/freedesktop/UDisks2/block_devices/sdz1':"
        " {'org.freedesktop.UDisks2.Block': {'IdLabel': <'My Stick'>},"
        "  'org.freedesktop.UDisks2.Filesystem': @a{sv} {}},"
        " objectpath '/org/freedesktop/UDisks2/block_devices/sdy1':"
        " {'org.freedesktop.UDisks2.Block': {'IdLabel': <'Mounted'>},"
        "  'org.freedesktop.UDisks2.Filesystem': {'MountPoints': <[b'/mnt/it']>}}},)");
}

class UDisksMountTest : public testing::Test {
protected:
    void SetUp() override {
        g_test_dbus_up(_daemon);
        const char* address = g_test_dbus_get_bus_address(_daemon);
        ASSERT_EQ(setenv("DBUS_SYSTEM_BUS_ADDRESS", address, 1), 0);
        _bus = g_dbus_connection_new_for_address_sync(
            address,
            static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                              G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
            nullptr, nullptr, nullptr);
        ASSERT_NE(_bus, nullptr);
    }

    void TearDown() override {
        stop();
        g_object_unref(_bus);
        g_object_unref(_daemon);
    }

    // Registered before the thread runs, so that no call is missed.
    void serve() {
        _context = g_main_context_new();
        _loop = g_main_loop_new(_context, FALSE);
        g_main_context_push_thread_default(_context);
        GDBusNodeInfo* node = g_dbus_node_info_new_for_xml(kXml, nullptr);
        const GDBusInterfaceVTable table = {answer, nullptr, nullptr, {}};
        g_dbus_connection_register_object(_bus, kRoot, node->interfaces[0], &table, this, nullptr,
                                          nullptr);
        g_dbus_connection_register_object(_bus, kDisk, node->interfaces[1], &table, this, nullptr,
                                          nullptr);
        g_dbus_node_info_unref(node);
        g_variant_unref(g_dbus_connection_call_sync(
            _bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
            "RequestName", g_variant_new("(su)", "org.freedesktop.UDisks2", 0u), nullptr,
            G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr));
        g_main_context_pop_thread_default(_context);
        _server = std::thread([this] { g_main_loop_run(_loop); });
    }

    static void answer(GDBusConnection*, const char*, const char* path, const char*,
                       const char* method, GVariant*, GDBusMethodInvocation* call, void* self) {
        auto* test = static_cast<UDisksMountTest*>(self);
        if (std::string(method) == "GetManagedObjects")
            return g_dbus_method_invocation_return_value(call, objects());
        test->_mounted.push_back(path);
        if (test->refuses)
            return g_dbus_method_invocation_return_dbus_error(
                call, "org.freedesktop.UDisks2.Error.NotAuthorized", "no");
        g_dbus_method_invocation_return_value(call, g_variant_new("(s)", "/media/ann/My Stick"));
    }

    // The disks that were to be mounted; nothing is answered any more.
    std::vector<std::string> mounted() {
        stop();
        return _mounted;
    }

    bool refuses = false;

private:
    void stop() {
        if (!_server.joinable())
            return;
        g_main_loop_quit(_loop);
        _server.join();
        g_main_loop_unref(_loop);
        g_main_context_unref(_context);
    }

    std::vector<std::string> _mounted;
    GTestDBus* _daemon = g_test_dbus_new(G_TEST_DBUS_NONE);
    GDBusConnection* _bus = nullptr;
    GMainContext* _context = nullptr;
    GMainLoop* _loop = nullptr;
    std::thread _server;
};

TEST_F(UDisksMountTest, MountsTheFileSystemOfTheLabel) {
    serve();
    EXPECT_EQ(udisksMount("My Stick", std::chrono::seconds(60)), "/media/ann/My Stick");
    EXPECT_EQ(mounted(), (std::vector<std::string>{kDisk}));
}

TEST_F(UDisksMountTest, TellsWhereItIsMountedAlready) {
    serve();
    EXPECT_EQ(udisksMount("Mounted", std::chrono::seconds(60)), "/mnt/it");
    EXPECT_TRUE(mounted().empty());
}

TEST_F(UDisksMountTest, MountsNothingOfAnotherLabel) {
    serve();
    EXPECT_EQ(udisksMount("Other", std::chrono::seconds(60)), "");
    EXPECT_TRUE(mounted().empty());
}

TEST_F(UDisksMountTest, TellsThatItWasRefused) {
    refuses = true;
    serve();
    EXPECT_EQ(udisksMount("My Stick", std::chrono::seconds(60)), "");
    EXPECT_EQ(mounted().size(), 1u);
}

TEST_F(UDisksMountTest, LeavesTheConnectionThatTheApplicationSharesAsItIs) {
    GDBusConnection* const shared = g_bus_get_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr);
    ASSERT_NE(shared, nullptr);
    EXPECT_EQ(udisksMount("My Stick", std::chrono::seconds(60)), "");
    EXPECT_TRUE(g_dbus_connection_get_exit_on_close(shared));
    // Or the end of the bus is the end of the test.
    g_dbus_connection_set_exit_on_close(shared, FALSE);
    g_object_unref(shared);
}

TEST_F(UDisksMountTest, FailsWithoutTheService) {
    EXPECT_EQ(udisksMount("My Stick", std::chrono::seconds(60)), "");
}

}  // namespace
