// SPDX-License-Identifier: MIT
#include "ula/MainThreadCaller.h"

#include "ula/foundation/thread/Thread.h"
#include "ula/src/Core/PlatformMainThreadCaller.h"

namespace tav::ula {

std::atomic<MainThreadCaller*> MainThreadCaller::_instance;

CallHandle::~CallHandle() = default;

MainThreadCaller::MainThreadCaller() : _state(new State) {
    _state->mainThreadId = thread::getThreadId();
}

MainThreadCaller::~MainThreadCaller() = default;

MainThreadCaller* MainThreadCaller::instance() {
    if (!_instance) {
        _instance = createPlatformMainThreadCaller();
        _instance.load()->_state->mainThreadId = thread::getThreadId();
    }
    return _instance;
}

void MainThreadCaller::destroyInstance() {
    MainThreadCaller* const caller = _instance;
    if (!caller)
        return;
    caller->_state->running = false;
    caller->cancelAllJobs();
    delete caller;
    _instance = nullptr;
}

bool MainThreadCaller::isMainThread() const {
    return thread::getThreadId() == _state->mainThreadId;
}

}  // namespace tav::ula
