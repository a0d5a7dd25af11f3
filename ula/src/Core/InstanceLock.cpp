// SPDX-License-Identifier: MIT
#include "ula/src/Core/InstanceLock.h"

#include <algorithm>
#include <cerrno>
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

    void add(int descriptor) {
        const std::lock_guard lock(_mutex);
        _descriptors.push_back(descriptor);
    }
    void remove(int descriptor) {
        const std::lock_guard lock(_mutex);
        std::erase(_descriptors, descriptor);
    }

private:
    ParentsDescriptors() {
        pthread_atfork([] { instance()._mutex.lock(); }, [] { instance()._mutex.unlock(); },
                       [] { instance().closeAll(); });
    }
    void closeAll() {
        for (const int descriptor : _descriptors)
            close(descriptor);
        _descriptors.clear();
        _mutex.unlock();
    }

    std::mutex _mutex;
    std::vector<int> _descriptors;
};

/// Files of other users in shared folders may be opened, but not with the wish to make them.
int openFile(const std::string& path) {
    constexpr int kFlags = O_RDONLY | O_CLOEXEC | O_NOFOLLOW;
    while (true) {
        int file = open(path.c_str(), kFlags);
        if (file >= 0 || errno != ENOENT)
            return file;
        file = open(path.c_str(), kFlags | O_CREAT | O_EXCL, 0644);
        if (file >= 0 || errno != EEXIST)
            return file;
    }
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

}  // namespace

std::optional<bool> InstanceLock::acquire(const std::string& path, Wait wait) {
    while (true) {
        const int file = openFile(path);
        if (file < 0)
            return std::nullopt;
        closeInChildren(file);
        _file = file;
        if (lock(file, wait) == 0) {
            if (isStill(path, file))
                return true;
            release();
            continue;
        }
        const int error = errno;
        release();
        errno = error;
        return error == EWOULDBLOCK ? std::optional(false) : std::nullopt;
    }
}

void InstanceLock::release() {
    if (_file < 0)
        return;
    keepInChildren(_file);
    close(std::exchange(_file, -1));
}

void closeInChildren(int descriptor) {
    ParentsDescriptors::instance().add(descriptor);
}

void keepInChildren(int descriptor) {
    ParentsDescriptors::instance().remove(descriptor);
}

}  // namespace tav::ula
