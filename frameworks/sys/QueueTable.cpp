// SPDX-License-Identifier: MIT
#include "sys/QueueTable.h"

#include <cerrno>
#include <pthread.h>
#include <sys/epoll.h>
#include <sys/inotify.h>
#include <unistd.h>
#include <utility>

namespace kernelqueue {

QueueTable& QueueTable::instance() {
    // Never destroyed: a process may fork until its very end.
    static auto* const table = new QueueTable;
    return *table;
}

QueueTable::QueueTable() {
    pthread_atfork(beforeFork, afterForkInParent, afterForkInChild);
}

int QueueTable::add() {
    std::lock_guard lock(_mutex);
    std::erase_if(_queues, [this](const auto& entry) { return !isMarked(entry.first); });
    const int descriptor = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (descriptor < 0)
        return -1;
    if (!mark(descriptor)) {
        const int error = errno;
        close(descriptor);
        errno = error;
        return -1;
    }
    _queues[descriptor] = std::make_shared<EventQueue>(descriptor);
    return descriptor;
}

std::shared_ptr<EventQueue> QueueTable::find(int descriptor) {
    std::lock_guard lock(_mutex);
    const auto found = _queues.find(descriptor);
    if (found == _queues.end())
        return nullptr;
    if (isMarked(descriptor))
        return found->second;
    _queues.erase(found);
    return nullptr;
}

bool QueueTable::mark(int descriptor) {
    if (_marks < 0)
        _marks = epoll_create1(EPOLL_CLOEXEC);
    epoll_event nothing{};
    return _marks >= 0 && epoll_ctl(_marks, EPOLL_CTL_ADD, descriptor, &nothing) == 0;
}

bool QueueTable::isMarked(int descriptor) const {
    epoll_event nothing{};
    return epoll_ctl(_marks, EPOLL_CTL_MOD, descriptor, &nothing) == 0;
}

void QueueTable::beforeFork() {
    instance()._mutex.lock();
}

void QueueTable::afterForkInParent() {
    instance()._mutex.unlock();
}

void QueueTable::afterForkInChild() {
    instance().leaveQueuesToParent();
    instance()._mutex.unlock();
}

/// What a queue knows may be half changed by a thread that the child does not have, so it is not
/// destroyed but left where it is.
void QueueTable::leaveQueuesToParent() {
    for (const auto& [descriptor, queue] : _queues)
        if (isMarked(descriptor))
            close(descriptor);
    static const Queues* parents = nullptr;
    parents = new Queues(std::move(_queues));
    static_cast<void>(parents);
    _queues.clear();
    if (_marks >= 0)
        close(_marks);
    _marks = -1;
}

}  // namespace kernelqueue
