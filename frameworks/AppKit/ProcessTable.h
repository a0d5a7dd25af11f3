// SPDX-License-Identifier: MIT
// The processes of this machine, as the kernel lists them in /proc.
#pragma once

#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace appkit {

struct RunningProgram {
    pid_t process;
    std::string path;  // also when the file has been replaced since the start
};

struct ProcessOrigin {
    pid_t parent;
    pid_t group;
    unsigned long long startTicks;  // since the machine's start
};

// Of what the kernel's link to a program says: that of one whose file has been replaced or removed
// says so behind the path.
std::string pathOfProgram(std::string link);

// A process may end at any time: what is asked about one that has is not there.
// Thread: any.
class ProcessTable {
public:
    // The folder is another than /proc in tests only.
    explicit ProcessTable(std::string folder = "/proc") : _folder(std::move(folder)) {}

    // Those whose program may be known: this user's, or everybody's for root. In no order.
    std::vector<RunningProgram> programs() const;
    // Empty for a process of the kernel's, of another user's, or one that has ended.
    std::string program(pid_t process) const;
    std::optional<ProcessOrigin> origin(pid_t process) const;
    std::vector<std::string> arguments(pid_t process) const;
    // A variable as it was when the process began. Empty when there is none.
    std::string variable(pid_t process, const std::string& name) const;
    // Empty when it may not be known.
    std::string workingFolder(pid_t process) const;
    bool isOfThisUser(pid_t process) const;

private:
    std::string pathOf(pid_t process, const char* name) const;

    std::string _folder;
};

}  // namespace appkit
