// SPDX-License-Identifier: MIT
#pragma once

#include "EventStream.h"
#include "FolderTracker.h"
#include "MountChanges.h"

#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <sys/types.h>
#include <thread>
#include <utility>
#include <vector>

namespace fsevents {

// Collects, on a thread of its own, what changes below the roots of all started streams of the
// process, and tells their run loops when it is time. The thread and the kernel's queue are there
// while streams are started, and a moment longer: a stream that takes the place of another one
// (when a root is added, say) finds its folders watched, and what the other one had not told yet.
class EventCollector : private FolderTracker::Client {
public:
    static EventCollector& ofProcess();

    // Guards everything that is marked "collector" in EventStream.
    std::mutex& mutex() { return _mutex; }

    // Fails: false, logged.
    bool start(EventStream& stream);
    void stop(EventStream& stream);
    // What the stream has to tell now.
    std::vector<Event> take(EventStream& stream);
    // The same, with everything that has happened up to this call.
    std::vector<Event> takeUpToDate(EventStream& stream);
    // Has the run loop tell soon what has happened up to this call.
    void flushSoon(EventStream& stream);
    FSEventStreamEventId latestEventId() const { return _latestId; }

private:
    using Clock = EventStream::Clock;
    enum class Kind { Missing, File, Directory };
    using ItemIdentity = std::pair<dev_t, ino_t>;

    struct Tree {
        std::string path;      // as EventStream::roots() has it
        std::string realPath;  // likewise, without links
        std::vector<EventStream*> streams;
        Folder folder = kNoFolder;
        Kind kind = Kind::Missing;
        std::optional<ItemIdentity> file;  // what is at the path; for roots that are no folders
        Clock::time_point unusedSince;
        bool mayBeAnother = false;
        std::vector<std::string> excluded;  // below the root: "/proc"
        std::set<int> errorsTold;
    };

    struct Predecessor {
        EventStream* stream;
        std::thread::id thread;
        Clock::time_point stoppedAt;
    };

    // Holds the lock. What ends meanwhile is released after it: clients are told so, and may call.
    class Locked {
    public:
        explicit Locked(EventCollector& collector) : _collector(collector) {
            collector._mutex.lock();
        }
        Locked(const Locked&) = delete;
        Locked& operator=(const Locked&) = delete;
        ~Locked() {
            const std::vector<EventStream*> streams = std::exchange(_collector._toRelease, {});
            _collector._mutex.unlock();
            release(streams);
        }

    private:
        EventCollector& _collector;
    };

    EventCollector();
    static void prepareFork();
    static void continueParent();
    static void continueChild();

    FolderTracker::Client& client() { return *this; }
    bool ensureRunning();
    void letGo();
    static void release(const std::vector<EventStream*>& streams);
    void launchThread();
    void run();
    void wake();
    void wait(std::unique_lock<std::mutex>& lock, Clock::time_point until);
    Clock::time_point tellStreams();
    Clock::time_point dropUnused();

    void drain();
    void drainKernel();
    void handleMounts();
    void handleMount(uint32_t number, const MountChange& change);
    void recover();
    void goBlind(int error);
    void checkRoots();
    void checkRoot(uint32_t number);
    void tellRootChanged(const Tree& tree);

    void attach(EventStream& stream, const std::string& root);
    uint32_t treeFor(const std::string& root, bool* isNew);
    void openTree(uint32_t number);
    void closeTree(uint32_t number);
    void detach(EventStream& stream);
    void endPredecessor();
    void takeOverFromPredecessor(EventStream& stream);
    std::string pathOf(Folder folder, std::string_view name) const;
    // Everything at and below folder/name is to be read again.
    void mustScan(Folder folder, std::string_view name);
    void tellMustScan(const Tree& tree, const std::string& path);
    template <class Record>
    void record(const Tree& tree, Record record);

    const std::string& rootPath(uint32_t tree) const override { return _trees[tree]->path; }
    FSEventStreamEventId nextEventIds(unsigned count) override;
    void itemChanged(Folder folder, std::string_view name, FSEventStreamEventFlags flags,
                     FSEventStreamEventId id) override;
    void notFollowed(Folder folder, std::string_view name, int error) override;
    bool isExcluded(Folder folder, std::string_view name) override;
    void rootWritten(uint32_t tree, FSEventStreamEventFlags flags) override;
    void rootForgotten(uint32_t tree) override;
    void rootMayBeAnother(uint32_t tree) override { _trees[tree]->mayBeAnother = true; }
    void lostTrack() override { _hasLostTrack = true; }
    void sayNotFollowed(Tree& tree, const std::string& path, int error);

    std::mutex _mutex;
    bool _isRunning = false;
    bool _hasLostTrack = false;
    bool _isBlind = false;  // lost track, and the kernel gives no other queue
    int _wakeDescriptor = -1;
    std::unique_ptr<FolderTracker> _tracker;
    std::unique_ptr<MountChanges> _mounts;
    std::vector<std::unique_ptr<Tree>> _trees;  // by number; null where there is none
    std::vector<EventStream*> _streams;         // started, each retained
    std::optional<Predecessor> _predecessor;    // retained
    std::vector<EventStream*> _toRelease;       // by whoever gives the lock up
    std::atomic<FSEventStreamEventId> _latestId = 0;
};

}  // namespace fsevents
