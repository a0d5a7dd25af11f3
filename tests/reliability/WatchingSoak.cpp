// SPDX-License-Identifier: MIT
// Random operations on a tree while trees and items are watched and watchers come and go. Nothing
// may be left over: descriptors and memory are counted whenever nobody watches. Run by
// scripts/soak-watching.
#include "tests/support/TemporaryFolder.h"
#include "ula/FileSystemWatcher.h"
#include "ula/TreeMonitor.h"

#include <CoreFoundation/CoreFoundation.h>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <malloc.h>
#include <memory>
#include <mutex>
#include <random>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

namespace fs = std::filesystem;
using namespace tav::ula;
using Clock = std::chrono::steady_clock;

constexpr std::size_t kMostWatchers = 40;
// What caches and the allocator may keep from one count to the next.
constexpr long kAllowedGrowthKb = 8 * 1024;
// For what the system's libraries open once, at whatever moment they need it first.
constexpr long kAllowedDescriptors = 2;

struct Count {
    long descriptors;
    long residentKb;
};

// Held by whoever changes the tree, which takes descriptors of its own.
std::mutex operationMutex;

Count countNow() {
    const std::lock_guard lock(operationMutex);
    malloc_trim(0);
    long pages = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> pages >> resident;
    const auto descriptors = std::distance(fs::directory_iterator("/proc/self/fd"), {});
    return {static_cast<long>(descriptors), resident * (sysconf(_SC_PAGESIZE) / 1024)};
}

std::string randomPath(const std::string& root, std::mt19937& random) {
    std::string path = root;
    for (unsigned depth = random() % 4 + 1; depth > 0; --depth)
        path += "/" + std::to_string(random() % 5);
    return path;
}

void operate(const std::string& root, std::mt19937& random) {
    const std::lock_guard lock(operationMutex);
    std::error_code ignored;
    const std::string path = randomPath(root, random);
    switch (random() % 8) {
    case 0:
    case 1:
        fs::create_directories(path, ignored);
        break;
    case 2:
        fs::remove_all(path, ignored);
        break;
    case 3:
        fs::rename(path, randomPath(root, random), ignored);
        break;
    case 4:
        fs::permissions(path, fs::perms::owner_all, ignored);
        break;
    default:
        std::ofstream(path, std::ios::app) << "text";
    }
}

class Watching {
public:
    explicit Watching(std::string root) : _root(std::move(root)) {}

    void change(std::mt19937& random) {
        const std::string path = random() % 4 == 0 ? _root : randomPath(_root, random);
        if (random() % 3 == 0 || !fs::exists(path))
            return drop(random);
        if (random() % 3 == 0)
            return addMonitor(path);
        auto watcher = std::make_unique<FileSystemWatcher>(path, random() % 2 == 0);
        watcher->connect([this](const std::string&, FileSystemWatcherInfo) { ++_events; });
        watcher->setEnabled(random() % 5 != 0);
        _watchers.push_back(std::move(watcher));
        if (_watchers.size() > kMostWatchers)
            drop(random);
    }
    void end() {
        _watchers.clear();
        _monitors.clear();
    }
    long events() const { return _events; }

private:
    void addMonitor(const std::string& path) {
        TreeMonitorOptions options;
        options.settle = std::chrono::milliseconds(50);
        if (auto monitor = TreeMonitor::create(path, options)) {
            monitor->changed().connect([this](const TreeEvent&) { ++_events; });
            _monitors.push_back(std::move(monitor));
        }
        if (_monitors.size() > kMostWatchers / 4)
            _monitors.erase(_monitors.begin());
    }
    void drop(std::mt19937& random) {
        if (!_watchers.empty())
            _watchers.erase(_watchers.begin() + static_cast<long>(random() % _watchers.size()));
    }

    const std::string _root;
    std::vector<std::unique_ptr<FileSystemWatcher>> _watchers;
    std::vector<std::unique_ptr<TreeMonitor>> _monitors;
    std::atomic<long> _events = 0;
};

void runUntil(Clock::time_point end, Watching& watching, std::mt19937& random) {
    while (Clock::now() < end) {
        watching.change(random);
        CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.02, true);
    }
}

// What is kept for a moment after the last watcher is given the time to go.
Count countAtRest() {
    const Clock::time_point deadline = Clock::now() + std::chrono::seconds(2);
    while (Clock::now() < deadline)
        CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.2, false);
    return countNow();
}

bool report(int number, const Count& now, const Count& first, long events) {
    const bool isFlat = now.descriptors <= first.descriptors + kAllowedDescriptors &&
                        now.residentKb <= first.residentKb + kAllowedGrowthKb;
    std::printf("count %2d: %3ld descriptors, %6ld kB, %8ld events%s\n", number, now.descriptors,
                now.residentKb, events, isFlat ? "" : "  GROWN");
    std::fflush(stdout);
    return isFlat;
}

int soak(const std::string& root, std::chrono::seconds length) {
    std::mt19937 random(1);
    // An assertion, whose stack trace loads what stays loaded.
    const FileSystemWatcher missing(root + "/missing", false);
    Watching watching(root);
    const auto interval = std::min<Clock::duration>(
        std::chrono::minutes(1), std::max<Clock::duration>(length / 6, std::chrono::seconds(1)));
    const Clock::time_point end = Clock::now() + length;
    runUntil(Clock::now() + interval, watching, random);
    watching.end();
    const Count first = countAtRest();
    bool isFlat = report(0, first, first, watching.events());
    for (int number = 1; Clock::now() < end; ++number) {
        runUntil(std::min(end, Clock::now() + interval), watching, random);
        watching.end();
        isFlat = report(number, countAtRest(), first, watching.events()) && isFlat;
    }
    if (watching.events() == 0)
        std::printf("nothing was told\n");
    return isFlat && watching.events() != 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    const int seconds = argc == 2 ? std::atoi(argv[1]) : 0;
    if (seconds <= 0)
        return 2;
    const tav::test::TemporaryFolder folder;
    const std::string root = folder.path();
    std::atomic<bool> isOver = false;
    std::thread writer([&] {
        std::mt19937 random(2);
        while (!isOver) {
            operate(root, random);
            // A pace at which items live long enough to be watched.
            std::this_thread::sleep_for(std::chrono::microseconds(300));
        }
    });
    const int result = soak(root, std::chrono::seconds(seconds));
    isOver = true;
    writer.join();
    return result;
}
