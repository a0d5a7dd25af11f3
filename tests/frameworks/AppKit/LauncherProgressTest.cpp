// SPDX-License-Identifier: MIT
// What a dock hears: on a bus of the test's own.
#include "AppKit/LauncherProgress.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

#include <cstdlib>
#include <filesystem>
#include <gio/gio.h>
#include <gmock/gmock.h>
#include <unistd.h>

namespace {

using namespace tav::test;
namespace fs = std::filesystem;
using testing::ElementsAre;

struct Progress {
    std::string entry;
    double fraction = -1;
    bool isVisible = false;

    bool operator==(const Progress&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Progress& progress) {
    return out << progress.entry << ' ' << progress.fraction << ' ' << progress.isVisible;
}

void take(GDBusConnection*, const char*, const char*, const char*, const char*, GVariant* message,
          gpointer heard) {
    const char* entry = nullptr;
    GVariant* properties = nullptr;
    g_variant_get(message, "(&s@a{sv})", &entry, &properties);
    Progress progress{entry};
    gboolean isVisible = FALSE;
    g_variant_lookup(properties, "progress", "d", &progress.fraction);
    g_variant_lookup(properties, "progress-visible", "b", &isVisible);
    progress.isVisible = isVisible != FALSE;
    g_variant_unref(properties);
    static_cast<std::vector<Progress>*>(heard)->push_back(progress);
}

gboolean expire(gpointer isLate) {
    *static_cast<bool*>(isLate) = true;
    return G_SOURCE_REMOVE;
}

class Dock : public testing::Test {
protected:
    Dock() {
        _bus = g_dbus_connection_new_for_address_sync(
            getenv("DBUS_SESSION_BUS_ADDRESS"),
            static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                              G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
            nullptr, nullptr, nullptr);
        _subscription = g_dbus_connection_signal_subscribe(
            _bus, nullptr, "com.canonical.Unity.LauncherEntry", "Update", nullptr, nullptr,
            G_DBUS_SIGNAL_FLAGS_NONE, take, &_heard, nullptr);
        // Its answer comes when the bus knows of the subscription.
        g_variant_unref(g_dbus_connection_call_sync(
            _bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetId",
            nullptr, nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr));
    }
    ~Dock() override {
        appkit::showLauncherProgress(std::nullopt);
        g_dbus_connection_signal_unsubscribe(_bus, _subscription);
        g_object_unref(_bus);
    }

    std::vector<Progress> hear(std::size_t count) {
        bool isLate = false;
        const guint timer = g_timeout_add_seconds(60, expire, &isLate);
        while (_heard.size() < count && !isLate)
            g_main_context_iteration(nullptr, TRUE);
        if (!isLate)
            g_source_remove(timer);
        return std::move(_heard);
    }
    static std::string markPath() {
        return std::string(getenv("XDG_RUNTIME_DIR")) + "/org.maker.Photo.progress";
    }

private:
    GDBusConnection* _bus = nullptr;
    guint _subscription = 0;
    std::vector<Progress> _heard;
};

constexpr char kEntry[] = "application://org.maker.Photo.desktop";

TEST_F(Dock, HearsOfProgressAndItsEnd) {
    appkit::showLauncherProgress(0.25);
    appkit::showLauncherProgress(0.5);
    EXPECT_TRUE(fs::exists(markPath()));
    appkit::showLauncherProgress(std::nullopt);
    EXPECT_FALSE(fs::exists(markPath()));
    EXPECT_THAT(hear(3), ElementsAre(Progress{kEntry, 0.25, true}, Progress{kEntry, 0.5, true},
                                     Progress{kEntry, 0, false}));
}

TEST_F(Dock, HearsOfTheEndFromAProgramThatEndsAtOnce) {
    ChildProcess program([] { execl("/proc/self/exe", "program", "end-at-once", nullptr); });
    EXPECT_EQ(program.wait(), 0);
    EXPECT_THAT(hear(2), ElementsAre(Progress{kEntry, 0.5, true}, Progress{kEntry, 0, false}));
}

TEST_F(Dock, HearsOfFractionsThatItCanShow) {
    appkit::showLauncherProgress(-1);
    appkit::showLauncherProgress(7.5);
    EXPECT_THAT(hear(2), ElementsAre(Progress{kEntry, 0, true}, Progress{kEntry, 1, true}));
}

TEST_F(Dock, HearsNothingOfNoProgress) {
    appkit::showLauncherProgress(std::nullopt);
    appkit::showLauncherProgress(1);
    EXPECT_THAT(hear(1), ElementsAre(Progress{kEntry, 1, true}));
}

TEST_F(Dock, ABarLeftByACrashIsTakenAway) {
    ChildProcess crashed([] { _exit(1); });
    const pid_t process = crashed.id();
    EXPECT_EQ(crashed.wait(), 1);
    writeFile(markPath(), std::to_string(process));
    appkit::clearLeftLauncherProgress();
    EXPECT_FALSE(fs::exists(markPath()));
    EXPECT_THAT(hear(1), ElementsAre(Progress{kEntry, 0, false}));
}

TEST_F(Dock, ABarOfAnInstanceThatRunsStays) {
    const ChildProcess other([] { pause(); });
    writeFile(markPath(), std::to_string(other.id()));
    appkit::clearLeftLauncherProgress();
    EXPECT_TRUE(fs::exists(markPath()));
    // What would have been heard before.
    appkit::showLauncherProgress(1);
    EXPECT_EQ(hear(1).front(), (Progress{kEntry, 1, true}));
}

/// One that was shown before the application has finished launching.
TEST_F(Dock, ABarThatIsShownIsNotTakenForOneThatWasLeft) {
    appkit::showLauncherProgress(0.5);
    appkit::clearLeftLauncherProgress();
    EXPECT_TRUE(fs::exists(markPath()));
    appkit::showLauncherProgress(1);
    EXPECT_THAT(hear(2), ElementsAre(Progress{kEntry, 0.5, true}, Progress{kEntry, 1, true}));
}

}  // namespace

int main(int count, char** arguments) {
    if (count == 2 && std::string(arguments[1]) == "end-at-once") {
        appkit::showLauncherProgress(0.5);
        appkit::showLauncherProgress(std::nullopt);
        _exit(0);
    }
    testing::InitGoogleMock(&count, arguments);
    const TemporaryFolder folder;
    fs::create_directories(folder / "data/applications");
    writeFile(folder / "data/applications/org.maker.Photo.desktop",
              "[Desktop Entry]\nType=Application\nName=Photo\nExec=\"" +
                  fs::read_symlink("/proc/self/exe").string() + "\" %U\n");
    setenv("XDG_DATA_HOME", (folder / "data").c_str(), 1);
    GTestDBus* const bus = g_test_dbus_new(G_TEST_DBUS_NONE);
    g_test_dbus_up(bus);
    // Which took the user's away.
    setenv("XDG_RUNTIME_DIR", folder.path().c_str(), 1);
    const int result = RUN_ALL_TESTS();
    g_test_dbus_stop(bus);
    g_object_unref(bus);
    return result;
}
