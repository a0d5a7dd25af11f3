// SPDX-License-Identifier: MIT
#include "FakeWatcherWorker.h"

#include "ula/src/Core/PlatformFSWatcherWorker.h"

#include <pthread.h>
#include <utility>

namespace tav::ula {

namespace {

class FakeWorker : public FSWatcherWorker {
public:
    FakeWorker() { FakePlatform::instance().workerMade(); }
    ~FakeWorker() override {
        stopThread();
        FakePlatform::instance().workerGone();
    }
    bool startWatching(const std::string& path, bool recursive) override {
        return FakePlatform::instance().note("start " + path + (recursive ? " tree" : " item"));
    }
    void stopWatching(const std::string& path) override {
        FakePlatform::instance().note("stop " + path);
    }
    void poll() override { FakePlatform::instance().serve(); }
    void afterPoll() override { FakePlatform::instance().endRound(); }
    void setEnabled(bool enabled, const std::string& path) override {
        FakePlatform::instance().note((enabled ? "enable " : "disable ") + path);
    }
    std::string getOSDebugString() override { return "platform"; }
    std::string normalizePath(const std::string& path) override { return path + "!"; }
};

}  // namespace

std::shared_ptr<FSWatcherWorker> createPlatformFSWatcherWorker() {
    return std::make_shared<FakeWorker>();
}

FakePlatform& FakePlatform::instance() {
    static FakePlatform platform;
    return platform;
}

/// A forked child goes on with it, whatever the worker's thread was doing.
FakePlatform::FakePlatform() {
    pthread_atfork([] { instance()._mutex.lock(); }, [] { instance()._mutex.unlock(); },
                   [] { instance()._mutex.unlock(); });
}

void FakePlatform::reset() {
    const std::lock_guard lock(_mutex);
    _calls.clear();
    _functions.clear();
    _startAnswer = true;
}

bool FakePlatform::note(const std::string& call) {
    const std::lock_guard lock(_mutex);
    _calls.push_back(call);
    return _startAnswer;
}

std::vector<std::string> FakePlatform::takeCalls() {
    const std::lock_guard lock(_mutex);
    return std::exchange(_calls, {});
}

void FakePlatform::refuseStarts() {
    const std::lock_guard lock(_mutex);
    _startAnswer = false;
}

void FakePlatform::runInRound(std::function<void()> function) {
    std::unique_lock lock(_mutex);
    _functions.push_back(std::move(function));
    const int served = _served + static_cast<int>(_functions.size());
    _changed.wait(lock, [&] { return _served >= served; });
}

void FakePlatform::serve() {
    std::unique_lock lock(_mutex);
    if (_functions.empty())
        return;
    const std::function<void()> function = std::move(_functions.front());
    _functions.pop_front();
    lock.unlock();
    function();
    lock.lock();
    ++_served;
    _changed.notify_all();
}

void FakePlatform::endRound() {
    const std::lock_guard lock(_mutex);
    ++_rounds;
    _changed.notify_all();
}

bool FakePlatform::waitForRounds(int count, std::chrono::milliseconds limit) {
    std::unique_lock lock(_mutex);
    const int wanted = _rounds + count;
    return _changed.wait_for(lock, limit, [&] { return _rounds >= wanted; });
}

void FakePlatform::workerMade() {
    const std::lock_guard lock(_mutex);
    ++_workers;
}

void FakePlatform::workerGone() {
    const std::lock_guard lock(_mutex);
    --_workers;
    _changed.notify_all();
}

bool FakePlatform::waitUntilNoWorker() {
    std::unique_lock lock(_mutex);
    return _changed.wait_for(lock, std::chrono::seconds(30), [&] { return _workers == 0; });
}

int FakePlatform::workerCount() {
    const std::lock_guard lock(_mutex);
    return _workers;
}

}  // namespace tav::ula
