// SPDX-License-Identifier: MIT
#include "ula/src/Mac/FSWatcherWorkerMacFSEvent.h"

#include "ula/NSPathUtil.h"
#include "ula/ScopedARPool.h"
#include "ula/foundation/debug/Assertion.h"
#include "ula/foundation/filesystem/FileSystem.h"
#include "ula/src/Core/FSWatcherWorker.h"

#include <atomic>
#include <pthread.h>

namespace tav::ula {

namespace {

using Lock = thread::ScopedLock<thread::Mutex>;
using NSPathUtilNameSpace::normalizeMacPathToRoot;

constexpr const char* kSource = "src/Mac/FSWatcherWorkerMacFSEvent";
constexpr CFTimeInterval kLatencySeconds = 0.1;

/// Those that live. A run loop may be about to call one back while another thread destroys it.
struct Living {
    thread::Mutex mutex;
    std::set<const void*> variants;
};

/// A forked child gets one of its own: another thread may hold its parent's at the fork.
std::atomic<Living*>& livingPointer() {
    static std::atomic<Living*> pointer = new Living;
    static const int registered = pthread_atfork(nullptr, nullptr, [] {
        // Still referred to, so that it is not reported as lost.
        static Living* parents = nullptr;
        parents = livingPointer().exchange(new Living);
        static_cast<void>(parents);
    });
    static_cast<void>(registered);
    return pointer;
}

Living& living() {
    return *livingPointer();
}

/// One string for each root; they and the array belong to the caller. What is no UTF-8 cannot be
/// named to the platform and is left out.
template <class Roots>
CFArrayRef createPaths(const Roots& roots) {
    std::vector<const void*> paths;
    for (const auto& [root, number] : roots)
        if (const auto* const path =
                CFStringCreateWithCString(kCFAllocatorDefault, root.c_str(), kCFStringEncodingUTF8))
            paths.push_back(path);
    return CFArrayCreate(kCFAllocatorDefault, paths.data(), static_cast<CFIndex>(paths.size()),
                         &kCFTypeArrayCallBacks);
}

}  // namespace

FSWatcherWorkerMacFSEvent::FSWatcherWorkerMacFSEvent(FSWatcherWorker* worker) : _worker(worker) {
    const Lock lock(living().mutex);
    living().variants.insert(this);
}

FSWatcherWorkerMacFSEvent::~FSWatcherWorkerMacFSEvent() {
    {
        const Lock lock(living().mutex);
        living().variants.erase(this);
    }
    const ScopedARPool pool;
    tearDownStream();
    releasePaths();
}

bool FSWatcherWorkerMacFSEvent::start(const std::string& path) {
    const ScopedARPool pool;
    if (add(normalizeMacPathToRoot(path)))
        rebuildStream();
    return true;
}

void FSWatcherWorkerMacFSEvent::stop(const std::string& path) {
    const ScopedARPool pool;
    if (remove(normalizeMacPathToRoot(path)))
        rebuildStream();
}

void FSWatcherWorkerMacFSEvent::setEnabled(bool enabled, const std::string& path) {
    const ScopedARPool pool;
    // What happened while it was disabled comes now, and is dropped.
    if (enabled && _streamRef != nullptr)
        FSEventStreamFlushSync(_streamRef);
    const Lock lock(_setsMutex);
    if (enabled)
        _disabled.erase(path);
    else
        _disabled.insert(path);
}

std::string FSWatcherWorkerMacFSEvent::getOSDebugString() const {
    const ScopedARPool pool;
    if (_streamRef != nullptr)
        FSEventStreamShow(_streamRef);
    std::string text = "getOSDebugString FSWatcherWorkerMacFSEvent registered: \n";
    for (const auto& [root, number] : roots())
        text += root + "\n";
    return text;
}

/// True when it is new. One that is there may have been told to be gone just now.
bool FSWatcherWorkerMacFSEvent::add(const std::string& root) {
    const Lock lock(_setsMutex);
    _disabled.erase(root);
    return _roots.insert_or_assign(root, ++_lastNumber).second;
}

bool FSWatcherWorkerMacFSEvent::remove(const std::string& root) {
    const Lock lock(_setsMutex);
    return _roots.erase(root) != 0;
}

FSWatcherWorkerMacFSEvent::Roots FSWatcherWorkerMacFSEvent::roots() const {
    const Lock lock(_setsMutex);
    return _roots;
}

bool FSWatcherWorkerMacFSEvent::isDisabled(const std::string& root) const {
    const Lock lock(_setsMutex);
    return _disabled.contains(root);
}

void FSWatcherWorkerMacFSEvent::rebuildStream() {
    tearDownStream();
    if (!roots().empty())
        buildStream();
}

void FSWatcherWorkerMacFSEvent::buildStream() {
    if (_streamRef != nullptr || _currentPaths != nullptr)
        debug::assertionFailed(kSource, 176, "_streamRef == NULL && _currentPaths == NULL");
    releasePaths();
    _currentPaths = createPaths(roots());
    FSEventStreamContext context{};
    context.info = this;
    _streamRef = FSEventStreamCreate(kCFAllocatorDefault, callBack, &context, _currentPaths,
                                     kFSEventStreamEventIdSinceNow, kLatencySeconds,
                                     kFSEventStreamCreateFlagWatchRoot);
    if (_streamRef == nullptr)
        return;
    FSEventStreamScheduleWithRunLoop(_streamRef, CFRunLoopGetCurrent(), kCFRunLoopDefaultMode);
    FSEventStreamStart(_streamRef);
}

void FSWatcherWorkerMacFSEvent::releasePaths() {
    if (_currentPaths == nullptr)
        return;
    for (CFIndex i = 0; i < CFArrayGetCount(_currentPaths); ++i)
        CFRelease(CFArrayGetValueAtIndex(_currentPaths, i));
    CFRelease(_currentPaths);
    _currentPaths = nullptr;
}

void FSWatcherWorkerMacFSEvent::tearDownStream() {
    if (_streamRef == nullptr)
        return;
    if (_currentPaths == nullptr)
        debug::assertionFailed(kSource, 155, "_currentPaths != NULL");
    releasePaths();
    FSEventStreamRef const stream = std::exchange(_streamRef, nullptr);
    FSEventStreamStop(stream);
    FSEventStreamInvalidate(stream);
    FSEventStreamRelease(stream);
}

void FSWatcherWorkerMacFSEvent::callBack(ConstFSEventStreamRef, void* info, size_t eventCount,
                                         void* eventPaths,
                                         const FSEventStreamEventFlags* eventFlags,
                                         const FSEventStreamEventId*) {
    const ScopedARPool pool;
    auto* const self = static_cast<FSWatcherWorkerMacFSEvent*>(info);
    std::shared_ptr<FSWatcherWorker> worker;
    {
        const Lock lock(living().mutex);
        if (living().variants.contains(self))
            worker = self->_worker->weak_from_this().lock();
    }
    // Keeps this object until the slots are through, too.
    if (!worker)
        return;
    const auto* const paths = static_cast<const char* const*>(eventPaths);
    for (size_t i = 0; i < eventCount; ++i)
        self->handleEvent(paths[i], eventFlags[i]);
}

void FSWatcherWorkerMacFSEvent::handleEvent(const char* eventPath, FSEventStreamEventFlags flags) {
    std::string path = eventPath;
    if (path.empty())
        return;
    if (path.size() > 1 && path.back() == '/')
        path.pop_back();
    path = normalizeMacPathToRoot(path);
    if (flags == kFSEventStreamEventFlagRootChanged)
        handleChange(path, true);
    else if (flags == kFSEventStreamEventFlagNone ||
             flags == kFSEventStreamEventFlagMustScanSubDirs)
        handleChange(path, false);
}

void FSWatcherWorkerMacFSEvent::handleChange(const std::string& path, bool isToBeChecked) {
    const bool isRemoved = isToBeChecked && !filesystem::exists(path);
    const Roots before = roots();
    // Also what lies beside a root and has its name's beginning, "/ab" for "/a", on purpose:
    // callers depend on it.
    for (const auto& [root, number] : before)
        if (path.starts_with(root) && !isDisabled(root))
            _worker->notify(root, path, isRemoved ? PathRemoved : PathChanged);
    if (isRemoved)
        leaveRoot(before, normalizeMacPathToRoot(path));
}

/// The stream goes on watching the path until it is made anew for another reason.
void FSWatcherWorkerMacFSEvent::leaveRoot(const Roots& before, const std::string& path) {
    const auto left = before.find(path);
    const Lock lock(_setsMutex);
    const auto found = _roots.find(path);
    // A slot may have watched it anew.
    if (left == before.end() || found == _roots.end() || found->second != left->second)
        return;
    _disabled.erase(path);
    _roots.erase(found);
}

}  // namespace tav::ula
