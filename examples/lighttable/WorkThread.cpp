// SPDX-License-Identifier: MIT
#include "examples/lighttable/WorkThread.h"

#include <ula/ScopedARPool.h>

namespace lighttable {

using namespace tav::ula;

WorkThread::WorkThread() {
    CFRunLoopSourceContext context{};
    context.info = this;
    context.perform = [](void* self) { static_cast<WorkThread*>(self)->serve(); };
    _source = CFRunLoopSourceCreate(kCFAllocatorDefault, 0, &context);
    _thread = std::thread([this] { work(); });
}

WorkThread::~WorkThread() {
    {
        const std::lock_guard lock(_mutex);
        _isEnding = true;
        wake();
    }
    _thread.join();
    CFRelease(_source);
}

void WorkThread::add(Job job) {
    const std::lock_guard lock(_mutex);
    _jobs.push_back(std::move(job));
    wake();
}

void WorkThread::tell(std::function<void()> function) {
    MainThreadCaller::instance()->callAsyncOwned(_owner, std::move(function));
}

// The signal stays until the loop sees it, also when that has not begun yet.
void WorkThread::wake() {
    CFRunLoopSourceSignal(_source);
    if (_runLoop != nullptr)
        CFRunLoopWakeUp(_runLoop);
}

void WorkThread::work() {
    const ScopedARPool pool;
    CFRunLoopAddSource(CFRunLoopGetCurrent(), _source, kCFRunLoopDefaultMode);
    {
        const std::lock_guard lock(_mutex);
        _runLoop = CFRunLoopGetCurrent();
    }
    CFRunLoopRun();
    const std::lock_guard lock(_mutex);
    CFRunLoopSourceInvalidate(_source);
    _runLoop = nullptr;
}

void WorkThread::serve() {
    for (;;) {
        std::vector<Job> jobs;
        {
            const std::lock_guard lock(_mutex);
            jobs.swap(_jobs);
            if (jobs.empty() && _isEnding)
                CFRunLoopStop(CFRunLoopGetCurrent());
        }
        if (jobs.empty())
            return;
        for (Job& job : jobs) {
            const ScopedARPool pool;
            job();
            job = nullptr;
        }
    }
}

}  // namespace lighttable
