// SPDX-License-Identifier: MIT
#include "CoreServices/MountLookup.h"

#include <chrono>
#include <fcntl.h>
#include <mutex>
#include <poll.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace coreservices {

namespace {

using Clock = std::chrono::steady_clock;
constexpr auto kLongest = std::chrono::milliseconds(100);

// The table as it was read last. The kernel tells through the descriptor that it has changed.
class MountTable {
public:
    // Never destroyed: threads that wait for a dead server may outlive the statics.
    static MountTable& instance() {
        static auto* table = new MountTable;
        return *table;
    }

    MountList mounts() {
        std::lock_guard lock(_mutex);
        if (!isFresh()) {
            _mounts = std::make_shared<std::vector<Mount>>(
                reachableMounts(parseMountInfo(readMountInfo())));
            _readAt = Clock::now();
        }
        return _mounts;
    }

private:
    // A child that is forked while another thread reads would find the lock held for ever.
    MountTable() {
        pthread_atfork([] { instance()._mutex.lock(); }, [] { instance()._mutex.unlock(); },
                       [] { instance()._mutex.unlock(); });
    }

    // A change after the question makes for one more reading, never for one too few.
    bool isFresh() {
        reopenElsewhere();
        pollfd table{_descriptor, POLLPRI, 0};
        bool changed = _descriptor < 0 || poll(&table, 1, 0) != 0;
        return !changed && _mounts != nullptr && Clock::now() - _readAt < kLongest;
    }

    // A forked child would share the changes with its parent, each of them told to one of both; and
    // the descriptor stays with the mounts that the process had when it was opened.
    void reopenElsewhere() {
        struct stat space {};
        stat("/proc/self/ns/mnt", &space);
        if (_descriptor >= 0 && _process == getpid() && _space == space.st_ino)
            return;
        if (_descriptor >= 0)
            close(_descriptor);
        _descriptor = open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC);
        _process = getpid();
        _space = space.st_ino;
        _mounts.reset();
    }

    std::mutex _mutex;
    MountList _mounts;
    Clock::time_point _readAt;
    int _descriptor = -1;
    pid_t _process = 0;
    ino_t _space = 0;
};

thread_local MountList viewed;

}  // namespace

MountList currentMounts() {
    return viewed != nullptr ? viewed : MountTable::instance().mounts();
}

MountView::MountView(MountList mounts) : _outer(std::exchange(viewed, std::move(mounts))) {
}

MountView::~MountView() {
    viewed = std::move(_outer);
}

}  // namespace coreservices
