// SPDX-License-Identifier: MIT
#include "ula/src/Core/WorkerInstance.h"

#include "ula/foundation/thread/Mutex.h"
#include "ula/src/Core/PlatformFSWatcherWorker.h"

#include <atomic>
#include <pthread.h>

namespace tav::ula::WorkerInstance {

namespace {

using Lock = thread::ScopedLock<thread::Mutex>;

struct State {
    thread::Mutex mutex;
    std::shared_ptr<FSWatcherWorker> worker;
    /// The same, to be read without the lock by the only thread of a forked child.
    std::atomic<FSWatcherWorker*> current = nullptr;
    int registering = 0;
};

/// Never destroyed: there may be watchers, and forks, until the very end of the process.
std::atomic<State*>& statePointer() {
    static std::atomic<State*> pointer = new State;
    return pointer;
}

State& state() {
    return *statePointer();
}

/// No lock is taken for a fork, which would wait for slots. The child begins anew, and leaves what
/// its parent has as it is.
void afterForkInChild() {
    if (FSWatcherWorker* const worker = state().current)
        worker->abandon();
    // Still referred to, so that it is not reported as lost.
    static State* parents = nullptr;
    parents = statePointer().exchange(new State);
    static_cast<void>(parents);
}

void set(State& state, std::shared_ptr<FSWatcherWorker> worker) {
    state.current = worker.get();
    state.worker = std::move(worker);
}

}  // namespace

std::shared_ptr<FSWatcherWorker> get() {
    State& all = state();
    const Lock lock(all.mutex);
    return all.worker;
}

RegistrationTime::RegistrationTime() {
    State& all = state();
    const Lock lock(all.mutex);
    static const int registered = pthread_atfork(nullptr, nullptr, afterForkInChild);
    static_cast<void>(registered);
    if (!all.worker)
        set(all, createPlatformFSWatcherWorker());
    _worker = all.worker;
    ++all.registering;
}

RegistrationTime::~RegistrationTime() {
    State& all = state();
    const Lock lock(all.mutex);
    // None in a child that was forked meanwhile.
    if (all.registering > 0)
        --all.registering;
}

void releaseUnused() {
    State& all = state();
    const Lock lock(all.mutex);
    if (all.worker && all.registering == 0 && !all.worker->hasWatchers())
        set(all, nullptr);
}

}  // namespace tav::ula::WorkerInstance
