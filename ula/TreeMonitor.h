// SPDX-License-Identifier: MIT
#pragma once

#include "ula/Export.h"
#include "ula/foundation/util/Signal.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace tav::ula {

enum class TreeEventType : std::uint8_t {
    Created,  ///< it is there; of what was known before, too, when that is not certain
    Changed,  ///< its content or its attributes
    Removed,  ///< with everything below it
    Moved,    ///< within the tree, with everything below it; what had the new path is gone
    /// Changes at and below the path could not be told one by one: read it again. After a mount, an
    /// unmount, a root that came back, or more changes than the system keeps. Events that follow
    /// take it that the slot has read it.
    RescanNeeded,
};

/// Paths are in the bytes of the file system and begin with the monitor's own.
struct TreeEvent {
    TreeEventType type = TreeEventType::Changed;
    std::string path;
    std::string newPath = {};  ///< of `Moved`
    /// As far as it is known: not of what is to be read again.
    bool isFolder = false;

    bool operator==(const TreeEvent&) const = default;
};

struct TreeMonitorOptions {
    /// What is left out, with everything below it. A pattern of the shell without a slash is held
    /// against each name on the way ("*.tmp", ".git"), one with a slash against the path below the
    /// monitor's ("build/out*", where a star stops at slashes).
    std::vector<std::string> ignore = {};
    /// Changes are gathered for so long.
    std::chrono::milliseconds latency{100};
    /// Files that are created or changed are told when they have kept their size and their date for
    /// so long, so that nobody opens one that is still being written. Zero: at once.
    std::chrono::milliseconds settle{0};
};

/// Tells what happens to a file, or in a folder and all folders below it, until it is destroyed.
///
/// The events, applied in their order to what was there before, give what is there now: none is
/// left out, and where the system lost some, `RescanNeeded` says so. A root that is removed is told
/// as `Removed`; the monitor stays, and tells `RescanNeeded` when something has its path again. A
/// single file is followed through an editor's replacing it, which is told as `Changed`.
/// Symbolic links below the root are items and are not followed. What a slot throws is logged, and
/// the events after it are told as ever.
///
/// Thread: made, used and destroyed on one thread, whose run loop calls the slots. A slot may
/// destroy the monitor.
class ULA_API TreeMonitor {
public:
    using Signal = util::Signal<const TreeEvent&>;

    /// `path` is absolute or from the current folder. Fails: null, and `error`, if given, says what
    /// is wrong with which path and what helps.
    static std::unique_ptr<TreeMonitor> create(const std::string& path,
                                               const TreeMonitorOptions& options = {},
                                               std::string* error = nullptr);
    TreeMonitor(const TreeMonitor&) = delete;
    TreeMonitor& operator=(const TreeMonitor&) = delete;
    virtual ~TreeMonitor();

    Signal& changed() { return _changed; }
    /// Tells what has happened up to this call, within it; files that are still to settle are told
    /// later.
    virtual void flush() = 0;

protected:
    TreeMonitor();

private:
    Signal _changed;
};

}  // namespace tav::ula
