// SPDX-License-Identifier: MIT
// Stands between the watchers and the platform: what they call is written down.
#pragma once

#include <CoreServices/CoreServices.h>
#include <mutex>
#include <string>
#include <sys/event.h>
#include <utility>
#include <vector>

namespace tav::test {

struct WatcherSpy {
    static WatcherSpy& instance();

    void add(const std::string& call);
    /// The calls since the last time, without those of the rounds.
    std::vector<std::string> take();
    /// Tells, as a stream does, on the calling thread.
    void tell(const std::vector<std::pair<std::string, FSEventStreamEventFlags>>& events) const;

    std::mutex mutex;
    std::vector<std::string> calls;

    bool isQueueRefused = false;
    bool isOpenRefused = false;
    /// Flags of the change that is to fail.
    int refusedFlags = 0;
    bool isStreamRefused = false;
    /// Returned by the next round.
    std::vector<struct kevent> events;
    /// The arguments of the last round: changes, events, nanoseconds.
    std::string round;

    FSEventStreamCallback callBack = nullptr;
    void* info = nullptr;
    /// Told by the next flush.
    std::vector<std::pair<std::string, FSEventStreamEventFlags>> flushed;
};

}  // namespace tav::test
