// SPDX-License-Identifier: MIT
#include "ula/CallOwner.h"

#include "ula/MainThreadCaller.h"
#include "ula/foundation/thread/ConditionVariable.h"
#include "ula/foundation/thread/Thread.h"

namespace tav::ula {

/// What the calls know of their owner.
class CallOwner::Life {
public:
    void call(const util::Function0<void>& function) {
        if (!begin())
            return;
        struct End {
            ~End() { life.end(); }
            Life& life;
        } const end{*this};
        function();
    }

    void finish() {
        Lock lock(_mutex);
        _gone = true;
        // In the thread that runs the call it is further up on this very stack.
        while (_running > 0 && _runner != thread::getThreadId())
            _ended.wait(lock);
    }

private:
    using Lock = thread::ScopedLock<thread::Mutex>;

    bool begin() {
        const Lock lock(_mutex);
        if (_gone)
            return false;
        // Several at once, of one thread, where a call runs the loop again.
        ++_running;
        _runner = thread::getThreadId();
        return true;
    }
    void end() {
        {
            const Lock lock(_mutex);
            --_running;
        }
        _ended.notify_all();
    }

    thread::Mutex _mutex;
    thread::ConditionVariable _ended;
    int _running = 0;
    std::uint32_t _runner = 0;
    bool _gone = false;
};

CallOwner::CallOwner() : _life(new Life) {
}

CallOwner::~CallOwner() {
    _life->finish();
}

util::SharedPtr<CallHandle>
MainThreadCaller::callAsyncOwned(const CallOwner& owner, const util::Function0<void>& function) {
    return callAsync([life = owner._life, function] {
        if (function)
            life->call(function);
    });
}

}  // namespace tav::ula
