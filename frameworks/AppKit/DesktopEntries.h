// SPDX-License-Identifier: MIT
// The applications that the desktop's menus know: which program belongs to which.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <vector>

namespace appkit {

struct DesktopEntry {
    std::string identifier;  // the file's name among its kind, without ".desktop"
    std::string file;
    std::string name;
    std::vector<std::string> command;  // without what stands for files and variables
    bool isActivatable = false;        // over D-Bus
};

// Nothing for what is hidden, no application or has no command.
std::optional<DesktopEntry> parseDesktopEntry(std::string_view text);

// The words of an Exec line: quotes removed, fields like %U left out.
std::vector<std::string> wordsOfCommand(std::string_view line);

// The entries as they were at one moment.
class DesktopIndex {
public:
    // Entries of the program, by identifier. A script is asked about by its own path.
    std::vector<DesktopEntry> entriesOf(const std::string& program) const;
    // Whether scripts of some entries are run by this program.
    bool isInterpreter(const std::string& program) const {
        return _interpreters.count(program) != 0;
    }

private:
    friend class DesktopEntries;

    std::multimap<std::string, DesktopEntry> _byProgram;
    std::set<std::string> _interpreters;
    std::set<std::string> _seen;               // identifiers, also of hidden entries
    std::map<std::string, timespec> _folders;  // when each was changed
};

// Thread: any.
class DesktopEntries {
public:
    // Folders of entries, the first one first: an entry hides those of its name in later ones. The
    // search path is where programs are found that are named without one.
    DesktopEntries(std::vector<std::string> folders, std::string searchPath);
    // XDG_DATA_HOME, XDG_DATA_DIRS and PATH.
    static DesktopEntries& ofProcess();

    // Read again only when a folder has changed.
    std::shared_ptr<const DesktopIndex> current();

private:
    void readFolder(DesktopIndex& index, const std::string& folder,
                    const std::string& prefix) const;
    void readEntry(DesktopIndex& index, const std::string& path,
                   const std::string& identifier) const;
    // Canonical; empty when there is no such program.
    std::string locate(const std::string& name) const;
    std::string interpreterOf(const std::string& script) const;

    const std::vector<std::string> _folders;
    const std::string _searchPath;
    std::mutex _mutex;
    std::shared_ptr<const DesktopIndex> _index;
};

}  // namespace appkit
