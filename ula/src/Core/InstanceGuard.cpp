// SPDX-License-Identifier: MIT
#include "ula/InstanceGuard.h"

#include "ula/SpecialFolders.h"
#include "ula/src/Core/InstanceChannel.h"
#include "ula/src/Core/InstanceLock.h"

#include <cctype>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace tav::ula {

namespace {

/// The files of one application, by the beginning of their paths.
struct Places {
    std::string lock;    ///< held as long as the instance lives
    std::string gate;    ///< held while an instance begins or ends, or another looks for it
    std::string socket;  ///< always the user's own
};

/// Different for different identifiers, and good as a file's name.
std::string fileName(const FastString& appID) {
    constexpr std::size_t kReadable = 32;
    constexpr std::uint64_t kBasis = 14695981039346656037u, kPrime = 1099511628211u;
    std::string name;
    std::uint64_t hash = kBasis;
    for (const char byte : appID.toStdString()) {
        hash = (hash ^ static_cast<unsigned char>(byte)) * kPrime;
        const bool isPlain = std::isalnum(static_cast<unsigned char>(byte)) != 0 || byte == '.';
        if (name.size() < kReadable)
            name += isPlain ? byte : '-';
    }
    char digits[20];
    std::snprintf(digits, sizeof digits, "-%016llx", static_cast<unsigned long long>(hash));
    return (name.starts_with('.') ? "-" : "") + name + digits;
}

bool isFolder(const std::string& path) {
    struct stat item {};
    return stat(path.c_str(), &item) == 0 && S_ISDIR(item.st_mode);
}

/// Made if need be. What others could write to decides nothing.
bool isPrivateFolder(const std::string& path) {
    std::error_code error;
    std::filesystem::create_directories(path, error);
    struct stat item {};
    if (stat(path.c_str(), &item) != 0)
        return false;
    errno = EPERM;
    return S_ISDIR(item.st_mode) && item.st_uid == geteuid() && (item.st_mode & 022) == 0;
}

std::string sharedFolder() {
    return isFolder("/var/lock") ? "/var/lock" : "/tmp";
}

/// Of the user.
std::string ownFolder(const InstanceGuardOptions& options) {
    if (options.scope == InstanceScope::User && !options.folder.empty())
        return options.folder;
    return SpecialFolders::myApplicationSupportPath().toStdString() + "/ula/instances";
}

std::string lockFolder(const InstanceGuardOptions& options, const std::string& own) {
    if (options.scope == InstanceScope::User)
        return own;
    return options.folder.empty() ? sharedFolder() : options.folder;
}

InstanceClaim failed(const std::string& what) {
    return {InstanceState::Failed, nullptr, what + ": " + std::strerror(errno)};
}

/// To the instance that has the lock. Nothing when it has ended in the middle of it.
std::optional<InstanceClaim> forward(int connection, const std::vector<std::string>& arguments) {
    const Delivery delivery = deliver(connection, arguments);
    close(connection);
    if (delivery == Delivery::Broken)
        return std::nullopt;
    if (delivery == Delivery::Taken)
        return InstanceClaim{InstanceState::Forwarded, nullptr, ""};
    return InstanceClaim{InstanceState::Running, nullptr, "the other instance does not answer"};
}

/// A process that is killed closes its descriptors from the lowest on: the lock first, so that
/// there is never one that is held and has nobody behind it.
int above(int lock, int descriptor) {
    const int moved = fcntl(descriptor, F_DUPFD_CLOEXEC, lock + 1);
    const int error = errno;
    close(descriptor);
    errno = error;
    return moved;
}

}  // namespace

/// What the first instance holds, and the thread that takes the arguments of later ones.
class InstanceGuard::Body {
public:
    Body(const Places& places, Listener listener)
        : _places(places), _listener(std::move(listener)) {}
    ~Body();

    InstanceLock& lock() { return _lock; }
    /// Fails: false, with errno.
    bool listen();

private:
    void serve();
    void serveOne(int connection);

    const Places _places;
    const Listener _listener;
    InstanceLock _lock;
    int _socket = -1;
    int _wake[2] = {-1, -1};
    std::thread _thread;
};

bool InstanceGuard::Body::listen() {
    if (pipe(_wake) != 0)
        return false;
    for (const int end : _wake)
        fcntl(end, F_SETFD, FD_CLOEXEC);
    const int listener = listenAt(_places.socket);
    _socket = listener < 0 ? -1 : above(_lock.descriptor(), listener);
    if (_socket < 0)
        return false;
    closeInChildren(_socket);
    // Signals are the application's own threads'.
    sigset_t all, before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    _thread = std::thread([this] { serve(); });
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return true;
}

/// Nobody sees a half of it: whoever looks has the gate.
InstanceGuard::Body::~Body() {
    InstanceLock gate;
    if (_thread.joinable()) {
        // Closing it would not wake the thread while a child has the pipe, too.
        while (write(_wake[1], "", 1) < 0 && errno == EINTR) {
        }
        _thread.join();
        gate.acquire(_places.gate, InstanceLock::Wait::Yes);
        unlink(_places.socket.c_str());
        keepInChildren(_socket);
        close(_socket);
    }
    for (const int end : _wake)
        if (end >= 0)
            close(end);
    _lock.release();
}

void InstanceGuard::Body::serve() {
    while (true) {
        pollfd events[] = {{_socket, POLLIN, 0}, {_wake[0], POLLIN, 0}};
        if (poll(events, 2, -1) < 0 && errno != EINTR)
            return;
        if (events[1].revents != 0)
            return;
        const int connection = events[0].revents != 0 ? accept(_socket, nullptr, nullptr) : -1;
        if (connection < 0)
            continue;
        fcntl(connection, F_SETFD, FD_CLOEXEC);
        serveOne(connection);
    }
}

void InstanceGuard::Body::serveOne(int connection) {
    const auto arguments = receive(connection);
    close(connection);
    if (!arguments || !_listener)
        return;
    try {
        _listener(*arguments);
    } catch (...) {
        // There is nobody to tell: the other instance has its answer.
    }
}

InstanceGuard::InstanceGuard(std::unique_ptr<Body> body) : _body(std::move(body)) {
}

InstanceGuard::~InstanceGuard() = default;

InstanceClaim InstanceGuard::claim(const FastString& appID, const Arguments& arguments,
                                   Listener listener, const InstanceGuardOptions& options) {
    const std::string own = ownFolder(options);
    // Without it one instance for the machine is still one, but nobody can be told of it.
    const bool canTalk = isPrivateFolder(own);
    if (!canTalk && options.scope == InstanceScope::User)
        return failed(own);
    const std::string name = "/" + fileName(appID);
    const std::string locks = lockFolder(options, own);
    const Places places = {locks + name + ".lock", locks + name + ".gate", own + name + ".socket"};
    // Once more only after an instance was met that ended just then.
    constexpr int kMostAttempts = 16;
    for (int i = 0; i < kMostAttempts; ++i) {
        auto body = std::make_unique<Body>(places, listener);
        InstanceLock gate;
        if (!gate.acquire(places.gate, InstanceLock::Wait::Yes))
            return failed(places.gate);
        const std::optional<bool> isFirst =
            body->lock().acquire(places.lock, InstanceLock::Wait::No);
        if (!isFirst)
            return failed(places.lock);
        if (*isFirst && canTalk && !body->listen())
            return failed(places.socket);
        if (*isFirst)
            return {InstanceState::First,
                    std::unique_ptr<InstanceGuard>(new InstanceGuard(std::move(body))), ""};
        const int connection = canTalk ? connectTo(places.socket) : -1;
        if (connection < 0)
            return {InstanceState::Running, nullptr,
                    "the other instance is out of reach: " + std::string(std::strerror(errno))};
        // The answer may take its time; others need not wait for it.
        gate.release();
        if (auto result = forward(connection, arguments))
            return std::move(*result);
    }
    return {InstanceState::Running, nullptr, "the other instance ends while it is asked"};
}

}  // namespace tav::ula
