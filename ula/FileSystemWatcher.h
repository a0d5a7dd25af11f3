// SPDX-License-Identifier: MIT
#pragma once

#include "ula/Export.h"
#include "ula/foundation/util/Signal.h"

#include <cstdint>
#include <string>

namespace tav::ula {

/// What has happened to a watched path. The values are fixed.
enum FileSystemWatcherInfo : std::uint32_t {
    /// The item was deleted, renamed or unmounted, or is no longer there. The last thing that is
    /// told: when it is there again, a new watcher is needed.
    PathRemoved = 0,
    /// The item, or something below it, has changed.
    PathChanged = 1,
};

/// Tells when a file, a folder or a whole tree of folders changes or disappears: connect to it as
/// to any signal. The path that comes with the call is the watched one, or, for a tree, the one
/// that changed.
///
/// Items alone are looked after by a thread of the library's own, in rounds of 0.1 seconds, and
/// that thread calls the slots. Trees are told by the run loop of the thread that made the last
/// watcher of a tree. Slots may make, disable and destroy any watchers, their own among them.
///
/// Thread: any; one at a time for one watcher. The destructor waits for a slot of this watcher that
/// another thread is in: that slot must not wait for the destroying thread. A forked child has no
/// watchers of its parent's: those that it inherits are silent, and may be destroyed.
/// Fails: a path that does not exist is an assertion in the log, and the watcher is silent; it is
/// silent, too, when the system refuses to watch.
class ULA_API FileSystemWatcher : public util::Signal<const std::string&, FileSystemWatcherInfo> {
public:
    /// Watches what lies below the path, too, if `recursive`. A path that is watched already stays
    /// watched as it is.
    FileSystemWatcher(const std::string& path, bool recursive);
    ~FileSystemWatcher();

    /// While disabled nothing is told, nor later what happened meanwhile. Goes for the path: other
    /// watchers of it are disabled, too.
    void setEnabled(bool enabled);

    /// What is watched, for a log.
    static std::string getDebugString();
};

}  // namespace tav::ula
