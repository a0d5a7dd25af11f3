// SPDX-License-Identifier: MIT
#pragma once

#include "bench/JobQueue.h"
#include "bench/QtApplication.h"
#include "ula/MainThreadCaller.h"

#include <CoreFoundation/CoreFoundation.h>
#include <QCoreApplication>
#include <QObject>
#include <asio.hpp>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <glib.h>
#include <mutex>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>
#include <uv.h>

/// Ours and the peers as one shape. `run` serves the calling thread until a job calls `quit`;
/// `post` queues a job from any thread; `call` also waits until it has run.
namespace tav::bench {

/// A synchronous call on top of a loop that only has asynchronous ones.
template <class Loop>
void postAndWait(Loop& loop, const Job& job) {
    std::mutex mutex;
    std::condition_variable changed;
    bool done = false;
    loop.post([&] {
        job();
        const std::lock_guard lock(mutex);
        done = true;
        changed.notify_one();
    });
    std::unique_lock lock(mutex);
    changed.wait(lock, [&done] { return done; });
}

struct OurLoop {
    ula::MainThreadCaller* const caller = ula::MainThreadCaller::instance();

    void run() { CFRunLoopRunInMode(kCFRunLoopDefaultMode, 1e10, false); }
    void quit() { CFRunLoopStop(CFRunLoopGetCurrent()); }
    template <class Function>
    void post(Function function) {
        caller->callAsync(std::move(function));
    }
    void call(const Job& job) { caller->callSync(job); }
};

/// A queue of the program's own behind libuv's wake-up.
class UvLoop {
public:
    UvLoop() {
        uv_loop_init(&_loop);
        _wakeUp.data = this;
        uv_async_init(&_loop, &_wakeUp, [](uv_async_t* handle) {
            static_cast<UvLoop*>(handle->data)->_jobs.runAll();
        });
    }
    ~UvLoop() {
        uv_close(reinterpret_cast<uv_handle_t*>(&_wakeUp), nullptr);
        uv_run(&_loop, UV_RUN_DEFAULT);
        uv_loop_close(&_loop);
    }

    void run() { uv_run(&_loop, UV_RUN_DEFAULT); }
    void quit() { uv_stop(&_loop); }
    template <class Function>
    void post(Function function) {
        _jobs.add(std::move(function));
        uv_async_send(&_wakeUp);
    }
    void call(const Job& job) { postAndWait(*this, job); }

private:
    uv_loop_t _loop{};
    uv_async_t _wakeUp{};
    JobQueue _jobs;
};

/// The plainest program: an eventfd, written only when the queue was empty.
class EventfdLoop {
public:
    ~EventfdLoop() { close(_event); }

    void run() {
        _isRunning = true;
        pollfd wait{_event, POLLIN, 0};
        while (_isRunning) {
            poll(&wait, 1, -1);
            eventfd_t count = 0;
            eventfd_read(_event, &count);
            _jobs.runAll();
        }
    }
    void quit() { _isRunning = false; }
    template <class Function>
    void post(Function function) {
        if (_jobs.add(std::move(function)))
            eventfd_write(_event, 1);
    }
    void call(const Job& job) { postAndWait(*this, job); }

private:
    const int _event = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    JobQueue _jobs;
    bool _isRunning = false;
};

/// No queue at all: one thread writes, the other answers. What a round trip cannot be below.
class PingPong {
public:
    ~PingPong() {
        close(_ping);
        close(_pong);
    }

    void run() {
        for (_isRunning = true; _isRunning;) {
            eventfd_t count = 0;
            eventfd_read(_ping, &count);
            if (_job)
                (*_job)();
            eventfd_write(_pong, 1);
        }
    }
    void quit() { _isRunning = false; }
    void call(const Job& job) {
        _job = &job;
        eventfd_write(_ping, 1);
        eventfd_t count = 0;
        eventfd_read(_pong, &count);
    }

private:
    const int _ping = eventfd(0, EFD_CLOEXEC);
    const int _pong = eventfd(0, EFD_CLOEXEC);
    /// The descriptors order what both threads do with it.
    std::atomic<const Job*> _job = nullptr;
    bool _isRunning = false;
};

class AsioLoop {
public:
    void run() {
        const auto work = asio::make_work_guard(_context);
        _context.restart();
        _context.run();
    }
    void quit() { _context.stop(); }
    template <class Function>
    void post(Function function) {
        asio::post(_context, std::move(function));
    }
    void call(const Job& job) { postAndWait(*this, job); }

private:
    asio::io_context _context{1};
};

class GLibLoop {
public:
    ~GLibLoop() { g_main_loop_unref(_loop); }

    void run() { g_main_loop_run(_loop); }
    void quit() { g_main_loop_quit(_loop); }
    template <class Function>
    void post(Function function) {
        GSource* source = g_idle_source_new();
        // As g_main_context_invoke does.
        g_source_set_priority(source, G_PRIORITY_DEFAULT);
        g_source_set_callback(source, call<Function>, new Function(std::move(function)),
                              [](gpointer held) { delete static_cast<Function*>(held); });
        g_source_attach(source, nullptr);
        g_source_unref(source);
    }
    void call(const Job& job) { postAndWait(*this, job); }

private:
    template <class Function>
    static gboolean call(gpointer held) {
        (*static_cast<Function*>(held))();
        return G_SOURCE_REMOVE;
    }

    GMainLoop* const _loop = g_main_loop_new(nullptr, FALSE);
};

/// Serves GLib's default context for so long.
inline void runGLibFor(std::chrono::milliseconds time) {
    GMainLoop* const loop = g_main_loop_new(nullptr, FALSE);
    const auto quit = [](gpointer held) -> gboolean {
        g_main_loop_quit(static_cast<GMainLoop*>(held));
        return G_SOURCE_REMOVE;
    };
    g_timeout_add(static_cast<guint>(time.count()), quit, loop);
    g_main_loop_run(loop);
    g_main_loop_unref(loop);
}

class QtLoop {
public:
    QtLoop() { needQtApplication(); }

    void run() { QCoreApplication::exec(); }
    void quit() { QCoreApplication::quit(); }
    template <class Function>
    void post(Function function) {
        QMetaObject::invokeMethod(&_receiver, std::move(function), Qt::QueuedConnection);
    }
    void call(const Job& job) {
        QMetaObject::invokeMethod(&_receiver, job, Qt::BlockingQueuedConnection);
    }

private:
    QObject _receiver;
};

}  // namespace tav::bench
