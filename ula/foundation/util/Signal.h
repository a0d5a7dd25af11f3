// SPDX-License-Identifier: MIT
#pragma once

#include "ula/foundation/thread/Mutex.h"

#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <sys/single_threaded.h>
#include <utility>
#include <vector>

namespace tav::util {

namespace detail {

/// What a `Connection` needs to know of a slot, whatever the slot's arguments.
class SlotBase {
public:
    virtual ~SlotBase() = default;
    bool isConnected() const { return _connected.load(std::memory_order_acquire); }
    /// True for the call that ended the connection.
    bool end() { return _connected.exchange(false, std::memory_order_acq_rel); }

private:
    std::atomic<bool> _connected = true;
};

class SlotListBase {
public:
    virtual ~SlotListBase() = default;
    virtual void remove(const SlotBase* slot) = 0;
};

/// A count that leaves out the locked instruction while the process has a single thread.
class PinCount {
public:
    void add() {
        if (__libc_single_threaded)
            _count.store(value() + 1, std::memory_order_relaxed);
        else
            _count.fetch_add(1);
    }
    /// The count after the subtraction.
    int subtract() {
        if (!__libc_single_threaded)
            return _count.fetch_sub(1) - 1;
        _count.store(value() - 1, std::memory_order_relaxed);
        return value();
    }
    int load() const { return _count.load(); }

private:
    int value() const { return _count.load(std::memory_order_relaxed); }
    std::atomic<int> _count = 1;
};

}  // namespace detail

/// One slot's connection to a signal. Copies speak of the same connection; losing them all leaves
/// the slot connected.
/// Thread: any.
class Connection {
public:
    Connection() = default;
    Connection(std::shared_ptr<detail::SlotBase> slot, std::weak_ptr<detail::SlotListBase> list)
        : _slot(std::move(slot)), _list(std::move(list)) {}

    /// After it has returned no emission in this thread calls the slot, not even one that is under
    /// way; another thread may be inside it. Safe from within the slot and after the signal is
    /// gone.
    void disconnect() {
        if (!_slot || !_slot->end())
            return;
        if (const auto list = _list.lock())
            list->remove(_slot.get());
    }
    bool isConnected() const { return _slot && _slot->isConnected() && !_list.expired(); }

private:
    std::shared_ptr<detail::SlotBase> _slot;
    std::weak_ptr<detail::SlotListBase> _list;
};

/// Calls every connected function, in the order of connection, in the thread that emits.
///
/// Functions connected during an emission are first called by the next one; those disconnected
/// during it and not yet called are not called. A slot may connect, disconnect, emit again, and
/// destroy the signal (the slots after it are then not called).
/// What a slot throws leaves `emit`; the slots after it are not called.
///
/// Thread: any number of threads may emit, connect and disconnect at once; destruction must not
/// overlap a call that another thread makes on the signal.
template <class... Args>
class Signal {
public:
    using Slot = std::function<void(Args...)>;

    Signal() : _list(std::make_shared<SlotList>()) {}
    Signal(const Signal&) = delete;
    Signal& operator=(const Signal&) = delete;
    ~Signal() { _list->close(_list); }

    /// Connects a function; an empty one is connected and does nothing.
    template <class Callable>
    Connection connect(Callable&& function) {
        auto slot = std::make_shared<SlotNode>(Slot(std::forward<Callable>(function)));
        // From here on another thread's emission may call the slot, which may destroy the signal.
        const std::shared_ptr<SlotList> list = _list;
        list->add(slot);
        return Connection(std::move(slot), list);
    }

    void emit(Args... args) const {
        SlotList* list = _list.get();
        if (list->size() != 0)
            list->call(args...);
    }

    std::size_t slotCount() const { return _list->size(); }

private:
    class SlotNode : public detail::SlotBase {
    public:
        explicit SlotNode(Slot function) : _function(std::move(function)) {
            if (!_function)
                _function = [](Args...) {};
        }
        void call(Args&... args) const { _function(args...); }

    private:
        Slot _function;
    };

    /// The slots as an array that is replaced whole, never changed, so that emissions read it
    /// without a lock. Arrays that were replaced while somebody was emitting are freed by the
    /// last one to leave.
    class SlotList : public detail::SlotListBase {
    public:
        using Array = std::vector<std::shared_ptr<SlotNode>>;

        ~SlotList() override { delete _slots.load(); }

        std::size_t size() const { return _size.load(std::memory_order_relaxed); }

        void add(std::shared_ptr<SlotNode> slot) {
            Garbage unused;
            thread::ScopedLock lock(_mutex);
            auto next = std::make_unique<Array>(*_slots.load());
            next->push_back(std::move(slot));
            replace(std::move(next), unused);
        }

        void remove(const detail::SlotBase* slot) override {
            Garbage unused;
            thread::ScopedLock lock(_mutex);
            auto next = std::make_unique<Array>();
            for (const auto& other : *_slots.load())
                if (other.get() != slot)
                    next->push_back(other);
            replace(std::move(next), unused);
        }

        void call(Args&... args) {
            const Pin pin(*this);
            for (const auto& slot : *_slots.load())
                if (slot->isConnected())
                    slot->call(args...);
        }

        /// The signal is going: running emissions end after the slot they are in, and the last of
        /// them keeps `self` until then.
        void close(const std::shared_ptr<SlotList>& self) {
            {
                // A `Connection` may replace the array at this moment.
                thread::ScopedLock lock(_mutex);
                _closed = true;
                for (const auto& slot : *_slots.load())
                    slot->end();
                if (_pins.load() > 1)
                    _self = self;
            }
            unpin();
        }

    private:
        class Pin {
        public:
            explicit Pin(SlotList& list) : _list(list) { _list._pins.add(); }
            ~Pin() { _list.unpin(); }

        private:
            SlotList& _list;
        };

        /// Arrays to be freed. Declared before the lock is taken and so freed after it is given
        /// back: the slots in them may run any code when they are destroyed.
        using Garbage = std::vector<std::unique_ptr<Array>>;

        void replace(std::unique_ptr<Array> next, Garbage& unused) {
            _size.store(next->size(), std::memory_order_relaxed);
            _replaced.emplace_back(_slots.exchange(next.release()));
            _hasReplaced.store(true);
            collect(unused);
        }

        /// Takes the replaced arrays when no emission can be reading one: each pins the list
        /// before it takes the current array. The mutex must be held.
        void collect(Garbage& unused) {
            if (_closed || _pins.load() > 1)
                return;
            unused.swap(_replaced);
            _hasReplaced.store(false);
        }

        void unpin() {
            const int left = _pins.subtract();
            if (left == 1 && _hasReplaced.load())
                freeReplaced();
            if (left == 0)
                std::shared_ptr<SlotList>(std::move(_self)).reset();
        }

        void freeReplaced() {
            Garbage unused;
            thread::ScopedLock lock(_mutex);
            collect(unused);
        }

        mutable thread::Mutex _mutex;
        std::atomic<Array*> _slots = new Array;
        std::atomic<std::size_t> _size = 0;
        Garbage _replaced;
        std::atomic<bool> _hasReplaced = false;
        bool _closed = false;
        /// One for the signal while it lives, one for each running emission.
        detail::PinCount _pins;
        std::shared_ptr<SlotList> _self;
    };

    std::shared_ptr<SlotList> _list;
};

using Signal0 = Signal<>;

}  // namespace tav::util
