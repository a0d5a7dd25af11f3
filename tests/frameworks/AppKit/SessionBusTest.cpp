// SPDX-License-Identifier: MIT
#include "AppKit/SessionBus.h"

#include "tests/support/TemporaryFolder.h"

#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

using tav::test::TemporaryFolder;

// Accepts nobody; the kernel lets them wait.
class StuckBus {
public:
    explicit StuckBus(const std::string& path)
        : _socket(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
        EXPECT_EQ(bind(_socket, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
        EXPECT_EQ(listen(_socket, 8), 0);
    }
    ~StuckBus() { close(_socket); }
    StuckBus(const StuckBus&) = delete;
    StuckBus& operator=(const StuckBus&) = delete;

private:
    int _socket;
};

TEST(SessionBus, ThatDoesNotAnswerIsNotWaitedForForEver) {
    const TemporaryFolder folder;
    const StuckBus bus(folder / "bus");
    setenv("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + (folder / "bus")).c_str(), 1);
    EXPECT_EQ(appkit::connectToSessionBus(), nullptr);
    // Nor a second time by anyone else.
    EXPECT_EQ(appkit::connectToSessionBus(), nullptr);
}

TEST(SessionBus, IsNotStarted) {
    setenv("DBUS_SESSION_BUS_ADDRESS", "autolaunch:", 1);
    EXPECT_FALSE(coreservices::hasSessionBus());
    EXPECT_EQ(appkit::connectToSessionBus(), nullptr);
}

TEST(SessionBus, IsFoundInTheUsersFolderWhereNothingNamesIt) {
    const TemporaryFolder folder;
    unsetenv("DBUS_SESSION_BUS_ADDRESS");
    setenv("XDG_RUNTIME_DIR", folder.path().c_str(), 1);
    EXPECT_FALSE(coreservices::hasSessionBus());
    EXPECT_EQ(appkit::connectToSessionBus(), nullptr);
    const StuckBus bus(folder / "bus");
    EXPECT_TRUE(coreservices::hasSessionBus());
}

}  // namespace
