// SPDX-License-Identifier: MIT
#include "tools/ula/doctor/DisplayCheck.h"

#include "tools/ula/Translation.h"
#include "tools/ula/doctor/Host.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <set>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <xcb/xcb.h>

namespace tav::tool::doctor {

namespace {

namespace fs = std::filesystem;

/// The connection's setup is the server's answer to it.
bool answers(const std::string& display) {
    xcb_connection_t* const connection = xcb_connect(display.c_str(), nullptr);
    const bool isConnected = xcb_connection_has_error(connection) == 0;
    xcb_disconnect(connection);
    return isConnected;
}

/// The numbers of the displays that have a socket here, whether or not anyone listens.
std::set<int> localDisplays(const Host& host) {
    std::set<int> numbers;
    std::error_code error;
    for (fs::directory_iterator entry(host.displaySockets, error), end; !error && entry != end;
         entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        if (name.size() > 1 && name.size() < 8 && name[0] == 'X' &&
            name.find_first_not_of("0123456789", 1) == std::string::npos)
            numbers.insert(std::stoi(name.substr(1)));
    }
    return numbers;
}

/// Whether somebody listens at the socket of a display of this computer.
bool isListenedTo(int number, const Host& host) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = host.displaySockets + "/X" + std::to_string(number);
    if (path.size() >= sizeof address.sun_path)
        return false;
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool isTaken =
        connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    close(descriptor);
    return isTaken;
}

std::string remedyWithoutServer(const Host& host) {
    for (const int number : localDisplays(host))
        if (isListenedTo(number, host))
            return "export DISPLAY=:" + std::to_string(number);
    if (!host.variable("WAYLAND_DISPLAY").empty())
        return asRoot("apt-get install xwayland  # " + translated("then log in again"));
    return translated("log in to a desktop, or do without a screen: %1",
                      std::string("xvfb-run PROGRAM"));
}

Finding refusal(const std::string& name, const Host& host) {
    char* server = nullptr;
    int number = 0;
    if (xcb_parse_display(name.c_str(), &server, &number, nullptr) == 0)
        return {CheckState::Problem, translated("%1 names no display", "DISPLAY=" + name),
                remedyWithoutServer(host)};
    const std::unique_ptr<char, void (*)(void*)> owner(server, std::free);
    if (*server == '\0' && isListenedTo(number, host))
        return {CheckState::Problem, translated("the X server of %1 refuses %2", name, userName()),
                "xhost +si:localuser:" + userName() + "  # " +
                    translated("as the user whose desktop it is")};
    return {CheckState::Problem, translated("no X server is at %1", name),
            remedyWithoutServer(host)};
}

Finding examine(const Host& host) {
    const std::string name = host.variable("DISPLAY");
    if (name.empty())
        return {CheckState::Problem, translated("DISPLAY is not set: no window can be shown"),
                remedyWithoutServer(host)};
    if (answers(name))
        return {CheckState::Ok, translated("the X server of %1 answers", name)};
    return refusal(name, host);
}

}  // namespace

Check displayCheck() {
    return {"display",
            examine,
            {CheckState::Problem, translated("the X server does not answer"),
             translated("end it and log in again, or set DISPLAY to another one")}};
}

}  // namespace tav::tool::doctor
