// SPDX-License-Identifier: MIT
#include "ForkGuard.h"

#include "CoreFoundation/ConstantStrings.h"
#include "Membership.h"
#include "ModeName.h"
#include "RunLoop.h"
#include "ThreadRunLoop.h"

#include <algorithm>
#include <pthread.h>

namespace cf {

ForkGuard& ForkGuard::instance() {
    static auto* const guard = new ForkGuard;
    return *guard;
}

ForkGuard::ForkGuard() {
    pthread_atfork(prepare, parent, child);
}

void ForkGuard::enter(RunLoop& loop) {
    std::lock_guard guard(_mutex);
    _loops.push_back(&loop);
}

void ForkGuard::leave(RunLoop& loop) {
    std::lock_guard guard(_mutex);
    std::erase(_loops, &loop);
}

// Takes the locks that the child must find free, in the order in which they are always taken.
void ForkGuard::prepare() {
    ForkGuard& guard = instance();
    ThreadRunLoop::mainLock().lock();
    Membership::lock().lock();
    guard._forking = ThreadRunLoop::ofThisThread();
    if (guard._forking != nullptr)
        guard._forking->lock().lock();
    guard._mutex.lock();
    modeNamesLock().lock();
    constantStringsLock().lock();
}

void ForkGuard::unlock() {
    constantStringsLock().unlock();
    modeNamesLock().unlock();
    _mutex.unlock();
    if (_forking != nullptr)
        _forking->lock().unlock();
    _forking = nullptr;
    Membership::lock().unlock();
    ThreadRunLoop::mainLock().unlock();
}

void ForkGuard::parent() {
    instance().unlock();
}

void ForkGuard::child() {
    ForkGuard& guard = instance();
    for (RunLoop* loop : guard._loops) {
        if (loop == guard._forking)
            loop->renew();
        else
            loop->disconnect();
    }
    guard.unlock();
}

}  // namespace cf
