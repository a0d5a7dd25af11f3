// SPDX-License-Identifier: MIT
#include "ula/InstanceGuard.h"

#include "ula/SpecialFolders.h"
#include "ula/src/Core/InstanceChannel.h"
#include "ula/src/Core/InstanceLock.h"

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

/// The files of one application.
struct Places {
    std::string lock;  ///< held as long as the instance lives
    /// Held while an instance of this user's begins or ends, or another looks for it. Never where
    /// others could hold it for good.
    std::string gate;
    std::string socket;
    /// Whether the user has a folder for the latter two.
    bool canTalk = false;
};

/// The same in every locale, or there were two files for one identifier.
bool isPlainInName(char byte) {
    return (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') ||
           (byte >= 'a' && byte <= 'z') || byte == '.';
}

/// Different for different identifiers, and good as a file's name.
std::string fileName(const FastString& appID) {
    constexpr std::size_t kReadable = 32;
    constexpr std::uint64_t kBasis = 14695981039346656037u, kPrime = 1099511628211u;
    std::string name;
    std::uint64_t hash = kBasis;
    for (const char byte : appID.toStdString()) {
        hash = (hash ^ static_cast<unsigned char>(byte)) * kPrime;
        if (name.size() < kReadable)
            name += isPlainInName(byte) ? byte : '-';
    }
    char digits[20];
    std::snprintf(digits, sizeof digits, "-%016llx", static_cast<unsigned long long>(hash));
    return (name.starts_with('.') ? "-" : "") + name + digits;
}

/// Made if need be, with rights of its own whatever the umask. What others could write to decides
/// nothing. Fails: false, with errno.
bool makePrivateFolder(const std::filesystem::path& path) {
    std::error_code error;
    std::filesystem::create_directories(path.parent_path(), error);
    struct stat item {};
    if ((mkdir(path.c_str(), 0700) != 0 && errno != EEXIST) || stat(path.c_str(), &item) != 0)
        return false;
    const bool isFolder = S_ISDIR(item.st_mode);
    errno = isFolder ? EPERM : ENOTDIR;
    return isFolder && item.st_uid == geteuid() && (item.st_mode & 022) == 0;
}

/// The same one for all users: not on every system may all write to the first.
std::string sharedFolder() {
    struct stat item {};
    const bool isForAll = stat("/var/lock", &item) == 0 && (item.st_mode & S_IWOTH) != 0;
    return isForAll ? "/var/lock" : "/tmp";
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

Places placesOf(const FastString& appID, const InstanceGuardOptions& options,
                const std::string& own) {
    const std::string name = "/" + fileName(appID);
    return {lockFolder(options, own) + name + ".lock", own + name + ".gate", own + name + ".socket",
            makePrivateFolder(own)};
}

InstanceClaim running(const std::string& why) {
    return {InstanceState::Running, nullptr, why};
}

InstanceClaim failed(const std::string& what) {
    return {InstanceState::Failed, nullptr, what + ": " + std::strerror(errno)};
}

/// To the instance that has the lock. Nothing when it has ended in the middle of it.
std::optional<InstanceClaim> forward(int connection, const std::vector<std::string>& arguments) {
    const Delivery delivery = deliver(connection, arguments);
    close(connection);
    switch (delivery) {
    case Delivery::Taken:
        return InstanceClaim{InstanceState::Forwarded, nullptr, ""};
    case Delivery::NoAnswer:
        return running("the other instance does not answer");
    case Delivery::TooMuch:
        return running("the arguments are too long to be handed over");
    case Delivery::Broken:
        break;
    }
    return std::nullopt;
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

    /// Nothing when an instance was met that ended just then.
    static std::optional<InstanceClaim> attempt(const Places& places, const Arguments& arguments,
                                                const Listener& listener);
    bool isOfThisProcess() const { return _process == getpid(); }

private:
    /// Fails: false, with errno.
    bool listen();
    bool startThread();
    void serve();
    void serveOne(int connection);

    const pid_t _process = getpid();
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
    _socket = openInThisProcess([this] {
        const int listener = listenAt(_places.socket);
        return listener < 0 ? -1 : above(_lock.descriptor(), listener);
    });
    return _socket >= 0 && startThread();
}

bool InstanceGuard::Body::startThread() {
    // Signals are the application's own threads'.
    sigset_t all, before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    try {
        _thread = std::thread([this] { serve(); });
    } catch (const std::system_error& error) {
        errno = error.code().value();
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return _thread.joinable();
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
    }
    if (_socket >= 0) {
        unlink(_places.socket.c_str());
        closeInThisProcess(_socket);
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

std::optional<InstanceClaim> InstanceGuard::Body::attempt(const Places& places,
                                                          const Arguments& arguments,
                                                          const Listener& listener) {
    InstanceLock gate;
    auto body = std::make_unique<Body>(places, listener);
    if (places.canTalk && !gate.acquire(places.gate, InstanceLock::Wait::Yes))
        return failed(places.gate);
    const std::optional<bool> isFirst = body->_lock.acquire(places.lock, InstanceLock::Wait::No);
    if (!isFirst)
        return failed(places.lock);
    if (*isFirst && places.canTalk && !body->listen())
        return failed(places.socket);
    if (*isFirst)
        return InstanceClaim{InstanceState::First,
                             std::unique_ptr<InstanceGuard>(new InstanceGuard(std::move(body))),
                             ""};
    if (!places.canTalk)
        return running("there is no folder of the user's own to reach the other instance");
    const int connection = connectTo(places.socket);
    if (connection < 0)
        return running("the other instance is out of reach: " + std::string(std::strerror(errno)));
    // The answer may take its time; others need not wait for it.
    gate.release();
    return forward(connection, arguments);
}

InstanceGuard::InstanceGuard(std::unique_ptr<Body> body) : _body(std::move(body)) {
}

/// A forked child that ends has neither the thread nor the lock: what it would take down is its
/// parent's.
InstanceGuard::~InstanceGuard() {
    if (!_body->isOfThisProcess())
        static_cast<void>(_body.release());
}

InstanceClaim InstanceGuard::claim(const FastString& appID, const Arguments& arguments,
                                   Listener listener, const InstanceGuardOptions& options) {
    const std::string own = ownFolder(options);
    const Places places = placesOf(appID, options, own);
    // Without it one instance for the machine is still one, but nobody can be told of it.
    if (!places.canTalk && options.scope == InstanceScope::User)
        return failed(own);
    // Once more only after an instance was met that ended just then.
    constexpr int kMostAttempts = 16;
    for (int i = 0; i < kMostAttempts; ++i)
        if (auto result = Body::attempt(places, arguments, listener))
            return std::move(*result);
    return running("the other instance ends while it is asked");
}

}  // namespace tav::ula
