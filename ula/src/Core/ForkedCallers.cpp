// SPDX-License-Identifier: MIT
#include "ula/src/Core/ForkedCallers.h"

#include <algorithm>
#include <pthread.h>
#include <vector>

namespace tav::ula::ForkedCallers {

namespace {

using Lock = thread::ScopedLock<thread::Mutex>;

struct Registry {
    thread::Mutex mutex;
    std::vector<util::SharedPtr<JobQueue>> queues;
};

/// Never destroyed: a process may fork until its very end.
Registry& registry() {
    static auto* const registry = new Registry;
    return *registry;
}

void beforeFork() {
    registry().mutex.lock();
    for (const auto& queue : registry().queues)
        queue->beforeFork();
}

void afterForkInParent() {
    for (const auto& queue : registry().queues)
        queue->afterForkInParent();
    registry().mutex.unlock();
}

void afterForkInChild() {
    for (const auto& queue : registry().queues)
        queue->afterForkInChild();
    registry().mutex.unlock();
}

}  // namespace

void add(const util::SharedPtr<JobQueue>& queue) {
    static const int registered = pthread_atfork(beforeFork, afterForkInParent, afterForkInChild);
    static_cast<void>(registered);
    const Lock lock(registry().mutex);
    registry().queues.push_back(queue);
}

void remove(const util::SharedPtr<JobQueue>& queue) {
    const Lock lock(registry().mutex);
    std::erase(registry().queues, queue);
}

}  // namespace tav::ula::ForkedCallers
