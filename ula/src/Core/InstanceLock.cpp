// SPDX-License-Identifier: MIT
#include "ula/src/Core/InstanceLock.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <mutex>
#include <pthread.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace tav::ula {

namespace {

/// A lock belongs to what children inherit with the descriptor: they would hold it on.
class ParentsDescriptors {
public:
    /// Never destroyed: processes are forked until the very end.
    static ParentsDescriptors& instance() {
        static auto* const descriptors = new ParentsDescriptors;
        return *descriptors;
    }

    int open(const std::function<int()>& opener) {
        const std::lock_guard lock(_mutex);
        const int descriptor = opener();
        if (descriptor >= 0)
            _descriptors.push_back(descriptor);
        return descriptor;
    }
    void close(int descriptor) {
        const std::lock_guard lock(_mutex);
        std::erase(_descriptors, descriptor);
        ::close(descriptor);
    }

private:
    ParentsDescriptors() {
        pthread_atfork([] { instance()._mutex.lock(); }, [] { instance()._mutex.unlock(); },
                       [] { instance().closeAll(); });
    }
    void closeAll() {
        for (const int descriptor : _descriptors)
            ::close(descriptor);
        _descriptors.clear();
        _mutex.unlock();
    }

    std::mutex _mutex;
    std::vector<int> _descriptors;
};

/// There at once with the rights that it keeps, whatever the umask: another user's instance may be
/// looking for it.
bool makeFile(const std::string& path) {
    std::string name = path + ".XXXXXX";
    const int file = mkstemp(name.data());
    if (file < 0)
        return false;
    const bool isMade = fchmod(file, 0644) == 0 && link(name.c_str(), path.c_str()) == 0;
    const int error = errno;
    unlink(name.c_str());
    close(file);
    errno = error;
    return isMade || error == EEXIST;
}

/// Network file systems lock for writing only what is open for it. Another user's file in a shared
/// folder is not, and must not be opened with the wish to make it. What is no file could keep the
/// opening waiting.
int openFile(const std::string& path) {
    constexpr int kFlags = O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
    int file = -1;
    do {
        file = open(path.c_str(), O_RDWR | kFlags);
        if (file < 0 && (errno == EACCES || errno == EROFS))
            file = open(path.c_str(), O_RDONLY | kFlags);
    } while (file < 0 && errno == ENOENT && makeFile(path));
    return file;
}

/// Somebody may have removed the file between its opening and its locking.
bool isStill(const std::string& path, int file) {
    struct stat opened {
    }, named{};
    return fstat(file, &opened) == 0 && lstat(path.c_str(), &named) == 0 &&
           opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

int lock(int file, InstanceLock::Wait wait) {
    const int how = wait == InstanceLock::Wait::Yes ? LOCK_EX : LOCK_EX | LOCK_NB;
    int result;
    while ((result = flock(file, how)) != 0 && errno == EINTR) {
    }
    return result;
}

bool isFile(int file) {
    struct stat item {};
    if (fstat(file, &item) != 0)
        return false;
    errno = EINVAL;
    return S_ISREG(item.st_mode);
}

}  // namespace

std::optional<bool> InstanceLock::acquire(const std::string& path, Wait wait) {
    while (true) {
        _file = openInThisProcess([&path] { return openFile(path); });
        if (_file < 0)
            return std::nullopt;
        const bool isLocked = isFile(_file) && lock(_file, wait) == 0;
        if (isLocked && isStill(path, _file))
            return true;
        const int error = errno;
        release();
        errno = error;
        if (!isLocked)
            return error == EWOULDBLOCK ? std::optional(false) : std::nullopt;
    }
}

void InstanceLock::release() {
    if (_file >= 0)
        closeInThisProcess(std::exchange(_file, -1));
}

int openInThisProcess(const std::function<int()>& opener) {
    return ParentsDescriptors::instance().open(opener);
}

void closeInThisProcess(int descriptor) {
    ParentsDescriptors::instance().close(descriptor);
}

}  // namespace tav::ula
