// SPDX-License-Identifier: MIT
// Watching files one by one: how long after a write the watcher is told, and what a process costs
// that watches a thousand files to which nothing happens. The times that are printed mean nothing
// here; the counters do.
#include "bench/MainLoops.h"
#include "bench/PeerData.h"
#include "bench/Quantile.h"
#include "bench/ScratchFolder.h"
#include "ula/FileSystemWatcher.h"

#include <QAbstractEventDispatcher>
#include <QFileSystemWatcher>
#include <QTimer>
#include <benchmark/benchmark.h>
#include <condition_variable>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gio/gio.h>
#include <memory>
#include <mutex>
#include <poll.h>
#include <sys/inotify.h>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

namespace {

using namespace tav::bench;

constexpr auto kPeriod = std::chrono::milliseconds(100);
constexpr auto kLongestWait = std::chrono::seconds(3);
constexpr std::uint32_t kMask = IN_MODIFY | IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF;

/// Writes to a file at moments of its own, one at a time, and takes the time until it is told.
class Writer {
public:
    static constexpr int kWrites = 30;

    explicit Writer(std::function<void()> finished) : _finished(std::move(finished)) {
        std::ofstream(path()) << "text";
    }
    ~Writer() { _thread.join(); }

    std::string path() const { return _folder / "watched"; }
    void start() {
        _thread = std::thread([this] { run(); });
    }
    /// Thread: any.
    void told() {
        const std::lock_guard lock(_mutex);
        if (_isTold)
            return;
        _isTold = true;
        _delays.push_back(nanoseconds(Clock::now() - _written));
        _changed.notify_all();
    }
    bool isOver() {
        const std::lock_guard lock(_mutex);
        return _isOver;
    }
    /// Units: nanoseconds.
    std::vector<double>& delays() { return _delays; }

private:
    void run() {
        Random random(7);
        const int file = open(path().c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
        for (int i = 0; i < kWrites; ++i) {
            // At every place within a period, and behind what a peer holds back.
            std::this_thread::sleep_for(std::chrono::milliseconds(30 + random.below(200)));
            std::unique_lock lock(_mutex);
            _isTold = false;
            _written = Clock::now();
            if (write(file, "x", 1) == 1)
                _changed.wait_for(lock, kLongestWait, [this] { return _isTold; });
        }
        close(file);
        {
            const std::lock_guard lock(_mutex);
            _isOver = true;
        }
        _finished();
    }

    const ScratchFolder _folder{std::filesystem::temp_directory_path()};
    const std::function<void()> _finished;
    std::thread _thread;
    std::mutex _mutex;
    std::condition_variable _changed;
    bool _isTold = true;
    bool _isOver = false;
    Clock::time_point _written;
    std::vector<double> _delays;
};

/// The files of the idle process, and the time that it takes of a processor.
class IdleFiles {
public:
    explicit IdleFiles(std::int64_t count) {
        for (std::int64_t i = 0; i < count; ++i) {
            paths.push_back(_folder / std::to_string(i));
            std::ofstream(paths.back()) << "text";
        }
    }
    /// Of one second's, while `run` runs for some seconds. Units: nanoseconds.
    static double cost(const std::function<void(std::chrono::milliseconds)>& run) {
        const double before = usedNanoseconds();
        const auto began = Clock::now();
        run(std::chrono::seconds(4));
        return (usedNanoseconds() - before) / nanoseconds(Clock::now() - began) * 1e9;
    }

    std::vector<std::string> paths;

private:
    static double usedNanoseconds() {
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        const auto of = [](const timeval& time) {
            return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_usec) * 1e3;
        };
        return of(usage.ru_utime) + of(usage.ru_stime);
    }

    const ScratchFolder _folder{std::filesystem::temp_directory_path()};
};

using Slot = std::function<void()>;

/// Each contestant watches files, calls the slot at every change, and serves its loop.

class Ours {
public:
    Ours(const std::vector<std::string>& paths, const Slot& slot) {
        for (const std::string& path : paths) {
            _watchers.push_back(std::make_unique<tav::ula::FileSystemWatcher>(path, false));
            _watchers.back()->connect(
                [slot](const std::string&, tav::ula::FileSystemWatcherInfo) { slot(); });
        }
    }
    void runUntil(const std::function<bool()>& isOver) {
        while (!isOver())
            std::this_thread::sleep_for(kPeriod);
    }
    void runFor(std::chrono::milliseconds time) { std::this_thread::sleep_for(time); }

private:
    std::vector<std::unique_ptr<tav::ula::FileSystemWatcher>> _watchers;
};

/// A thread that looks every tenth of a second, with nothing around it.
class PolledInotify {
public:
    PolledInotify(const std::vector<std::string>& paths, Slot slot) : _slot(std::move(slot)) {
        for (const std::string& path : paths)
            inotify_add_watch(_descriptor, path.c_str(), kMask);
    }
    ~PolledInotify() { close(_descriptor); }
    void runUntil(const std::function<bool()>& isOver) {
        while (!isOver())
            look();
    }
    void runFor(std::chrono::milliseconds time) {
        for (const auto end = Clock::now() + time; Clock::now() < end;)
            look();
    }

private:
    void look() {
        std::this_thread::sleep_for(kPeriod);
        alignas(inotify_event) char buffer[65536];
        if (read(_descriptor, buffer, sizeof buffer) > 0)
            _slot();
    }

    const Slot _slot;
    const int _descriptor = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
};

/// What is possible: woken by the kernel.
class WaitingInotify {
public:
    WaitingInotify(const std::vector<std::string>& paths, Slot slot) : _slot(std::move(slot)) {
        for (const std::string& path : paths)
            inotify_add_watch(_descriptor, path.c_str(), kMask);
    }
    ~WaitingInotify() { close(_descriptor); }
    void runUntil(const std::function<bool()>& isOver) {
        while (!isOver())
            wait(kPeriod);
    }
    void runFor(std::chrono::milliseconds time) { wait(time); }

private:
    void wait(std::chrono::milliseconds time) {
        pollfd wait{_descriptor, POLLIN, 0};
        alignas(inotify_event) char buffer[65536];
        if (poll(&wait, 1, static_cast<int>(time.count())) > 0 &&
            read(_descriptor, buffer, sizeof buffer) > 0)
            _slot();
    }

    const Slot _slot;
    const int _descriptor = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
};

class QtWatcher {
public:
    QtWatcher(const std::vector<std::string>& paths, const Slot& slot) {
        needQtApplication();
        QStringList list;
        for (const std::string& path : paths)
            list << QString::fromStdString(path);
        _watcher = std::make_unique<QFileSystemWatcher>();
        _watcher->addPaths(list);
        QObject::connect(_watcher.get(), &QFileSystemWatcher::fileChanged, [slot] { slot(); });
    }
    void runUntil(const std::function<bool()>& isOver) {
        while (!isOver())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    void runFor(std::chrono::milliseconds time) {
        QTimer::singleShot(time, [] { QCoreApplication::quit(); });
        QCoreApplication::exec();
    }
    static void wake() { QCoreApplication::eventDispatcher()->wakeUp(); }

private:
    std::unique_ptr<QFileSystemWatcher> _watcher;
};

class GioMonitors {
public:
    GioMonitors(const std::vector<std::string>& paths, const Slot& slot) : _slot(slot) {
        for (const std::string& path : paths) {
            GFile* const file = g_file_new_for_path(path.c_str());
            _monitors.push_back(g_file_monitor_file(file, G_FILE_MONITOR_NONE, nullptr, nullptr));
            g_signal_connect(_monitors.back(), "changed", G_CALLBACK(changed), this);
            g_object_unref(file);
        }
    }
    ~GioMonitors() {
        for (GFileMonitor* monitor : _monitors)
            g_object_unref(monitor);
    }
    void runUntil(const std::function<bool()>& isOver) {
        while (!isOver())
            g_main_context_iteration(nullptr, TRUE);
    }
    void runFor(std::chrono::milliseconds time) { runGLibFor(time); }

private:
    static void changed(GFileMonitor*, GFile*, GFile*, GFileMonitorEvent event, gpointer self) {
        if (event == G_FILE_MONITOR_EVENT_CHANGED)
            static_cast<GioMonitors*>(self)->_slot();
    }

    const Slot _slot;
    std::vector<GFileMonitor*> _monitors;
};

/// Whatever a loop waits for.
void wakeLoops() {
    g_main_context_wakeup(nullptr);
    if (QCoreApplication::instance() != nullptr)
        QtWatcher::wake();
}

template <class Contestant>
void delay(benchmark::State& state) {
    for (auto _ : state) {
        Writer writer(wakeLoops);
        Contestant contestant({writer.path()}, [&writer] { writer.told(); });
        writer.start();
        contestant.runUntil([&writer] { return writer.isOver(); });
        std::vector<double>& delays = writer.delays();
        state.counters["delivered"] =
            static_cast<double>(delays.size()) / static_cast<double>(Writer::kWrites);
        if (delays.size() < Writer::kWrites)
            state.SkipWithError("writes were not told");
        else {
            state.counters["p50_ns"] = quantile(delays, 0.5);
            state.counters["longest_ns"] = quantile(delays, 1);
        }
    }
}

template <class Contestant>
void idle(benchmark::State& state) {
    for (auto _ : state) {
        const IdleFiles files(state.range(0));
        Contestant contestant(files.paths, [] {});
        state.counters["ns_per_second"] =
            IdleFiles::cost([&](std::chrono::milliseconds time) { contestant.runFor(time); });
    }
}

template <class Contestant>
void add(const std::string& name) {
    benchmark::RegisterBenchmark(("watchDelay/" + name).c_str(), delay<Contestant>)
        ->Iterations(1)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(("watchIdle/" + name).c_str(), idle<Contestant>)
        ->Arg(1000)
        ->Iterations(1)
        ->Unit(benchmark::kMillisecond);
}

const bool kRegistered = [] {
    add<Ours>("ula");
    add<PolledInotify>("polled inotify");
    add<WaitingInotify>("inotify");
    add<QtWatcher>("QFileSystemWatcher");
    add<GioMonitors>("GFileMonitor");
    return true;
}();

}  // namespace
