// SPDX-License-Identifier: MIT
#include "ula/src/Mac/TreeMonitorMac.h"

#include "ula/ScopedARPool.h"
#include "ula/foundation/Exception.h"
#include "ula/foundation/debug/Log.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace tav::ula {

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr CFTimeInterval kNever = 1e9;

std::optional<bool> lookAt(const std::string& path) {
    struct stat item {};
    if (lstat(path.c_str(), &item) != 0)
        return std::nullopt;
    return S_ISDIR(item.st_mode);
}

// A link is written at once: it has settled as soon as it is there.
SettlingFiles::State stateOf(const std::string& path) {
    std::error_code error;
    const fs::file_status status = fs::symlink_status(path, error);
    if (!fs::exists(status))
        return {};
    if (fs::is_symlink(status))
        return {true};
    const std::uint64_t size = fs::is_regular_file(status) ? fs::file_size(path, error) : 0;
    return {true, size, fs::last_write_time(path, error).time_since_epoch().count()};
}

ReportedChange changeOf(const char* path, FSEventStreamEventFlags flags, FSEventStreamEventId id) {
    constexpr FSEventStreamEventFlags kScan = kFSEventStreamEventFlagMustScanSubDirs |
                                              kFSEventStreamEventFlagMount |
                                              kFSEventStreamEventFlagUnmount;
    ReportedChange change;
    change.path = path;
    if (change.path.size() > 1 && change.path.back() == '/')
        change.path.pop_back();
    change.id = id;
    change.isCreated = (flags & kFSEventStreamEventFlagItemCreated) != 0;
    change.isRemoved = (flags & kFSEventStreamEventFlagItemRemoved) != 0;
    change.isRenamed = (flags & kFSEventStreamEventFlagItemRenamed) != 0;
    change.isFolder = (flags & kFSEventStreamEventFlagItemIsDir) != 0;
    change.mustScan = (flags & kScan) != 0;
    change.isRootChanged = (flags & kFSEventStreamEventFlagRootChanged) != 0;
    return change;
}

// Without slashes at the end. Links stay: the events are to have the names that the caller knows.
std::string absolutePath(const std::string& path) {
    std::string absolute = path;
    char folder[PATH_MAX];
    if (!path.starts_with('/') && getcwd(folder, sizeof folder) != nullptr)
        absolute = path == "." || path.empty() ? folder : std::string(folder) + "/" + path;
    while (absolute.size() > 1 && absolute.back() == '/')
        absolute.pop_back();
    return absolute;
}

// Empty when it can be watched.
std::string problemWith(const std::string& path) {
    struct stat item {};
    const std::string start = "cannot watch \"" + path + "\": ";
    if (path.find('\0') != std::string::npos)
        return start + "its name has a zero in it";
    if (stat(path.c_str(), &item) != 0 && (errno == ENOENT || errno == ENOTDIR))
        return start + "there is no such file or folder; make it first, or watch the one above it";
    if (access(path.c_str(), R_OK) != 0)
        return start + strerror(errno) + "; see \"ls -ld\" for who may read it";
    return "";
}

// What a slot throws keeps nothing from the slots of later events, and stays out of the platform's
// frames below. The signal may be gone afterwards.
void emitLogged(TreeMonitor::Signal& signal, const TreeEvent& event) {
    try {
        signal.emit(event);
    } catch (...) {
        debug::logf("src/Mac/TreeMonitor", 1, debug::LogLevelError,
                    "a slot has thrown when it was told of %*: %*")
            .add(event.path.c_str())
            .add(describeCurrentException());
    }
}

}  // namespace

std::unique_ptr<TreeMonitor> TreeMonitor::create(const std::string& path,
                                                 const TreeMonitorOptions& options,
                                                 std::string* error) {
    const ScopedARPool pool;
    const std::string root = absolutePath(path);
    std::string problem = problemWith(root);
    if (problem.empty()) {
        auto monitor = std::make_unique<TreeMonitorMac>(root, options);
        if (monitor->start())
            return monitor;
        problem = "cannot watch \"" + root + "\": " + monitor->refusal();
    }
    if (error != nullptr)
        *error = problem;
    return nullptr;
}

TreeMonitorMac::TreeMonitorMac(const std::string& root, const TreeMonitorOptions& options)
    : _reader(root, options.ignore, lookAt),
      _settling(options.settle, stateOf),
      _timer(createTimer()) {
    const CFOwner<CFStringRef> path(
        CFStringCreateWithCString(kCFAllocatorDefault, root.c_str(), kCFStringEncodingUTF8));
    const void* value = path.get();
    const CFOwner<CFArrayRef> paths(
        CFArrayCreate(kCFAllocatorDefault, &value, path ? 1 : 0, &kCFTypeArrayCallBacks));
    FSEventStreamContext context{};
    context.info = this;
    _stream = FSEventStreamCreate(
        kCFAllocatorDefault, receive, &context, paths.get(), kFSEventStreamEventIdSinceNow,
        static_cast<double>(options.latency.count()) / 1000,
        kFSEventStreamCreateFlagWatchRoot | kFSEventStreamCreateFlagFileEvents);
    CFRunLoopAddTimer(CFRunLoopGetCurrent(), _timer.get(), kCFRunLoopCommonModes);
}

CFRunLoopTimerRef TreeMonitorMac::createTimer() {
    CFRunLoopTimerContext context{};
    context.info = this;
    // The interval only keeps it valid.
    return CFRunLoopTimerCreate(kCFAllocatorDefault, CFAbsoluteTimeGetCurrent() + kNever, kNever, 0,
                                0, tellSettled, &context);
}

TreeMonitorMac::~TreeMonitorMac() {
    const ScopedARPool pool;
    *_isAlive = false;
    CFRunLoopTimerInvalidate(_timer.get());
    if (_stream == nullptr)
        return;
    FSEventStreamStop(_stream);
    FSEventStreamInvalidate(_stream);
    FSEventStreamRelease(_stream);
}

std::string TreeMonitorMac::refusal() const {
    if (_stream == nullptr)
        return "its name is no UTF-8 text; rename it, or watch the folder above it";
    return "the system cannot watch anything more; its line in the log says what helps";
}

bool TreeMonitorMac::start() {
    if (_stream == nullptr)
        return false;
    FSEventStreamScheduleWithRunLoop(_stream, CFRunLoopGetCurrent(), kCFRunLoopCommonModes);
    return FSEventStreamStart(_stream);
}

void TreeMonitorMac::flush() {
    const ScopedARPool pool;
    FSEventStreamFlushSync(_stream);
}

void TreeMonitorMac::receive(ConstFSEventStreamRef, void* self, size_t count, void* paths,
                             const FSEventStreamEventFlags* flags,
                             const FSEventStreamEventId* ids) {
    const ScopedARPool pool;
    std::vector<ReportedChange> changes;
    for (size_t index = 0; index < count; ++index)
        changes.push_back(
            changeOf(static_cast<const char* const*>(paths)[index], flags[index], ids[index]));
    static_cast<TreeMonitorMac*>(self)->handle(changes);
}

// A slot may destroy this object.
void TreeMonitorMac::handle(const std::vector<ReportedChange>& changes) {
    const std::shared_ptr<bool> isAlive = _isAlive;
    for (std::size_t index = 0; *isAlive && index < changes.size();)
        tell(_settling.add(_reader.readNext(changes, &index), Clock::now()));
    if (*isAlive)
        setTimer();
}

void TreeMonitorMac::tellSettled(CFRunLoopTimerRef, void* self) {
    const ScopedARPool pool;
    auto& monitor = *static_cast<TreeMonitorMac*>(self);
    const std::vector<TreeEvent> events = monitor._settling.settled(Clock::now());
    const std::shared_ptr<bool> isAlive = monitor._isAlive;
    monitor.tell(events);
    if (*isAlive)
        monitor.setTimer();
}

void TreeMonitorMac::setTimer() {
    CFTimeInterval seconds = kNever;
    if (!_settling.isEmpty())
        seconds = std::chrono::duration<double>(_settling.nextLook() - Clock::now()).count();
    CFRunLoopTimerSetNextFireDate(_timer.get(), CFAbsoluteTimeGetCurrent() + seconds);
}

void TreeMonitorMac::tell(const std::vector<TreeEvent>& events) {
    const std::shared_ptr<bool> isAlive = _isAlive;
    for (const TreeEvent& event : events) {
        if (!*isAlive)
            return;
        emitLogged(changed(), event);
        if (*isAlive && event.type == TreeEventType::RescanNeeded)
            _reader.didRescan(event.path, FSEventStreamFlushAsync(_stream));
    }
}

}  // namespace tav::ula
