// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/TemporaryFolder.h"

#include <string>
#include <sys/types.h>
#include <vector>

namespace tav::test {

/// An X server of its own, ready for clients when the constructor returns. While it lives the
/// environment's DISPLAY names it.
class DisplayServer {
public:
    /// With one display of the size, "800x600x24", that cannot be changed.
    explicit DisplayServer(const std::string& size);
    /// With outputs as of a graphics card. DUMMY0 is on, with 1280 x 1024 pixels at 85 Hz.
    DisplayServer();
    ~DisplayServer();
    DisplayServer(const DisplayServer&) = delete;
    DisplayServer& operator=(const DisplayServer&) = delete;

    /// Turns DUMMY1 on: 1024 x 768 pixels, `where` as xrandr has it: "--right-of DUMMY0".
    void addSecondHead(const std::string& where = "--right-of DUMMY0") const;
    /// Runs xrandr with these arguments and waits for its end. Throws when it fails.
    void configure(const std::string& arguments) const;
    /// Sets a property of the root window, as a window manager or a desktop does: the type, and
    /// numbers separated by commas or a text.
    void setProperty(const std::string& name, const std::string& format,
                     const std::string& value) const;
    /// What xwininfo says of a window: "-root", "-id 2097211".
    std::string describeWindow(const std::string& which) const;
    /// SIGKILL, and waits until the process is gone.
    void kill();

private:
    void start(std::vector<std::string> command);

    TemporaryFolder _folder;
    pid_t _process = -1;
    std::string _name;
};

}  // namespace tav::test
