// SPDX-License-Identifier: MIT
// The displays of this process's display server, and those who want to know of their changes.
#pragma once

#include "Changes.h"
#include "Server.h"

#include <ApplicationServices/CGDisplayConfiguration.h>
#include <CoreFoundation/RunLoopDescriptor.h>
#include <chrono>
#include <deque>
#include <functional>
#include <mutex>

namespace displays {

// The server is asked when it has told of a change, not at each look. While somebody is registered
// its connection is a source of the main run loop; otherwise the news is taken at the next look.
// Thread: any.
class DisplayList {
public:
    using Snapshot = std::shared_ptr<const Displays>;
    using Connect = std::function<std::unique_ptr<Server>()>;

    explicit DisplayList(Connect connect);
    DisplayList(const DisplayList&) = delete;
    DisplayList& operator=(const DisplayList&) = delete;
    ~DisplayList();

    __attribute__((visibility("default"))) static DisplayList& ofProcess();

    // As they are now; empty without a server. The same object until something changes.
    __attribute__((visibility("default"))) Snapshot current();

    void add(CGDisplayReconfigurationCallBack callback, void* userInfo);
    // Fails: false where there is no such registration.
    bool remove(CGDisplayReconfigurationCallBack callback, void* userInfo);

    void prepareFork() { _mutex.lock(); }
    void finishFork(bool isChild);

private:
    struct Listener {
        CGDisplayReconfigurationCallBack callback;
        void* userInfo;
        std::uint64_t number;
    };

    // With the lock held.
    void update();
    void connect();
    void disconnect();
    void follow();
    void replace(Displays displays);
    void signalDelivery();

    // Without it, on the main thread.
    void deliver();
    void tell(const Change& change);
    bool nextListener(std::uint64_t after, Listener* listener);

    std::mutex _mutex;
    const Connect _connect;
    std::unique_ptr<Server> _server;
    // Goes before the server, whose descriptor it watches.
    std::unique_ptr<cf::RunLoopDescriptor> _watch;
    CFRunLoopSourceRef _delivery;
    Snapshot _displays = std::make_shared<Displays>();
    std::chrono::steady_clock::time_point _nextAttempt{};
    std::vector<Listener> _listeners;
    std::uint64_t _lastNumber = 0;
    std::deque<Change> _changes;
};

}  // namespace displays
