// SPDX-License-Identifier: MIT
#include "tools/ula/WatchCommand.h"

#include "tools/ula/DisplayText.h"
#include "tools/ula/Translation.h"
#include "tools/ula/WatchPrinter.h"
#include "ula/DriveWatcher.h"
#include "ula/FileSystemWatcher.h"
#include "ula/TreeMonitor.h"

#include <CLI/CLI.hpp>
#include <CoreFoundation/CoreFoundation.h>
#include <atomic>
#include <csignal>
#include <filesystem>
#include <memory>
#include <thread>
#include <vector>

namespace tav::tool {

namespace {

using namespace ula;

constexpr const char* kHelp = translatable(R"(Examples:
  ula watch notes.txt             one item alone
  ula watch -r Pictures           a folder and everything below it
  ula watch -r . --ignore .git --ignore '*.tmp'
  ula watch -r Incoming --settle 500    files when they have stopped growing
  ula watch --drives --json       volumes that come and go, an object a line

One line an event, until Ctrl-C. "rescan" says that more has happened at and below a path than
could be told: read it again. Exit codes: 0 ended by Ctrl-C; 1 nothing is left to watch;
3 it cannot be watched.)");

struct Options {
    std::vector<std::string> paths;
    bool recursive = false;
    bool drives = false;
    bool asJson = false;
    TreeMonitorOptions tree;
    int settleMs = 0;
};

/// Ends the main run loop when the user has had enough. To be made before there are threads, which
/// would be asked, too.
class Interrupts {
public:
    Interrupts() {
        sigemptyset(&_signals);
        for (const int signal : {SIGINT, SIGTERM, SIGHUP})
            sigaddset(&_signals, signal);
        pthread_sigmask(SIG_BLOCK, &_signals, nullptr);
        // A reader who goes away is seen when the next line is written.
        std::signal(SIGPIPE, SIG_IGN);
        CFRunLoopSourceContext context{};
        context.perform = [](void*) { CFRunLoopStop(CFRunLoopGetCurrent()); };
        end() = CFRunLoopSourceCreate(kCFAllocatorDefault, 0, &context);
        CFRunLoopAddSource(CFRunLoopGetMain(), end(), kCFRunLoopDefaultMode);
        std::thread([signals = _signals] {
            int signal = 0;
            sigwait(&signals, &signal);
            stop();
        }).detach();
    }

    static void stop() {
        hasEnded() = true;
        CFRunLoopSourceSignal(end());
        CFRunLoopWakeUp(CFRunLoopGetMain());
    }
    static std::atomic<bool>& hasEnded() {
        static std::atomic<bool> ended = false;
        return ended;
    }

private:
    /// Ends the loop also when it is only about to run, which a mere stop would not.
    /// Owner: the process, as the thread lives to its end.
    static CFRunLoopSourceRef& end() {
        static CFRunLoopSourceRef source = nullptr;
        return source;
    }

    sigset_t _signals;
};

/// An item alone. Many programs save by putting a new file in the old one's place: that is
/// followed.
class WatchedItem {
public:
    WatchedItem(std::string path, WatchPrinter& printer, std::atomic<int>& left)
        : _path(std::move(path)), _printer(printer), _left(left) {
        watch();
    }

private:
    void watch() {
        _watcher = std::make_unique<FileSystemWatcher>(_path, false);
        _watcher->connect([this](const std::string&, FileSystemWatcherInfo info) { tell(info); });
    }

    bool exists() const {
        std::error_code error;
        return std::filesystem::exists(_path, error);
    }

    void tell(FileSystemWatcherInfo info) {
        if (info == PathRemoved && exists()) {
            watch();
            // It may have gone before it was watched, which nobody would tell.
            info = exists() ? PathChanged : PathRemoved;
        }
        _printer.tell({info == PathRemoved ? "removed" : "changed", _path});
        if (info == PathRemoved && --_left == 0)
            Interrupts::stop();
    }

    const std::string _path;
    WatchPrinter& _printer;
    std::atomic<int>& _left;
    std::unique_ptr<FileSystemWatcher> _watcher;
};

const char* nameOf(TreeEventType type) {
    switch (type) {
    case TreeEventType::Created:
        return "created";
    case TreeEventType::Changed:
        return "changed";
    case TreeEventType::Removed:
        return "removed";
    case TreeEventType::Moved:
        return "moved";
    case TreeEventType::RescanNeeded:
        return "rescan";
    }
    return "";
}

WatchPrinter::Line lineOf(const TreeEvent& event) {
    const bool isKnown = event.type != TreeEventType::RescanNeeded;
    return {nameOf(event.type), event.path, event.newPath,
            isKnown ? std::optional(event.isFolder) : std::nullopt};
}

/// Everything that is asked for, until its end.
class WatchSession {
public:
    explicit WatchSession(const Options& options)
        : _printer(options.asJson, [] { Interrupts::stop(); }) {
        for (const std::string& path : options.paths)
            options.recursive ? addTree(path, options.tree) : addItem(path);
        _isForever = options.recursive || options.drives;
        if (options.drives)
            addDrives();
    }

    ExitCode run() {
        while (!Interrupts::hasEnded())
            CFRunLoopRunInMode(kCFRunLoopDefaultMode, 1e9, false);
        if (_printer.failure())
            throw *_printer.failure();
        if (_isForever || _left > 0)
            return ExitOk;
        throw CommandError{ExitDiffers, translated("nothing is left to watch"),
                           translated("'ula watch -r' on the folder above tells when it is back")};
    }

private:
    void addTree(const std::string& path, const TreeMonitorOptions& options) {
        std::string error;
        std::unique_ptr<TreeMonitor> monitor = TreeMonitor::create(path, options, &error);
        if (!monitor)
            throw CommandError{ExitCannotRead, error};
        monitor->changed().connect(
            [this](const TreeEvent& event) { _printer.tell(lineOf(event)); });
        _trees.push_back(std::move(monitor));
    }

    void addItem(const std::string& path) {
        std::error_code error;
        const std::string absolute = std::filesystem::absolute(path, error).lexically_normal();
        if (!std::filesystem::exists(absolute, error))
            throw CommandError{
                ExitCannotRead, translated("cannot watch \"%1\": it is not there", path),
                translated("'ula watch -r' on the folder above tells when it comes")};
        ++_left;
        _items.push_back(std::make_unique<WatchedItem>(absolute, _printer, _left));
    }

    void addDrives() {
        _drives.reset(DriveWatcher::create());
        _drives->driveMounted.connect([this](const Drive& drive) { tell("mounted", drive); });
        _drives->driveUnmounted.connect([this](const Drive& drive) { tell("unmounted", drive); });
    }

    void tell(const char* event, const Drive& drive) {
        const FileProperties& volume = drive.properties();
        _printer.tell({event, volume.fullPath(), "", std::nullopt, volume.title()});
    }

    WatchPrinter _printer;
    std::atomic<int> _left = 0;
    bool _isForever = false;
    std::vector<std::unique_ptr<TreeMonitor>> _trees;
    std::vector<std::unique_ptr<WatchedItem>> _items;
    std::unique_ptr<DriveWatcher> _drives;
};

ExitCode run(Options& options) {
    if (options.paths.empty() && !options.drives)
        throw CommandError{ExitUsage, translated("there is nothing to watch"),
                           translated("give paths, or --drives; see 'ula watch --help'")};
    options.tree.settle = std::chrono::milliseconds(options.settleMs);
    const Interrupts interrupts;
    return WatchSession(options).run();
}

}  // namespace

void addWatchCommand(CLI::App& program, ExitCode& result) {
    const auto options = std::make_shared<Options>();
    CLI::App* const watch = program.add_subcommand(
        "watch", translated("Tell what changes, one line at a time, until Ctrl-C"));
    watch->add_option("PATH", options->paths, translated("Files and folders"));
    CLI::Option* const recursive = watch->add_flag("-r,--recursive", options->recursive,
                                                   translated("Everything below folders, too"));
    watch
        ->add_option("--ignore", options->tree.ignore,
                     translated("Leave out what has such a name; repeatable"))
        ->needs(recursive)
        ->allow_extra_args(false);
    watch
        ->add_option("--settle", options->settleMs,
                     translated("Files when unchanged for so many milliseconds"))
        ->needs(recursive)
        ->check(CLI::Range(0, 3600000));
    watch->add_flag("--drives", options->drives, translated("Volumes that come and go"));
    watch->add_flag("--json", options->asJson, translated("A JSON object a line"));
    watch->callback([options, &result] { result = run(*options); });
    watch->footer(translated(kHelp));
}

}  // namespace tav::tool
