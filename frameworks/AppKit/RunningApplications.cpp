// SPDX-License-Identifier: MIT
#include "AppKit/RunningApplications.h"

#include "AppKit/DesktopEntries.h"
#include "AppKit/ProcessTable.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <unistd.h>
#include <unordered_map>

namespace appkit {

namespace {

class Search {
public:
    Search(const ProcessTable& processes, std::shared_ptr<const DesktopIndex> entries)
        : _processes(processes),
          _entries(std::move(entries)),
          _ownProgram(processes.program(getpid())) {}

    std::vector<RunningApplication> run();
    std::optional<ApplicationIdentity> entryIdentity(pid_t process,
                                                     const std::string& program) const;

private:
    std::optional<RunningApplication> examine(const RunningProgram& running) const;
    std::optional<ApplicationIdentity> identify(const RunningProgram& running) const;
    std::string scriptOf(pid_t process) const;
    bool isHelper(const RunningApplication& application) const;

    const ProcessTable& _processes;
    const std::shared_ptr<const DesktopIndex> _entries;
    const std::string _ownProgram;
    std::unordered_map<pid_t, std::string> _programs;
    std::unordered_map<pid_t, ProcessOrigin> _origins;  // of applications
};

std::vector<RunningApplication> Search::run() {
    std::vector<RunningApplication> found;
    for (RunningProgram& running : _processes.programs()) {
        if (auto application = examine(running)) {
            if (auto origin = _processes.origin(running.process)) {
                application->startTicks = origin->startTicks;
                _origins[running.process] = *origin;
                found.push_back(std::move(*application));
            }
        }
        _programs[running.process] = std::move(running.path);
    }
    std::erase_if(found, [this](const auto& application) { return isHelper(application); });
    std::sort(found.begin(), found.end(), [](const auto& one, const auto& other) {
        return std::pair(one.startTicks, one.process) < std::pair(other.startTicks, other.process);
    });
    return found;
}

std::optional<RunningApplication> Search::examine(const RunningProgram& running) const {
    const std::optional<ApplicationIdentity> identity = identify(running);
    // Root sees the processes of everybody.
    if (!identity || !_processes.isOfThisUser(running.process))
        return std::nullopt;
    return RunningApplication{*identity, running.path, running.process, 0};
}

std::optional<ApplicationIdentity> Search::identify(const RunningProgram& running) const {
    if (auto identity = bundleIdentity(running.path))
        return identity;
    if (auto identity = entryIdentity(running.process, running.path))
        return identity;
    if (_entries->isInterpreter(running.path))
        if (auto identity = entryIdentity(running.process, scriptOf(running.process)))
            return identity;
    if (running.path != _ownProgram)
        return std::nullopt;
    return ApplicationIdentity{_ownProgram.substr(_ownProgram.rfind('/') + 1), "", _ownProgram};
}

// Several entries may start one program, as those of an office's parts do: then the one counts that
// the desktop's launcher has left word of, else the one with the shortest command.
std::optional<ApplicationIdentity> Search::entryIdentity(pid_t process,
                                                         const std::string& program) const {
    const std::vector<DesktopEntry> entries = _entries->entriesOf(program);
    if (entries.empty())
        return std::nullopt;
    auto entry = std::min_element(entries.begin(), entries.end(), [](auto& one, auto& other) {
        return one.command.size() < other.command.size();
    });
    if (entries.size() > 1 &&
        _processes.variable(process, "GIO_LAUNCHED_DESKTOP_FILE_PID") == std::to_string(process)) {
        const std::string file = _processes.variable(process, "GIO_LAUNCHED_DESKTOP_FILE");
        const auto launched = std::find_if(entries.begin(), entries.end(),
                                           [&](const auto& each) { return each.file == file; });
        if (launched != entries.end())
            entry = launched;
    }
    return ApplicationIdentity{entry->name, entry->identifier, program, entry->isActivatable};
}

// The first argument that is no option; a relative path is one of the process's folder.
std::string Search::scriptOf(pid_t process) const {
    const std::vector<std::string> arguments = _processes.arguments(process);
    for (size_t i = 1; i < arguments.size(); ++i) {
        if (arguments[i].empty() || arguments[i][0] == '-')
            continue;
        const std::string path = arguments[i][0] == '/'
                                     ? arguments[i]
                                     : _processes.workingFolder(process) + "/" + arguments[i];
        char target[PATH_MAX];
        return realpath(path.c_str(), target) != nullptr ? target : "";
    }
    return {};
}

bool Search::isHelper(const RunningApplication& application) const {
    const ProcessOrigin& origin = _origins.at(application.process);
    const auto parent = _programs.find(origin.parent);
    if (parent == _programs.end() || parent->second != application.program)
        return false;
    const auto parentsOrigin = _origins.find(origin.parent);
    return parentsOrigin != _origins.end() && parentsOrigin->second.group == origin.group;
}

}  // namespace

std::vector<RunningApplication> RunningApplications::list() const {
    return Search(_processes, _entries.current()).run();
}

std::vector<RunningApplication> runningApplications() {
    const ProcessTable processes;
    return RunningApplications(processes, DesktopEntries::ofProcess()).list();
}

std::string ownEntryIdentifier() {
    const ProcessTable processes;
    const Search search(processes, DesktopEntries::ofProcess().current());
    const auto identity = search.entryIdentity(getpid(), processes.program(getpid()));
    return identity ? identity->identifier : "";
}

}  // namespace appkit
