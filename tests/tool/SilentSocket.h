// SPDX-License-Identifier: MIT
#pragma once

#include <cstring>
#include <stdexcept>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace tav::test {

/// Takes connections at a path and never says a word.
class SilentSocket {
public:
    explicit SilentSocket(const std::string& path)
        : _socket(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        if (path.size() >= sizeof address.sun_path)
            throw std::runtime_error("too long: " + path);
        std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
        if (bind(_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
            listen(_socket, kMostWaiting) != 0)
            throw std::runtime_error("no socket at " + path);
    }
    ~SilentSocket() { close(_socket); }
    SilentSocket(const SilentSocket&) = delete;
    SilentSocket& operator=(const SilentSocket&) = delete;

private:
    static constexpr int kMostWaiting = 8;

    int _socket;
};

}  // namespace tav::test
