// SPDX-License-Identifier: MIT
#pragma once

#include "CoreServices/FSEvents.h"

#include <functional>
#include <string>
#include <vector>

namespace tav::test {

/// A stream on the calling thread's run loop, and what it has told.
class StreamRecorder {
public:
    struct Told {
        std::string path;
        FSEventStreamEventFlags flags;
        FSEventStreamEventId id;
    };

    /// Started. The latency is the shortest that tests can still tell from none.
    explicit StreamRecorder(const std::vector<std::string>& roots,
                            FSEventStreamCreateFlags flags = kFSEventStreamCreateFlagWatchRoot,
                            double latencySeconds = 0.01,
                            FSEventStreamEventId since = kFSEventStreamEventIdSinceNow);
    StreamRecorder(const StreamRecorder&) = delete;
    StreamRecorder& operator=(const StreamRecorder&) = delete;
    ~StreamRecorder();

    FSEventStreamRef stream() const { return _stream; }
    const std::vector<Told>& told() const { return _told; }
    void clear() { _told.clear(); }
    int calls() const { return _calls; }
    bool hasStarted() const { return _hasStarted; }

    /// Runs the loop until the condition holds. Fails: false when it does not.
    bool waitUntil(const std::function<bool()>& condition);
    /// Until something with exactly these flags was told of the path.
    bool waitFor(const std::string& path, FSEventStreamEventFlags flags);
    /// Everything that has happened so far is told.
    void flush() { FSEventStreamFlushSync(_stream); }
    bool hasTold(const std::string& path, FSEventStreamEventFlags flags) const;
    /// "flags path" in hexadecimal figures, one after the other, without kinds of items.
    std::string text() const;

    /// Called for every call-back, at its end.
    std::function<void()> onCall;
    void stop();

private:
    static void receive(ConstFSEventStreamRef stream, void* info, size_t count, void* paths,
                        const FSEventStreamEventFlags* flags, const FSEventStreamEventId* ids);

    FSEventStreamRef _stream;
    std::vector<Told> _told;
    int _calls = 0;
    bool _hasStarted = false;
};

}  // namespace tav::test
