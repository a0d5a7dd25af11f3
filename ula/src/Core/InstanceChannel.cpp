// SPDX-License-Identifier: MIT
#include "ula/src/Core/InstanceChannel.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <system_error>
#include <unistd.h>

namespace tav::ula {

namespace {

constexpr int kPatienceSeconds = 5;
constexpr int kWaitingClients = 128;
constexpr std::uint32_t kLargestMessage = 8 << 20;
constexpr char kTaken = 'k';

struct Head {
    char name[4];
    std::uint32_t size;
};
constexpr char kName[4] = {'u', 'l', 'a', '1'};

/// A short way to a folder: an address has room for about a hundred bytes. Gone with the object.
class ShortWay {
public:
    /// Fails: an empty path, with errno.
    explicit ShortWay(const std::filesystem::path& folder) {
        std::error_code error;
        const std::string target = std::filesystem::absolute(folder, error).string();
        if (mkdtemp(_place.data()) == nullptr) {
            _place.clear();
            return;
        }
        if (symlink(target.c_str(), (_place + "/f").c_str()) == 0)
            _path = _place + "/f";
    }
    ~ShortWay() {
        const int error = errno;
        if (!_path.empty())
            unlink(_path.c_str());
        if (!_place.empty())
            rmdir(_place.c_str());
        errno = error;
    }
    ShortWay(const ShortWay&) = delete;
    ShortWay& operator=(const ShortWay&) = delete;

    const std::string& path() const { return _path; }

private:
    std::string _place = "/tmp/ula-XXXXXX";
    std::string _path;
};

using CallWithAddress = int (*)(int, const sockaddr*, socklen_t);

/// Fails: false, with errno.
bool callAt(const std::string& path, int connection, CallWithAddress call) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        const std::filesystem::path whole = path;
        const ShortWay way(whole.parent_path());
        const std::string name = "/" + whole.filename().string();
        errno = way.path().empty() ? errno : ENAMETOOLONG;
        return !way.path().empty() && (way.path() + name).size() < sizeof address.sun_path &&
               callAt(way.path() + name, connection, call);
    }
    std::memcpy(address.sun_path, path.c_str(), path.size());
    return call(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

int makeSocket() {
    const int connection = socket(AF_UNIX, SOCK_STREAM, 0);
    if (connection >= 0)
        fcntl(connection, F_SETFD, FD_CLOEXEC);
    return connection;
}

void limitWaiting(int connection) {
    const timeval patience = {kPatienceSeconds, 0};
    setsockopt(connection, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    setsockopt(connection, SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
}

/// Closes on failure, with errno as it was.
int closed(int connection) {
    const int error = errno;
    close(connection);
    errno = error;
    return -1;
}

/// Without the signal that a write to nobody would send.
bool sendAll(int connection, const char* bytes, std::size_t size) {
    while (size > 0) {
        const ssize_t sent = send(connection, bytes, size, MSG_NOSIGNAL);
        if (sent < 0 && errno == EINTR)
            continue;
        if (sent <= 0)
            return false;
        bytes += sent;
        size -= static_cast<std::size_t>(sent);
    }
    return true;
}

/// False at the end, with errno 0, and on failure.
bool receiveAll(int connection, char* bytes, std::size_t size) {
    while (size > 0) {
        errno = 0;
        const ssize_t got = recv(connection, bytes, size, 0);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return false;
        bytes += got;
        size -= static_cast<std::size_t>(got);
    }
    return true;
}

Delivery failure() {
    return errno == EAGAIN || errno == EWOULDBLOCK ? Delivery::NoAnswer : Delivery::Broken;
}

std::string textOf(const std::vector<std::string>& arguments) {
    std::string text;
    for (const std::string& argument : arguments)
        text.append(argument.c_str()).push_back('\0');
    return text;
}

std::vector<std::string> argumentsOf(const std::string& text) {
    std::vector<std::string> arguments;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\0', begin), text.size());
        arguments.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return arguments;
}

}  // namespace

int listenAt(const std::string& path) {
    const int listener = makeSocket();
    if (listener < 0)
        return -1;
    unlink(path.c_str());
    if (!callAt(path, listener, bind) || listen(listener, kWaitingClients) != 0)
        return closed(listener);
    return listener;
}

int connectTo(const std::string& path) {
    const int connection = makeSocket();
    if (connection < 0)
        return -1;
    limitWaiting(connection);
    return callAt(path, connection, connect) ? connection : closed(connection);
}

Delivery deliver(int connection, const std::vector<std::string>& arguments) {
    const std::string text = textOf(arguments);
    if (text.size() > kLargestMessage)
        return Delivery::TooMuch;
    Head head{{}, static_cast<std::uint32_t>(text.size())};
    std::memcpy(head.name, kName, sizeof kName);
    char answer = 0;
    if (!sendAll(connection, reinterpret_cast<const char*>(&head), sizeof head) ||
        !sendAll(connection, text.data(), text.size()) || !receiveAll(connection, &answer, 1))
        return failure();
    return answer == kTaken ? Delivery::Taken : Delivery::Broken;
}

std::optional<std::vector<std::string>> receive(int connection) {
    limitWaiting(connection);
    Head head{};
    if (!receiveAll(connection, reinterpret_cast<char*>(&head), sizeof head) ||
        std::memcmp(head.name, kName, sizeof kName) != 0 || head.size > kLargestMessage)
        return std::nullopt;
    std::string text(head.size, '\0');
    if (!receiveAll(connection, text.data(), text.size()))
        return std::nullopt;
    // Taken is taken, also when nobody waits for the answer any more.
    sendAll(connection, &kTaken, 1);
    return argumentsOf(text);
}

}  // namespace tav::ula
