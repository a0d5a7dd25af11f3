// SPDX-License-Identifier: MIT
#include "EventCollector.h"

#include "CoreServices/MountLookup.h"
#include "CoreServices/SignalsBlocked.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/prctl.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace fsevents {

namespace {

// A stream that is stopped so that another one takes its place hands over what it had not told.
constexpr auto kTakeOverWithin = std::chrono::milliseconds(50);
// Folders stay watched for a moment: whoever replaces a stream needs them again at once.
constexpr auto kKeptUnused = std::chrono::seconds(1);
// The kernel does not tell when it has queues again.
constexpr auto kAskForQueueEvery = std::chrono::seconds(1);

// Zero for what is past.
timespec timespecOf(std::chrono::nanoseconds duration) {
    const auto whole = std::chrono::floor<std::chrono::seconds>(duration);
    if (whole.count() < 0)
        return {0, 0};
    return {static_cast<time_t>(whole.count()), static_cast<long>((duration - whole).count())};
}

}  // namespace

// Never destroyed: its thread may run until the very end.
EventCollector& EventCollector::ofProcess() {
    static auto* const collector = new EventCollector;
    return *collector;
}

// Run loops and the table of mounts have fork handlers, too. Those that are registered later lock
// first, and the collector's lock is always taken before theirs.
EventCollector::EventCollector() {
    CFRunLoopGetMain();
    coreservices::currentMounts();
    pthread_atfork(prepareFork, continueParent, continueChild);
}

void EventCollector::prepareFork() {
    ofProcess()._mutex.lock();
}

void EventCollector::continueParent() {
    ofProcess()._mutex.unlock();
}

// The child has no thread that collects, and shares the kernel's queue with its parent: it leaves
// both alone. Its streams are stopped; those that it starts itself work.
void EventCollector::continueChild() {
    EventCollector& collector = ofProcess();
    if (collector._tracker)
        collector._tracker->kernel().abandon();
    if (std::exchange(collector._isRunning, false))
        collector.letGo();
    collector._trees.clear();
    for (EventStream* stream : std::exchange(collector._streams, {}))
        stream->setStarted(false);
    collector._predecessor.reset();
    collector._mutex.unlock();
}

bool EventCollector::start(EventStream& stream) {
    const Locked lock(*this);
    if (stream.isStarted())
        return true;
    if (!ensureRunning())
        return false;
    drain();
    stream.retain();
    stream.setStarted(true);
    _streams.push_back(&stream);
    takeOverFromPredecessor(stream);
    for (const std::string& root : stream.roots())
        attach(stream, root);
    if (stream.wantsHistory()) {
        stream.collapse(nextEventIds(1));
        stream.record("", kFSEventStreamEventFlagHistoryDone, nextEventIds(1));
    }
    // The kernel will not tell the thread of what the walk has collected.
    drain();
    wake();
    return true;
}

void EventCollector::stop(EventStream& stream) {
    const Locked lock(*this);
    if (!stream.isStarted())
        return;
    stream.setStarted(false);
    std::erase(_streams, &stream);
    endPredecessor();
    _predecessor = {&stream, std::this_thread::get_id(), Clock::now()};
    wake();
}

void EventCollector::takeOverFromPredecessor(EventStream& stream) {
    if (_predecessor && _predecessor->thread == std::this_thread::get_id() &&
        Clock::now() - _predecessor->stoppedAt < kTakeOverWithin)
        stream.takeOver(*_predecessor->stream);
    endPredecessor();
}

void EventCollector::endPredecessor() {
    if (!_predecessor)
        return;
    EventStream* const stream = _predecessor->stream;
    _predecessor.reset();
    detach(*stream);
    _toRelease.push_back(stream);
}

void EventCollector::release(const std::vector<EventStream*>& streams) {
    for (EventStream* stream : streams)
        stream->release();
}

void EventCollector::detach(EventStream& stream) {
    for (const auto& tree : _trees)
        if (tree && std::erase(tree->streams, &stream) != 0)
            tree->unusedSince = Clock::now();
}

std::vector<Event> EventCollector::take(EventStream& stream) {
    std::lock_guard lock(_mutex);
    return stream.takePending();
}

std::vector<Event> EventCollector::takeUpToDate(EventStream& stream) {
    std::lock_guard lock(_mutex);
    if (!stream.isStarted())
        return {};
    drain();
    wake();
    return stream.takePending();
}

void EventCollector::flushSoon(EventStream& stream) {
    std::lock_guard lock(_mutex);
    if (!stream.isStarted())
        return;
    drain();
    stream.hurry();
    wake();
}

bool EventCollector::ensureRunning() {
    if (_isRunning)
        return true;
    std::unique_ptr<KernelWatches> kernel = KernelWatches::open();
    if (!kernel) {
        fprintf(stderr, "FSEvents: nothing can be watched: %s%s\n", strerror(errno),
                errno == EMFILE ? "; raise fs.inotify.max_user_instances, or let go of files" : "");
        return false;
    }
    _wakeDescriptor = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    if (_wakeDescriptor < 0) {
        fprintf(stderr, "FSEvents: nothing can be watched: %s\n", strerror(errno));
        return false;
    }
    _tracker = std::make_unique<FolderTracker>(std::move(kernel), client());
    _mounts = std::make_unique<MountChanges>();
    try {
        launchThread();
    } catch (const std::system_error& error) {
        fprintf(stderr, "FSEvents: nothing can be watched: %s\n", error.what());
        letGo();
        return false;
    }
    _isRunning = true;
    return true;
}

void EventCollector::launchThread() {
    const coreservices::SignalsBlocked blocked;
    std::thread([this] { run(); }).detach();
}

void EventCollector::wake() {
    const uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = write(_wakeDescriptor, &one, sizeof one);
}

void EventCollector::run() {
    pthread_setname_np(pthread_self(), "fsevents");
    // Otherwise the kernel may take another 50 microseconds for every wait.
    prctl(PR_SET_TIMERSLACK, 1);
    std::unique_lock lock(_mutex);
    for (;;) {
        drain();
        Clock::time_point next = std::min(tellStreams(), dropUnused());
        if (_trees.empty() && _streams.empty())
            break;
        if (_isBlind)
            next = std::min(next, Clock::now() + kAskForQueueEvery);
        wait(lock, next);
    }
    letGo();
    _isRunning = false;
}

void EventCollector::letGo() {
    _hasLostTrack = false;
    _isBlind = false;
    _tracker.reset();
    _mounts.reset();
    close(_wakeDescriptor);
    _wakeDescriptor = -1;
}

void EventCollector::wait(std::unique_lock<std::mutex>& lock, Clock::time_point until) {
    // Whole milliseconds would be late by half of one.
    const timespec timeout = timespecOf(until - Clock::now());
    const bool isEndless = until == Clock::time_point::max();
    pollfd descriptors[] = {{_wakeDescriptor, POLLIN, 0},
                            {_tracker->kernel().descriptor(), POLLIN, 0},
                            {_mounts->descriptor(), POLLPRI, 0}};
    const std::vector<EventStream*> streams = std::exchange(_toRelease, {});
    lock.unlock();
    release(streams);
    ppoll(descriptors, std::size(descriptors), isEndless ? nullptr : &timeout, nullptr);
    lock.lock();
    _mounts->note(descriptors[2].revents);
    uint64_t count = 0;
    [[maybe_unused]] const ssize_t size = read(_wakeDescriptor, &count, sizeof count);
}

// When the next of them is to be told.
EventCollector::Clock::time_point EventCollector::tellStreams() {
    Clock::time_point next = Clock::time_point::max();
    const Clock::time_point now = Clock::now();
    for (EventStream* stream : _streams) {
        const Clock::time_point due = stream->due();
        if (due <= now)
            stream->tellRunLoop();
        else
            next = std::min(next, due);
    }
    return next;
}

// When the next of them will have been unused for long enough.
EventCollector::Clock::time_point EventCollector::dropUnused() {
    Clock::time_point next = Clock::time_point::max();
    const Clock::time_point now = Clock::now();
    if (_predecessor && _predecessor->stoppedAt + kTakeOverWithin <= now)
        endPredecessor();
    else if (_predecessor)
        next = _predecessor->stoppedAt + kTakeOverWithin;
    for (uint32_t number = 0; number < _trees.size(); ++number) {
        const auto& tree = _trees[number];
        if (!tree || !tree->streams.empty())
            continue;
        if (tree->unusedSince + kKeptUnused <= now)
            closeTree(number);
        else
            next = std::min(next, tree->unusedSince + kKeptUnused);
    }
    while (!_trees.empty() && !_trees.back())
        _trees.pop_back();
    return next;
}

// What comes while trees are looked at anew is collected, and the kernel does not tell of it again.
void EventCollector::drain() {
    do {
        drainKernel();
        handleMounts();
        checkRoots();
        if (std::exchange(_hasLostTrack, false))
            recover();
    } while (!_tracker->kernel().isEmpty());
}

void EventCollector::drainKernel() {
    do {
        _tracker->kernel().collect();
        _tracker->handleWaiting();
    } while (!_tracker->kernel().isEmpty() && !_hasLostTrack);
}

}  // namespace fsevents
