// SPDX-License-Identifier: MIT
// Which applications run: programs in bundles, programs of desktop entries, and those that run the
// same program as this process.
#pragma once

#include "AppKit/ApplicationIdentity.h"

#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace appkit {

class DesktopEntries;
class ProcessTable;

struct RunningApplication {
    ApplicationIdentity identity;
    std::string program;
    pid_t process = 0;
    unsigned long long startTicks = 0;
};

class RunningApplications {
public:
    RunningApplications(const ProcessTable& processes, DesktopEntries& entries)
        : _processes(processes), _entries(entries) {}

    // This user's, in the order in which they began. A process that runs its parent's program in
    // its parent's group is a helper of the parent, and is left out.
    // Thread: any.
    std::vector<RunningApplication> list() const;

private:
    const ProcessTable& _processes;
    DesktopEntries& _entries;
};

// Of this machine.
std::vector<RunningApplication> runningApplications();

// The desktop entry that this process was started by, or may have been: its identifier. Empty where
// there is none for its program.
std::string ownEntryIdentifier();

}  // namespace appkit
