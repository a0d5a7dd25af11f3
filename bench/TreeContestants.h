// SPDX-License-Identifier: MIT
#pragma once

#include "bench/MainLoops.h"
#include "bench/TreeContest.h"
#include "ula/FileSystemWatcher.h"
#include "ula/TreeMonitor.h"

#include <QFileSystemWatcher>
#include <QTimer>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <gio/gio.h>
#include <memory>
#include <sys/inotify.h>
#include <sys/wait.h>
#include <unordered_map>

/// Each contestant watches all of a tree from when it is made, and serves its loop for a moment.
namespace tav::bench {

constexpr auto kMoment = std::chrono::milliseconds(50);

class OurRunLoop {
public:
    void serve() {
        const std::chrono::duration<double> seconds = kMoment;
        CFRunLoopRunInMode(kCFRunLoopDefaultMode, seconds.count(), false);
    }
    double bytes() const { return residentBytes(); }
};

class OurMonitor : public OurRunLoop {
public:
    OurMonitor(const std::string& top, TreeReport& report)
        : _monitor(ula::TreeMonitor::create(top)) {
        _monitor->changed().connect([&report](const ula::TreeEvent& event) {
            if (event.type == ula::TreeEventType::RescanNeeded)
                report.toldRescan(event.path);
            else
                report.told(event.path);
        });
    }

private:
    std::unique_ptr<ula::TreeMonitor> _monitor;
};

/// Says which folder something has changed in; where that is the top, it may be anywhere below.
class OurWatcher : public OurRunLoop {
public:
    OurWatcher(const std::string& top, TreeReport& report) : _watcher(top, true) {
        _watcher.connect([&report, top](const std::string& path, ula::FileSystemWatcherInfo) {
            path == top ? report.toldRescan(path) : report.toldFolder(path);
        });
    }

private:
    ula::FileSystemWatcher _watcher;
};

/// What a program writes that wants no library.
class RawInotify {
public:
    RawInotify(const std::string& top, TreeReport& report) : _report(report) {
        std::vector<std::string> folders{top};
        while (!folders.empty()) {
            std::string folder = std::move(folders.back());
            folders.pop_back();
            const int watch = inotify_add_watch(_descriptor, folder.c_str(), kMask);
            for (const auto& entry : std::filesystem::directory_iterator(folder))
                if (entry.is_directory())
                    folders.push_back(entry.path());
            _paths.emplace(watch, std::move(folder));
        }
    }
    ~RawInotify() { close(_descriptor); }

    void serve() {
        pollfd wait{_descriptor, POLLIN, 0};
        if (poll(&wait, 1, kMoment.count()) <= 0)
            return;
        const ssize_t size = read(_descriptor, _buffer.data(), _buffer.size());
        for (const char* at = _buffer.data(); at < _buffer.data() + size;) {
            const auto& event = *reinterpret_cast<const inotify_event*>(at);
            // That events were lost is known, but not what to do about it.
            if (event.len != 0)
                _report.told(_paths[event.wd] + "/" + event.name);
            at += sizeof event + event.len;
        }
    }
    double bytes() const { return residentBytes(); }

private:
    static constexpr std::uint32_t kMask = IN_CREATE | IN_MODIFY | IN_CLOSE_WRITE | IN_ATTRIB |
                                           IN_DELETE | IN_DELETE_SELF | IN_MOVE | IN_MOVE_SELF |
                                           IN_ONLYDIR;

    TreeReport& _report;
    const int _descriptor = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    std::unordered_map<int, std::string> _paths;
    std::vector<char> _buffer = std::vector<char>(1 << 18);
};

/// The program of the inotify tools, whose lines are read.
class Inotifywait {
public:
    Inotifywait(const std::string& top, TreeReport& report) : _report(report) {
        int messages[2];
        // A contestant that fails ends by itself; killing "process -1" would end all others.
        if (pipe2(_lines, O_CLOEXEC) != 0 || pipe2(messages, O_CLOEXEC) != 0 ||
            (_process = fork()) < 0) {
            perror("inotifywait");
            std::abort();
        }
        if (_process == 0)
            run(top, messages[1]);
        close(_lines[1]);
        close(messages[1]);
        std::string text;
        char buffer[4096];
        ssize_t size = 0;
        while (text.find("established") == std::string::npos &&
               (size = read(messages[0], buffer, sizeof buffer)) > 0)
            text.append(buffer, static_cast<std::size_t>(size));
        close(messages[0]);
    }
    ~Inotifywait() {
        kill(_process, SIGTERM);
        waitpid(_process, nullptr, 0);
        close(_lines[0]);
    }

    void serve() {
        pollfd wait{_lines[0], POLLIN, 0};
        if (poll(&wait, 1, kMoment.count()) <= 0)
            return;
        const ssize_t size = read(_lines[0], _buffer.data(), _buffer.size());
        for (const char* at = _buffer.data(); at < _buffer.data() + size; ++at) {
            if (*at != '\n') {
                _line += *at;
                continue;
            }
            _report.told(_line);
            _line.clear();
        }
    }
    double bytes() const { return residentBytes(_process); }

private:
    [[noreturn]] void run(const std::string& top, int messages) {
        dup2(_lines[1], STDOUT_FILENO);
        dup2(messages, STDERR_FILENO);
        execlp("inotifywait", "inotifywait", "-r", "-m", "--format", "%w%f", "-e",
               "create,modify,close_write,attrib,delete,move", top.c_str(), nullptr);
        perror("inotifywait");
        _exit(127);
    }

    TreeReport& _report;
    pid_t _process = -1;
    int _lines[2] = {-1, -1};
    std::string _line;
    std::vector<char> _buffer = std::vector<char>(1 << 16);
};

/// Has no recursion: the folders are found and named to it.
class QtFolders {
public:
    QtFolders(const std::string& top, TreeReport& report) {
        needQtApplication();
        QStringList folders{QString::fromStdString(top)};
        for (const auto& entry : std::filesystem::recursive_directory_iterator(top))
            if (entry.is_directory())
                folders << QString::fromStdString(entry.path());
        _watcher = std::make_unique<QFileSystemWatcher>();
        _watcher->addPaths(folders);
        QObject::connect(_watcher.get(), &QFileSystemWatcher::directoryChanged,
                         [&report](const QString& path) { report.toldFolder(path.toStdString()); });
    }

    void serve() {
        QTimer::singleShot(kMoment, [] { QCoreApplication::quit(); });
        QCoreApplication::exec();
    }
    double bytes() const { return residentBytes(); }

private:
    std::unique_ptr<QFileSystemWatcher> _watcher;
};

/// As above, with a monitor for each folder.
class GioFolders {
public:
    GioFolders(const std::string& top, TreeReport& report) : _report(report) {
        add(top);
        for (const auto& entry : std::filesystem::recursive_directory_iterator(top))
            if (entry.is_directory())
                add(entry.path());
    }
    ~GioFolders() {
        for (GFileMonitor* monitor : _monitors)
            g_object_unref(monitor);
    }

    void serve() { runGLibFor(kMoment); }
    double bytes() const { return residentBytes(); }

private:
    void add(const std::string& path) {
        GFile* const folder = g_file_new_for_path(path.c_str());
        GFileMonitor* const monitor =
            g_file_monitor_directory(folder, G_FILE_MONITOR_WATCH_MOVES, nullptr, nullptr);
        g_object_unref(folder);
        g_signal_connect(monitor, "changed", G_CALLBACK(changed), this);
        _monitors.push_back(monitor);
    }
    static void changed(GFileMonitor*, GFile* file, GFile*, GFileMonitorEvent, gpointer self) {
        char* const path = g_file_get_path(file);
        static_cast<GioFolders*>(self)->_report.told(path);
        g_free(path);
    }

    TreeReport& _report;
    std::vector<GFileMonitor*> _monitors;
};

}  // namespace tav::bench
